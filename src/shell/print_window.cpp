#include "shell/print_window.h"

#include <QDir>
#include <QGraphicsView>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QVBoxLayout>
#include <memory>

#include "geometry/opening_operations.h"
#include "platform/user_error.h"
#include "shell/drawing_export.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kChoicesWidth = 304;

// A sheet of any size is given in portrait, and turned for landscape.
void setSheet(QPrinter& printer, SketchSize page) {
  const bool isLandscape = page.width > page.height;
  const QSizeF upright(std::min(page.width, page.height), std::max(page.width, page.height));
  QPageLayout layout(QPageSize(upright, QPageSize::Point, QString(), QPageSize::FuzzyMatch),
                     isLandscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF());
  layout.setMode(QPageLayout::FullPageMode);
  printer.setPageLayout(layout);
  printer.setFullPage(true);
}

// The options with the openings and annotations of the drawing.
ExportOptions complete(ExportOptions options, const Workspace& workspace) {
  takePlan(options, workspace.sketch);
  return options;
}

std::vector<PicturePage> printPages(const Workspace& workspace, const ExportOptions& options) {
  return picturePages(ExportFormat::pdf, workspace.sketch.entities(),
                      workspace.sketch.drawing->wallSystemSpecs, options);
}

void paintPages(QPrinter& printer, const std::vector<PicturePage>& pages, const Workspace& workspace,
                const ExportOptions& options) {
  QPainter painter;
  if (!painter.begin(&printer)) throw UserError("The printer does not take the job.");
  const double dotsPerPoint = printer.resolution() / kPointsPerInch;
  painter.scale(dotsPerPoint, dotsPerPoint);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (i > 0 && !printer.newPage()) throw UserError("The printer does not take another page.");
    paintPicturePage(painter, pages[i], workspace.sketch.entities(),
                     workspace.sketch.drawing->wallSystemSpecs, options);
  }
}

}  // namespace

int printDrawing(QPrinter& printer, const Workspace& workspace, const ExportOptions& given) {
  const ExportOptions options = complete(given, workspace);
  std::vector<PicturePage> pages;
  workspace.sketch.work(workspace.sketch.entities().size(), [&] {
    pages = printPages(workspace, options);
    setSheet(printer, pages.front().size);
    paintPages(printer, pages, workspace, options);
  });
  return static_cast<int>(pages.size());
}

PrintWindow::PrintWindow(Application& application, Theme& theme, QWidget* parent)
    : QDialog(parent),
      application_(application),
      theme_(theme),
      printer_(QPrinter::HighResolution),
      page_(new PageControls(theme, QStringLiteral("print"), QString())),
      grid_(new Switch(theme, {})),
      look_(new LookSwitches(theme, QStringLiteral("print"),
                             application.workspace().sketch.drawing->plan.look)),
      status_(new TextLabel(theme, TextStyle::body, TextLabel::Rank::primary)),
      printButton_(new Button(theme, Button::Kind::primary, QStringLiteral("Print…"))),
      preview_(new QPrintPreviewWidget(&printer_)) {
  setObjectName(QStringLiteral("print"));
  setWindowTitle(QStringLiteral("Print"));
  setWindowModality(Qt::WindowModal);
  setAttribute(Qt::WA_DeleteOnClose);
  resize(960, 680);

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  auto* choices = new QWidget(this);
  choices->setFixedWidth(kChoicesWidth);
  auto* column = new QVBoxLayout(choices);
  column->setContentsMargins(16, 16, 16, 16);
  column->setSpacing(8);
  column->addWidget(
      new TextLabel(theme, TextStyle::title, TextLabel::Rank::primary, QStringLiteral("Print")));
  column->addSpacing(8);
  column->addWidget(page_);
  auto* more = new QWidget(choices);
  grid_->setObjectName(QStringLiteral("print.grid"));
  addFormRow(*makeForm(more), theme, QStringLiteral("Grid"), *grid_);
  column->addWidget(more);
  column->addWidget(look_);
  status_->setObjectName(QStringLiteral("print.status"));
  status_->setWordWrap(true);
  column->addSpacing(8);
  column->addWidget(status_);
  column->addStretch();
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  auto* close = new Button(theme, Button::Kind::outlined, QStringLiteral("Close"));
  close->setObjectName(QStringLiteral("print.close"));
  printButton_->setObjectName(QStringLiteral("print.print"));
  buttons->addStretch();
  buttons->addWidget(close);
  buttons->addWidget(printButton_);
  column->addLayout(buttons);
  row->addWidget(choices);
  row->addWidget(new Hairline(theme, Qt::Vertical, this));
  preview_->setObjectName(QStringLiteral("print.preview"));
  preview_->fitInView();
  connect(&theme, &Theme::changed, this, [this] { paintSurround(); });
  paintSurround();
  row->addWidget(preview_, 1);

  page_->chooseFitToSheet();
  connect(page_, &PageControls::changed, this, [this] { refresh(); });
  connect(grid_, &QCheckBox::toggled, this, [this] { refresh(); });
  connect(look_, &LookSwitches::changed, this, [this] { refresh(); });
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  connect(printButton_, &QPushButton::clicked, this, [this] { print(); });
  connect(preview_, &QPrintPreviewWidget::paintRequested, this, [this](QPrinter* printer) {
    try {
      const ExportOptions chosen = complete(options(), application_.workspace());
      paintPages(*printer, printPages(application_.workspace(), chosen), application_.workspace(), chosen);
    } catch (const UserError&) {
      // `refresh` has said why there is nothing to see.
    }
  });
  refresh();
}

void PrintWindow::paintSurround() {
  auto* view = preview_->findChild<QGraphicsView*>();
  if (view != nullptr && view->scene() != nullptr) view->scene()->setBackgroundBrush(theme_.muted());
}

void PrintWindow::paintEvent(QPaintEvent* /*event*/) { QPainter(this).fillRect(rect(), theme_.card()); }

ExportOptions PrintWindow::options() const {
  ExportOptions chosen;
  page_->apply(chosen);
  chosen.showGrid = grid_->isChecked();
  chosen.look = look_->look();
  return chosen;
}

void PrintWindow::refresh() {
  try {
    const ExportOptions chosen = complete(options(), application_.workspace());
    const std::vector<PicturePage> pages = printPages(application_.workspace(), chosen);
    setSheet(printer_, pages.front().size);
    const DrawingScale scale{kInchesPerFoot * kPointsPerInch / pages.front().viewport.scale};
    QString text = QStringLiteral("%1 at %2")
                       .arg(pages.size() == 1 ? QStringLiteral("1 sheet")
                                              : QStringLiteral("%1 sheets").arg(pages.size()),
                            qtText(drawingScaleText(scale)));
    const std::string leftOut = leftOutText(*chosen.openings);
    if (!leftOut.empty()) text += u'\n' + qtText(leftOut);
    status_->setText(text);
    printButton_->setEnabled(true);
  } catch (const UserError& error) {
    status_->setText(QString::fromUtf8(error.what()));
    printButton_->setEnabled(false);
  }
  preview_->updatePreview();
}

void PrintWindow::print() {
  Workspace& workspace = application_.workspace();
  printer_.setDocName(qtText(*workspace.document.name));
  QPrintDialog dialog(&printer_, this);
  // Qt would offer the working folder, and cut the name at its last point.
  const QDir documents(qtText(application_.settings().defaultProjectsFolder().parent_path().string()));
  auto* fileName = dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
  if (fileName != nullptr && documents.exists()) {
    fileName->setText(documents.filePath(printer_.docName() + QStringLiteral(".pdf")));
  }
  if (dialog.exec() != QDialog::Accepted) return;
  try {
    printDrawing(printer_, workspace, options());
    const std::string written = plainText(printer_.outputFileName());
    workspace.messages.showToast(
        written.empty() ? "Sent to the printer" : "Printed to " + FilePath(written).filename().string(),
        DocumentToastState::Style::success);
    close();
  } catch (const UserError& error) {
    status_->setText(QString::fromUtf8(error.what()));
  }
}

}  // namespace ostrelon
