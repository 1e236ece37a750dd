// The print preview: the pages as they will come out at true scale, the choices that make them, and
// the way to the printer.
#pragma once

#include <QDialog>
#include <QPrinter>

#include "app/application.h"
#include "shell/look_switches.h"
#include "shell/page_controls.h"

class QPrintPreviewWidget;

namespace ostrelon {

/// Paints the pages of the drawing on a printer, at the size that they have in points, and gives
/// their number. Sets the printer's sheet. Throws what `picturePages` throws, and `UserError` when
/// the printer does not take the job.
int printDrawing(QPrinter& printer, const Workspace& workspace, const ExportOptions& options);

class PrintWindow final : public QDialog {
  Q_OBJECT

 public:
  PrintWindow(Application& application, Theme& theme, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  ExportOptions options() const;
  /// Lays the pages out anew, and says how many there are or why there are none.
  void refresh();
  void print();
  void paintSurround();

  Application& application_;
  Theme& theme_;
  QPrinter printer_;
  PageControls* page_;
  Switch* grid_;
  LookSwitches* look_;
  TextLabel* status_;
  Button* printButton_;
  QPrintPreviewWidget* preview_;
};

}  // namespace ostrelon
