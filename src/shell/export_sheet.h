// How to export the drawing, asked over the main window before the file is chosen. What was chosen last
// is offered again.
#pragma once

#include "app/application.h"
#include "shell/dialog_sheet.h"
#include "shell/look_switches.h"
#include "shell/page_controls.h"

namespace ostrelon {

class ExportSheet final : public DialogSheet {
  Q_OBJECT

 public:
  ExportSheet(Application& application, Theme& theme, QWidget& window);

 private:
  ExportFormat format() const;
  /// Throws `ExportOptionError` for what cannot be read.
  ExportOptions options() const;
  void showRows();
  void restoreChoices();
  void rememberChoices();
  void chooseFile();

  Application& application_;
  Picker* kind_;
  Field* size_;
  TextLabel* sizeLabel_;
  PageControls* page_;
  Picker* pixelRatio_;
  TextLabel* pixelRatioLabel_;
  Picker* colors_;
  TextLabel* colorsLabel_;
  Switch* grid_;
  LookSwitches* look_;
  TextLabel* gridLabel_;
  Picker* dxfVersion_;
  TextLabel* dxfVersionLabel_;
  Switch* dxfLayers_;
  TextLabel* dxfLayersLabel_;
  Picker* dxfUnits_;
  TextLabel* dxfUnitsLabel_;
  TextLabel* error_;
};

}  // namespace ostrelon
