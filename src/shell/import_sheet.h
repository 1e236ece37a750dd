// How to add a drawing of another program, asked over the main window: what it looks like, its unit, its
// layers, and what will be left out.
#pragma once

#include <QImage>
#include <memory>

#include "app/application.h"
#include "shell/dialog_sheet.h"
#include "shell/picker.h"

namespace ostrelon {

class ImportPicture;

class ImportSheet final : public DialogSheet {
  Q_OBJECT

 public:
  ImportSheet(Application& application, Theme& theme, QWidget& window,
              std::shared_ptr<const DrawingImport> import);

 private:
  DxfImportOptions options() const;
  /// What comes of the choices.
  void showChoices();
  void take();

  Application& application_;
  std::shared_ptr<const DrawingImport> import_;
  std::vector<DxfUnit> units_;  // in the order of the picker
  ImportPicture* picture_;
  TextLabel* extent_;
  Picker* unit_;
  Switch* toOrigin_;
  std::vector<std::pair<std::string, Switch*>> layers_;
  TextLabel* leftOut_;
  Button* confirm_;
};

}  // namespace ostrelon
