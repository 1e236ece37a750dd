// The panel at the right: the wall systems of the document, and the fields of the one shown. In a
// narrow window it folds to a rail with one icon.
#pragma once

#include <QAbstractListModel>
#include <array>
#include <optional>

#include "app/wall_panel.h"
#include "shell/controls.h"
#include "shell/observation.h"
#include "shell/rows_view.h"

namespace ostrelon {

class WallSystemRowsView;

/// The rows of the list.
class WallSystemListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  explicit WallSystemListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  const WallSystemRow& row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  void setRows(std::vector<WallSystemRow> rows);

 private:
  std::vector<WallSystemRow> rows_;
};

/// A piece of wall with the shown system's thickness, dimensioned.
class WallPreview final : public QWidget {
 public:
  explicit WallPreview(Theme& theme, QWidget* parent = nullptr);
  /// Sketch units; thin walls are shown larger.
  void setThickness(double thickness);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
  double thickness_ = 0;
};

class WallSystemPanelView final : public Panel {
  Q_OBJECT

 public:
  static constexpr int kWidth = 264;
  static constexpr int kRailWidth = 44;

  WallSystemPanelView(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);
  void setRail(bool rail);
  bool isRail() const { return rail_; }

 Q_SIGNALS:
  void unfoldRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  struct FieldRow {
    WallSystemField field;
    TextLabel* label;
    Field* input;
    TextLabel* note;  // below it: a size in inches, or why a text was refused; null where there is neither
  };

  void refresh();
  void place();
  void showFieldTexts(bool evenWhileEditing);
  void commit(const FieldRow& row);
  /// Shows the refusal in the field and below it; none shows what belongs there otherwise.
  void showNote(const FieldRow& row, const std::optional<std::string>& refusal);
  Button* addHeadingButton(Icon icon, const char* identifier, const QString& name);
  void editName();

  Workspace& workspace_;
  bool rail_ = false;
  TextLabel* heading_;
  std::array<Button*, 3> headingButtons_;  // add, duplicate, delete
  WallSystemListModel* model_;
  WallSystemRowsView* list_;
  Hairline* divider_;
  TextLabel* contextTitle_;
  WallPreview* preview_;
  std::array<FieldRow, 4> fields_;
  Button* assignButton_;
  Button* unfoldButton_;
  std::optional<WallSystemSpec> shown_;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
