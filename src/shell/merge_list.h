// The list of a merge: its conflicts, each with Ours, Theirs and Both to choose from, and below them what
// comes in without a question.
#pragma once

#include <QAbstractListModel>
#include <optional>
#include <vector>

#include "app/merge_review.h"
#include "shell/rows_view.h"

namespace ostrelon {

class ChoiceGroup;

struct MergeListRow {
  enum class Kind { heading, conflict, incoming };
  Kind kind = Kind::heading;
  std::size_t number = 0;  ///< 0-based, of its kind
  QString title;
  QStringList words;  ///< a line each
  std::optional<MergeChoice> choice;
  friend bool operator==(const MergeListRow&, const MergeListRow&) = default;
};

class MergeListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  explicit MergeListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  const MergeListRow& row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  void show(const MergeReview& review);

 private:
  void replace(std::vector<MergeListRow> rows);

  std::vector<MergeListRow> rows_;
  std::size_t conflicts_ = 0;
  std::shared_ptr<const MergeProposal> shown_;
};

/// Up and Down go through the rows, Left and Right through the choices of a conflict, and Return presses a
/// row as a click does. What is chosen of the current conflict is a group of radio buttons too, which Tab
/// reaches.
class MergeRowsView final : public RowsView {
  Q_OBJECT

 public:
  MergeRowsView(Theme& theme, MergeListModel& model, QWidget* parent);
  bool isRowSelected(int row) const override { return row == currentIndex().row(); }

 Q_SIGNALS:
  void chosen(std::size_t conflict, ostrelon::MergeChoice choice);

 protected:
  int rowTop(int row) const override { return tops_[static_cast<std::size_t>(row)]; }
  int rowHeight(int row) const override;
  int rowAt(int y) const override;
  int contentHeight() const override { return tops_.back(); }
  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override;
  QString toolTipText(int row, const QRect& box) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void updateGeometries() override;
  void scrollContentsBy(int dx, int dy) override;

 private:
  void paintConflict(QPainter& painter, const QRect& box, const MergeListRow& row);
  void measure();
  void placeGroup();
  /// The choice at a point of the viewport, and the row that it is of.
  std::optional<std::pair<int, MergeChoice>> choiceAt(const QPoint& point) const;

  MergeListModel& model_;
  ChoiceGroup* group_;
  std::vector<int> tops_{0};  // of each row, and the end
};

}  // namespace ostrelon
