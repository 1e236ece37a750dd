#include "shell/import_sheet.h"

#include <fmt/format.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/drawing_picture.h"
#include "shell/page_controls.h"
#include "shell/qt_text.h"

namespace ostrelon {

namespace {

constexpr int kSheetWidth = 640;
constexpr int kSheetPadding = 24;
constexpr QSize kPictureSize{272, 204};
constexpr int kLayerRow = 28;
constexpr int kMostShownLayers = 5;
// More layers than these are taken or left together; nobody reads through more switches.
constexpr std::size_t kMostSwitches = 400;

std::string unitTitle(const DxfUnit& unit) {
  std::string title(unit.name);
  title.front() = static_cast<char>(title.front() - 'a' + 'A');
  return title;
}

QString joinedSentences(const std::vector<std::string>& texts) {
  QStringList sentences;
  for (const std::string& text : texts) sentences << qtText(text) + QLatin1Char('.');
  return sentences.join(QLatin1Char(' '));
}

}  // namespace

/// The drawing as it will be added.
class ImportPicture final : public QWidget {
 public:
  explicit ImportPicture(Theme& theme) : theme_(theme) {
    setFixedSize(kPictureSize);
    setObjectName(QStringLiteral("import.picture"));
    setAccessibleName(QStringLiteral("Picture of the drawing"));
    connect(&theme, &Theme::changed, this, [this] { image_ = {}; });
  }

  void show(EntityList entities) {
    drawing_.entities = std::move(entities);
    image_ = {};
    update();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const double ratio = devicePixelRatioF();
    if (image_.isNull() || image_.devicePixelRatio() != ratio) {
      image_ = smallPicture(drawing_, size(), ratio, theme_.palette());
      image_.setDevicePixelRatio(ratio);
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath box;
    box.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    painter.save();
    painter.setClipPath(box);
    painter.drawImage(0, 0, image_);
    painter.restore();
    painter.setPen(theme_.border());
    painter.drawPath(box);
  }

 private:
  Theme& theme_;
  Drawing drawing_;
  QImage image_;
};

ImportSheet::ImportSheet(Application& application, Theme& theme, QWidget& window,
                         std::shared_ptr<const DrawingImport> import)
    : DialogSheet(theme, window, kSheetWidth, kSheetPadding),
      application_(application),
      import_(std::move(import)),
      picture_(new ImportPicture(theme)),
      extent_(new TextLabel(theme, TextStyle::body, TextLabel::Rank::primary)),
      unit_(new Picker(theme)),
      toOrigin_(new Switch(theme, {})),
      leftOut_(new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary)) {
  setObjectName(QStringLiteral("import"));
  setAccessibleName(QStringLiteral("Import DXF"));
  content().addWidget(
      new TextLabel(theme, TextStyle::display, TextLabel::Rank::primary, QStringLiteral("Import DXF")));
  content().addSpacing(4);
  auto* name = new TextLabel(theme, TextStyle::body, TextLabel::Rank::secondary, qtText(import_->name()));
  name->setElision(Qt::ElideMiddle);
  content().addWidget(name);
  content().addSpacing(16);

  PreparedDxf prepared;
  try {
    prepared = import_->prepared(application.workspace().sketch, {});
  } catch (const UserError&) {
    // `showChoices` says so.
  }
  for (const NamedDxfUnit& named : namedDxfUnits()) units_.push_back(named.unit);
  if (std::find(units_.begin(), units_.end(), prepared.unit) == units_.end()) units_.push_back(prepared.unit);
  for (const DxfUnit& unit : units_) unit_->addItem(qtText(unitTitle(unit)));
  unit_->setCurrentIndex(
      static_cast<int>(std::find(units_.begin(), units_.end(), prepared.unit) - units_.begin()));
  unit_->setObjectName(QStringLiteral("import.unit"));
  toOrigin_->setObjectName(QStringLiteral("import.toOrigin"));
  toOrigin_->setChecked(prepared.bounds && liesFarFromOrigin(*prepared.bounds));

  auto* upper = new QHBoxLayout;
  upper->setSpacing(20);
  upper->addWidget(picture_, 0, Qt::AlignTop);
  auto* side = new QVBoxLayout;
  side->setSpacing(0);
  auto* choices = new QWidget;
  auto* form = new QGridLayout(choices);
  form->setContentsMargins(0, 0, 0, 0);
  form->setHorizontalSpacing(8);
  form->setVerticalSpacing(8);
  form->setColumnStretch(1, 1);
  addFormRow(*form, theme, QStringLiteral("Unit"), *unit_);
  addFormRow(*form, theme, QStringLiteral("Move to the origin"), *toOrigin_);
  side->addWidget(choices);
  side->addSpacing(8);
  auto* unitNote = new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary);
  unitNote->setWordWrap(true);
  unitNote->setText(prepared.unitSource == DxfUnitSource::likely
                        ? QStringLiteral("The file names no unit; this is the likely one.")
                        : QStringLiteral("The unit that the file names."));
  side->addWidget(unitNote);
  side->addSpacing(12);
  extent_->setObjectName(QStringLiteral("import.extent"));
  extent_->setWordWrap(true);
  side->addWidget(extent_);
  side->addStretch();
  upper->addLayout(side, 1);
  content().addLayout(upper);

  setFirstFocus(unit_);
  addToTabOrder(unit_);
  addToTabOrder(toOrigin_);
  for (const PreparedDxf::Layer& layer : prepared.layers) {
    if (layers_.size() >= kMostSwitches) break;
    auto* taken = new Switch(theme, {});
    taken->setChecked(layer.isTaken);
    taken->setObjectName(QStringLiteral("import.layer.") + qtText(layer.name));
    taken->setAccessibleName(qtText(fmt::format("{}, {} objects", layer.name, layer.objects)));
    connect(taken, &QCheckBox::toggled, this, [this] { showChoices(); });
    addToTabOrder(taken);
    layers_.emplace_back(layer.name, taken);
  }
  if (!layers_.empty()) {
    content().addSpacing(16);
    content().addWidget(
        new TextLabel(theme, TextStyle::bodyStrong, TextLabel::Rank::primary, QStringLiteral("Layers")));
    content().addSpacing(4);
    auto* rows = new QWidget;
    auto* list = new QVBoxLayout(rows);
    list->setContentsMargins(0, 0, 8, 0);
    list->setSpacing(0);
    for (std::size_t i = 0; i < layers_.size(); ++i) {
      const PreparedDxf::Layer& layer = prepared.layers[i];
      auto* row = new QWidget;
      row->setFixedHeight(kLayerRow);
      auto* line = new QHBoxLayout(row);
      line->setContentsMargins(0, 0, 0, 0);
      line->setSpacing(8);
      auto* title = new TextLabel(theme, TextStyle::body, TextLabel::Rank::primary, qtText(layer.name));
      title->setElision(Qt::ElideRight);
      line->addWidget(title, 1);
      const QString detail = QStringLiteral("%1%2")
                                 .arg(layer.isHidden ? QStringLiteral("hidden, ") : QString())
                                 .arg(layer.objects);
      line->addWidget(new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, detail));
      line->addWidget(layers_[i].second);
      list->addWidget(row);
    }
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("import.layers"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(rows);
    rows->setAutoFillBackground(false);
    scroll->viewport()->setAutoFillBackground(false);
    scroll->setFixedHeight(std::min(kMostShownLayers, static_cast<int>(layers_.size())) * kLayerRow);
    content().addWidget(scroll);
  }
  leftOut_->setObjectName(QStringLiteral("import.leftOut"));
  leftOut_->setWordWrap(true);
  content().addSpacing(12);
  content().addWidget(leftOut_);

  setButtonHeight(28);
  Button* cancel = addButton(QStringLiteral("Cancel"), Button::Kind::outlined, "import.cancel");
  confirm_ =
      addButton(import_->damage() ? QStringLiteral("Import What Can Be Read") : QStringLiteral("Import"),
                Button::Kind::primary, "import.confirm");
  setCancelButton(cancel);
  setDefaultButton(confirm_);
  connect(unit_, &QComboBox::currentIndexChanged, this, [this] { showChoices(); });
  connect(toOrigin_, &QCheckBox::toggled, this, [this] { showChoices(); });
  connect(cancel, &QPushButton::clicked, this, [this] {
    hide();
    deleteLater();
  });
  connect(confirm_, &QPushButton::clicked, this, [this] { take(); });
  showChoices();
}

DxfImportOptions ImportSheet::options() const {
  DxfImportOptions options;
  options.unit = units_[static_cast<std::size_t>(unit_->currentIndex())];
  options.toOrigin = toOrigin_->isChecked();
  // With more layers than there are switches the usual ones are taken.
  if (!layers_.empty() && layers_.size() < kMostSwitches) {
    options.layers.emplace();
    for (const auto& [name, taken] : layers_) {
      if (taken->isChecked()) options.layers->push_back(name);
    }
  }
  return options;
}

void ImportSheet::showChoices() {
  std::vector<std::string> notes;
  if (import_->damage()) {
    notes.push_back(fmt::format("The file is damaged: {} {} {} left out", *import_->damage(),
                                import_->file().lostPlaces,
                                import_->file().lostPlaces == 1 ? "place is" : "places are"));
  }
  bool isAnything = false;
  try {
    PreparedDxf prepared = import_->prepared(application_.workspace().sketch, options());
    isAnything = !prepared.drawing.entities.empty();
    extent_->setText(qtText(DrawingImport::extentText(prepared)));
    if (prepared.bounds && liesFarFromOrigin(*prepared.bounds)) {
      notes.push_back(farFromOriginText(*prepared.bounds));
    }
    for (const std::string& text : leftOutTexts(prepared.drawing)) notes.push_back("Left out: " + text);
    picture_->show(EntityList(std::move(prepared.drawing.entities)));
  } catch (const UserError& error) {
    extent_->clear();
    notes.emplace_back(error.what());
    picture_->show({});
  }
  confirm_->setEnabled(isAnything);
  leftOut_->setText(joinedSentences(notes));
  leftOut_->setVisible(!notes.empty());
  content().invalidate();
  place();
}

void ImportSheet::take() {
  const DxfImportOptions chosen = options();
  hide();
  deleteLater();
  addImport(application_, *import_, chosen);
}

}  // namespace ostrelon
