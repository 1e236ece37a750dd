// The page of the inspector for a door, a window or an opening.
#pragma once

#include <QWidget>
#include <array>
#include <optional>
#include <vector>

#include "app/opening_inspector.h"
#include "shell/controls.h"
#include "shell/picker.h"

class QGridLayout;

namespace ostrelon {

class OpeningPage final : public QWidget {
  Q_OBJECT

 public:
  OpeningPage(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

  /// Shows this one. A field that is being edited keeps its text, unless another opening is shown.
  void showOpening(const Opening& opening);

 Q_SIGNALS:
  /// A line has come or gone.
  void heightChanged();

 private:
  struct FieldRow {
    OpeningField field;
    Field* input;
    TextLabel* note;  ///< why a text was refused
  };

  FieldRow addField(QGridLayout& grid, int row, OpeningField field, const char* title, const char* name);
  Picker* addPicker(QGridLayout& grid, int row, const char* title, const char* name,
                    std::initializer_list<const char*> choices);
  void commit(const FieldRow& row);
  void showNote(const FieldRow& row, const std::optional<std::string>& refusal);
  void showMetricRows(const std::vector<InspectorMetricRow>& rows);
  void hang();

  Workspace& workspace_;
  Theme& theme_;
  QLabel* icon_;
  TextLabel* name_;
  TextLabel* misfit_;  ///< why it is left out; hidden while it fits
  QGridLayout* metrics_;
  std::vector<std::pair<TextLabel*, TextLabel*>> metricRows_;
  Picker* kind_;
  std::array<FieldRow, 2> fields_;
  std::array<QWidget*, 2> doorLabels_{};
  Picker* hinge_;
  Picker* swing_;
  Button* flip_;
  std::optional<Opening> shown_;
};

}  // namespace ostrelon
