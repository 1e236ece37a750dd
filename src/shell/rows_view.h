// A list that stays quick however long it is: rows of known heights, painted on demand, with no
// widget and no layout pass a row. It is an item view, so that selection, scrolling, keys and
// screen readers work as in any list.
#pragma once

#include <QAbstractItemView>

#include "shell/theme.h"

namespace ostrelon {

class RowsView : public QAbstractItemView {
 public:
  explicit RowsView(Theme& theme, QWidget* parent = nullptr);

  void setModel(QAbstractItemModel* model) override;
  QRect visualRect(const QModelIndex& index) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  QModelIndex indexAt(const QPoint& point) const override;
  /// Whether the row shows as selected.
  virtual bool isRowSelected(int row) const;

 protected:
  /// Positions in the whole list, px. Rows follow each other without a gap of their own.
  virtual int rowTop(int row) const = 0;
  virtual int rowHeight(int row) const = 0;
  /// The row at a position of the whole list, held to the rows that there are.
  virtual int rowAt(int y) const = 0;
  virtual int contentHeight() const = 0;
  /// The tooltip of the row that is shown in `box`. At first the model's.
  virtual QString toolTipText(int row, const QRect& box) const;
  virtual void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) = 0;

  /// For lists in which Return does what a click does: clicks the current row, if it is that key.
  bool clickByReturn(const QKeyEvent& event);

  int rowCount() const;
  Theme& theme() const { return theme_; }
  /// Takes the scroll bar's range anew from the heights.
  void updateRange();

  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  int horizontalOffset() const override { return 0; }
  int verticalOffset() const override;
  bool isIndexHidden(const QModelIndex& /*index*/) const override { return false; }
  void setSelection(const QRect& box, QItemSelectionModel::SelectionFlags command) override;
  QRegion visualRegionForSelection(const QItemSelection& selection) const override;
  void updateGeometries() override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  void setHoveredRow(int row);

  Theme& theme_;
  int hoveredRow_ = -1;
};

}  // namespace ostrelon
