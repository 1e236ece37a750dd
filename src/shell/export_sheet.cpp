#include "shell/export_sheet.h"

#include <QGridLayout>
#include <QRegularExpression>
#include <QVBoxLayout>

#include "geometry/opening_operations.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kSheetWidth = 480;
constexpr int kSheetPadding = 24;
/// What was chosen last, by the names of the controls.
constexpr const char* kChoicesKey = "ostrel.exportChoices";
constexpr const char* kOn = "on";

Picker* makePicker(Theme& theme, const char* identifier,
                   std::initializer_list<std::pair<const char*, const char*>> choices) {
  auto* picker = new Picker(theme);
  picker->setObjectName(QString::fromUtf8(identifier));
  for (const auto& [title, value] : choices)
    picker->addItem(QString::fromUtf8(title), QString::fromUtf8(value));
  return picker;
}

}  // namespace

ExportSheet::ExportSheet(Application& application, Theme& theme, QWidget& window)
    : DialogSheet(theme, window, kSheetWidth, kSheetPadding), application_(application) {
  setObjectName(QStringLiteral("export"));
  setAccessibleName(QStringLiteral("Export"));
  content().addWidget(
      new TextLabel(theme, TextStyle::display, TextLabel::Rank::primary, QStringLiteral("Export")));
  content().addSpacing(16);

  auto* above = new QWidget;
  QGridLayout& first = *makeForm(above);
  kind_ = makePicker(theme, "export.kind", {{"PDF", "pdf"}, {"SVG", "svg"}, {"PNG", "png"}, {"DXF", "dxf"}});
  addFormRow(first, theme, QStringLiteral("Kind of file"), *kind_);
  content().addWidget(above);
  content().addSpacing(8);
  page_ = new PageControls(theme, QStringLiteral("export"), QStringLiteral("None, by Size"));
  content().addWidget(page_);
  content().addSpacing(8);

  auto* below = new QWidget;
  QGridLayout& form = *makeForm(below);
  size_ = new Field(theme, true);
  size_->setObjectName(QStringLiteral("export.size"));
  size_->setText(QStringLiteral("%1x%2").arg(kDefaultExportSize.width).arg(kDefaultExportSize.height));
  sizeLabel_ = addFormRow(form, theme, QStringLiteral("Size"), *size_);
  pixelRatio_ = makePicker(theme, "export.pixelRatio", {{"1x", "1"}, {"2x", "2"}, {"3x", "3"}, {"4x", "4"}});
  pixelRatioLabel_ = addFormRow(form, theme, QStringLiteral("Pixels"), *pixelRatio_);
  colors_ = makePicker(theme, "export.theme", {{"Light", "light"}, {"Dark", "dark"}, {"Tansy", "tansy"}});
  colorsLabel_ = addFormRow(form, theme, QStringLiteral("Colors"), *colors_);
  grid_ = new Switch(theme, {});
  grid_->setObjectName(QStringLiteral("export.grid"));
  gridLabel_ = addFormRow(form, theme, QStringLiteral("Grid"), *grid_);
  dxfVersion_ = makePicker(theme, "export.dxf", {{"2000", "2000"}, {"R12", "r12"}});
  dxfVersionLabel_ = addFormRow(form, theme, QStringLiteral("Version"), *dxfVersion_);
  dxfUnits_ = makePicker(theme, "export.dxfUnits", {{"Feet", "ft"}, {"Inches", "in"}, {"Millimeters", "mm"}});
  dxfUnitsLabel_ = addFormRow(form, theme, QStringLiteral("Unit"), *dxfUnits_);
  dxfLayers_ = new Switch(theme, {});
  dxfLayers_->setObjectName(QStringLiteral("export.dxfLayers"));
  dxfLayersLabel_ = addFormRow(form, theme, QStringLiteral("Layers by Kind"), *dxfLayers_);
  content().addWidget(below);
  content().addSpacing(8);
  look_ =
      new LookSwitches(theme, QStringLiteral("export"), application_.workspace().sketch.drawing->plan.look);
  content().addWidget(look_);

  error_ = new TextLabel(theme, TextStyle::small, TextLabel::Rank::primary);
  error_->setObjectName(QStringLiteral("export.error"));
  error_->setWordWrap(true);
  error_->hide();
  content().addSpacing(8);
  content().addWidget(error_);

  setButtonHeight(28);
  Button* cancel = addButton(QStringLiteral("Cancel"), Button::Kind::outlined, "export.cancel");
  Button* confirm = addButton(QStringLiteral("Choose File…"), Button::Kind::primary, "export.confirm");
  setCancelButton(cancel);
  setDefaultButton(confirm);
  setFirstFocus(kind_);
  addToTabOrder(kind_);
  for (auto* picker : page_->findChildren<QWidget*>(QRegularExpression("^export\\."))) addToTabOrder(picker);
  for (QWidget* widget : std::initializer_list<QWidget*>{size_, pixelRatio_, colors_, grid_, dxfVersion_,
                                                         dxfUnits_, dxfLayers_}) {
    addToTabOrder(widget);
  }
  for (QWidget* widget : look_->inTabOrder()) addToTabOrder(widget);
  restoreChoices();
  connect(kind_, &QComboBox::currentIndexChanged, this, [this] { showRows(); });
  connect(page_, &PageControls::changed, this, [this] { showRows(); });
  connect(cancel, &QPushButton::clicked, this, [this] {
    hide();
    deleteLater();
  });
  connect(confirm, &QPushButton::clicked, this, [this] { chooseFile(); });
  showRows();
}

ExportFormat ExportSheet::format() const {
  return exportFormatOf("drawing." + plainText(kind_->currentData().toString()));
}

ExportOptions ExportSheet::options() const {
  ExportOptions options;
  options.look = look_->look();
  if (format() == ExportFormat::dxf) {
    setExportOption(options, "dxf", plainText(dxfVersion_->currentData().toString()));
    setExportOption(options, "dxf-units", plainText(dxfUnits_->currentData().toString()));
    if (dxfLayers_->isChecked()) options.dxf.layering = DxfLayering::byKind;
    return options;
  }
  page_->apply(options);
  if (!options.isOnPaper()) setExportOption(options, "size", plainText(size_->text()));
  if (format() == ExportFormat::png) {
    setExportOption(options, "pixel-ratio", plainText(pixelRatio_->currentData().toString()));
  }
  setExportOption(options, "theme", plainText(colors_->currentData().toString()));
  options.showGrid = grid_->isChecked();
  return options;
}

void ExportSheet::showRows() {
  const bool isDxf = format() == ExportFormat::dxf;
  const auto show = [](std::initializer_list<QWidget*> row, bool isShown) {
    for (QWidget* widget : row) widget->setVisible(isShown);
  };
  page_->setVisible(!isDxf);
  show({size_, sizeLabel_}, !isDxf && !page_->isOnPaper());
  show({pixelRatio_, pixelRatioLabel_}, format() == ExportFormat::png);
  show({colors_, colorsLabel_, grid_, gridLabel_}, !isDxf);
  show({dxfVersion_, dxfVersionLabel_, dxfUnits_, dxfUnitsLabel_, dxfLayers_, dxfLayersLabel_}, isDxf);
  error_->hide();
  content().invalidate();
  place();
}

void ExportSheet::restoreChoices() {
  const auto remembered = application_.defaults().map(kChoicesKey);
  if (!remembered) return;
  for (const auto& [name, value] : *remembered) {
    auto* control = findChild<QWidget*>(qtText(name));
    if (auto* picker = qobject_cast<QComboBox*>(control)) {
      if (const int index = picker->findData(qtText(value)); index >= 0) picker->setCurrentIndex(index);
    } else if (auto* field = qobject_cast<QLineEdit*>(control)) {
      field->setText(qtText(value));
    } else if (auto* toggle = qobject_cast<QCheckBox*>(control)) {
      toggle->setChecked(value == kOn);
    }
  }
}

void ExportSheet::rememberChoices() {
  DefaultsMap choices;
  for (const auto* picker : findChildren<QComboBox*>()) {
    choices[plainText(picker->objectName())] = plainText(picker->currentData().toString());
  }
  for (const auto* field : findChildren<QLineEdit*>()) {
    choices[plainText(field->objectName())] = plainText(field->text());
  }
  for (const auto* toggle : findChildren<QCheckBox*>()) {
    choices[plainText(toggle->objectName())] = toggle->isChecked() ? kOn : "off";
  }
  application_.defaults().set(kChoicesKey, choices);
}

void ExportSheet::chooseFile() {
  const Workspace& workspace = application_.workspace();
  ExportOptions chosen;
  try {
    chosen = options();
    // What cannot be laid out is reported here, where it can be corrected.
    if (format() != ExportFormat::dxf) {
      ExportOptions complete = chosen;
      takePlan(complete, workspace.sketch);
      picturePages(format(), workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs,
                   complete);
    }
  } catch (const UserError& error) {
    error_->setText(QString::fromUtf8(error.what()));
    error_->show();
    content().invalidate();
    place();
    return;
  }
  rememberChoices();
  const ExportFormat kind = format();
  hide();
  deleteLater();
  exportWithPanel(application_, chosen, kind);
}

}  // namespace ostrelon
