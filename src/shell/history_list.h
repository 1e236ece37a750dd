// The list of the history: groups with a heading, and below it a row for each state of the drawing, with its
// picture, its time, and what it holds.
#pragma once

#include <QAbstractListModel>
#include <optional>
#include <vector>

#include "app/history_rows.h"
#include "shell/picture_shelf.h"
#include "shell/rows_view.h"

namespace ostrelon {

/// Headings and rows one below the other.
class HistoryListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  /// All of them must outlive the object.
  HistoryListModel(Scheduler& scheduler, const PictureShelf& shelf, QObject* parent = nullptr);

  void setGroups(std::vector<HistoryGroup> groups);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  const HistoryGroup& group(int line) const { return groups_[lines_[static_cast<std::size_t>(line)].group]; }
  /// Null for a heading.
  const HistoryRow* row(int line) const;
  /// The line of this state; absent where there is none any more.
  std::optional<int> lineOf(const HistorySource& source) const;
  std::optional<int> firstRow() const;

  /// Positions in the whole list, px.
  int top(int line) const { return lines_[static_cast<std::size_t>(line)].top; }
  int bottom(int line) const;
  int lineAt(int y) const;

  QString timeText(const HistoryRow& row) const;

 private:
  struct Line {
    std::size_t group = 0;
    std::optional<std::size_t> row;  // absent for the heading
    int top = 0;
  };

  Scheduler& scheduler_;
  const PictureShelf& shelf_;
  std::vector<HistoryGroup> groups_;
  std::vector<Line> lines_;
  int height_ = 0;
};

/// What names the picture of a row. A file that has been written anew has another picture.
QString pictureKey(const HistoryRow& row);

class HistoryList final : public RowsView {
  Q_OBJECT

 public:
  HistoryList(Theme& theme, FileSystem& files, PictureShelf& shelf, HistoryListModel& model, QWidget* parent);

 Q_SIGNALS:
  /// Return on a row, and the key that deletes.
  void chosen();
  void deletionAsked();

 protected:
  int rowTop(int row) const override { return model_.top(row); }
  int rowHeight(int row) const override { return model_.bottom(row) - model_.top(row); }
  int rowAt(int y) const override { return model_.lineAt(y); }
  int contentHeight() const override { return model_.rowCount() == 0 ? 0 : model_.bottom(rowCount() - 1); }
  QString toolTipText(int row, const QRect& box) const override;
  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void paintHeading(QPainter& painter, const QRect& box, const HistoryGroup& group) const;
  void paintPicture(QPainter& painter, const QRect& box, const HistoryRow& row);

  FileSystem& files_;
  PictureShelf& shelf_;
  HistoryListModel& model_;
};

}  // namespace ostrelon
