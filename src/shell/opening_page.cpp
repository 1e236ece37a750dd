#include "shell/opening_page.h"

#include <QGridLayout>
#include <QStyle>
#include <QVBoxLayout>

#include "geometry/plan_item_operations.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kPadding = 16;
constexpr int kRowHeight = 26;
constexpr int kInputWidth = 128;
constexpr int kPickerRow = 30;

TextLabel* labelOf(Theme& theme, const char* title, QWidget* page) {
  return new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, QString::fromUtf8(title), page);
}

}  // namespace

OpeningPage::OpeningPage(Workspace& workspace, Theme& theme, QWidget* parent)
    : QWidget(parent), workspace_(workspace), theme_(theme) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(8);

  auto* titleRow = new QHBoxLayout;
  titleRow->setSpacing(10);
  icon_ = new QLabel(this);
  name_ = new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, {}, this);
  name_->setObjectName(QStringLiteral("inspector.opening.name"));
  name_->setElision(Qt::ElideRight);
  titleRow->addWidget(icon_);
  titleRow->addWidget(name_, 1);
  column->addLayout(titleRow);

  misfit_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::primary, {}, this);
  misfit_->setObjectName(QStringLiteral("inspector.opening.misfit"));
  misfit_->setWordWrap(true);
  column->addWidget(misfit_);

  metrics_ = new QGridLayout;
  metrics_->setHorizontalSpacing(8);
  metrics_->setVerticalSpacing(0);
  metrics_->setColumnStretch(1, 1);
  column->addLayout(metrics_);

  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(4);
  grid->setColumnStretch(0, 1);
  kind_ = addPicker(*grid, 0, "Kind", "inspector.opening.kind", {"Door", "Window", "Opening"});
  fields_[0] = addField(*grid, 1, OpeningField::width, "Width", "inspector.opening.width");
  fields_[1] = addField(*grid, 3, OpeningField::distance, "From the start", "inspector.opening.distance");
  hinge_ = addPicker(*grid, 5, "Hinge", "inspector.opening.hinge", {"Left", "Right"});
  doorLabels_[0] = grid->itemAtPosition(5, 0)->widget();
  swing_ = addPicker(*grid, 6, "Swing", "inspector.opening.swing", {"In", "Out"});
  doorLabels_[1] = grid->itemAtPosition(6, 0)->widget();
  column->addLayout(grid);
  connect(kind_, &QComboBox::activated, this, [this](int index) {
    if (shown_) setOpeningKind(workspace_, shown_->id, static_cast<OpeningKind>(index));
  });
  for (Picker* picker : {hinge_, swing_}) connect(picker, &QComboBox::activated, this, [this] { hang(); });

  column->addSpacing(8);
  column->addWidget(new Hairline(theme_, Qt::Horizontal, this));
  column->addSpacing(8);
  flip_ = new Button(theme_, Button::Kind::outlined, QStringLiteral("Flip"), this);
  flip_->setObjectName(QStringLiteral("inspector.opening.flip"));
  flip_->setKeyHint(QStringLiteral("Space"));
  connect(flip_, &QPushButton::clicked, this, [this] { workspace_.board.flipSelectedItem(); });
  column->addWidget(flip_);
  auto* duplicate = new Button(theme_, Button::Kind::outlined, QStringLiteral("Duplicate"), this);
  duplicate->setObjectName(QStringLiteral("inspector.opening.duplicate"));
  connect(duplicate, &QPushButton::clicked, this,
          [this] { duplicateSelectedPlanItem(workspace_.sketch, workspace_.messages); });
  column->addWidget(duplicate);
  auto* remove = new Button(theme_, Button::Kind::dangerous, QStringLiteral("Delete"), this);
  remove->setObjectName(QStringLiteral("inspector.opening.delete"));
  remove->setIconDrawing(Icon::bin, 16);
  connect(remove, &QPushButton::clicked, this,
          [this] { deleteSelectedPlanItem(workspace_.sketch, workspace_.messages); });
  column->addWidget(remove);
  column->addStretch();
  connect(&theme_, &Theme::changed, this, [this] {
    if (shown_) showOpening(*shown_);
  });
}

OpeningPage::FieldRow OpeningPage::addField(QGridLayout& grid, int row, OpeningField field, const char* title,
                                            const char* name) {
  auto* input = new Field(theme_, true, this);
  input->setObjectName(QString::fromUtf8(name));
  input->setAccessibleName(QStringLiteral("%1 in feet and inches").arg(QString::fromUtf8(title)));
  input->setFixedWidth(kInputWidth);
  auto* note = new TextLabel(theme_, TextStyle::caption, TextLabel::Rank::primary, {}, this);
  note->setObjectName(QString::fromUtf8(name) + QStringLiteral(".note"));
  note->setWordWrap(true);
  note->hide();
  grid.addWidget(labelOf(theme_, title, this), row, 0);
  grid.addWidget(input, row, 1);
  grid.addWidget(note, row + 1, 0, 1, 2);
  const FieldRow made{field, input, note};
  connect(input, &QLineEdit::returnPressed, this, [this, made] { commit(made); });
  // A field that is left is applied as with Return, unless it is refused: then it shows again what holds.
  connect(input, &QLineEdit::editingFinished, this, [this, made] {
    if (made.input->hasFocus() || !shown_) return;
    if (made.input->isModified()) commit(made);
    made.input->setModified(false);
    showOpening(Opening(*shown_));
  });
  return made;
}

Picker* OpeningPage::addPicker(QGridLayout& grid, int row, const char* title, const char* name,
                               std::initializer_list<const char*> choices) {
  auto* picker = new Picker(theme_, this);
  picker->setObjectName(QString::fromUtf8(name));
  picker->setAccessibleName(QString::fromUtf8(title));
  picker->setFixedWidth(kInputWidth);
  for (const char* choice : choices) picker->addItem(QString::fromUtf8(choice));
  grid.addWidget(labelOf(theme_, title, this), row, 0);
  grid.addWidget(picker, row, 1);
  grid.setRowMinimumHeight(row, kPickerRow);
  return picker;
}

void OpeningPage::hang() {
  if (!shown_) return;
  setDoorHanging(
      workspace_, shown_->id,
      {static_cast<DoorHinge>(hinge_->currentIndex()), static_cast<DoorSwing>(swing_->currentIndex())});
}

void OpeningPage::commit(const FieldRow& row) {
  if (!shown_) return;
  const auto refusal = commitOpeningField(workspace_, shown_->id, row.field, plainText(row.input->text()));
  showNote(row, refusal);
  if (refusal) {
    row.input->selectAll();
    return;
  }
  row.input->setModified(false);
  if (const Opening* now = workspace_.sketch.drawing->plan.opening(shown_->id)) showOpening(Opening(*now));
}

void OpeningPage::showNote(const FieldRow& row, const std::optional<std::string>& refusal) {
  if (row.input->property("invalid").toBool() != refusal.has_value()) {
    row.input->setProperty("invalid", refusal.has_value());
    row.input->style()->polish(row.input);  // the style sheet knows the property
  }
  row.note->setText(qtText(refusal.value_or("")));
  row.note->setVisible(refusal.has_value());
  row.input->setAccessibleDescription(row.note->text());
  Q_EMIT heightChanged();
}

void OpeningPage::showOpening(const Opening& opening) {
  const bool isAnother = !shown_ || shown_->id != opening.id;
  shown_ = opening;
  icon_->setPixmap(iconPixmap(iconOf(opening), 18, theme_.foreground(), devicePixelRatioF()));
  name_->setText(qtText(openingTypeLabel(opening.kind)));
  const std::string misfit = planItemMisfit(workspace_.sketch, opening);
  misfit_->setText(qtText(misfit));
  misfit_->setVisible(!misfit.empty());
  showMetricRows(openingMetricRows(workspace_, opening));
  kind_->setCurrentIndex(static_cast<int>(opening.kind));
  for (const FieldRow& row : fields_) {
    if (!isAnother && row.input->hasFocus() && row.input->isModified()) continue;
    row.input->setText(qtText(openingFieldText(opening, row.field)));
    row.input->setModified(false);
    showNote(row, std::nullopt);
  }
  const bool isDoor = opening.kind == OpeningKind::door;
  hinge_->setCurrentIndex(static_cast<int>(opening.hinge));
  swing_->setCurrentIndex(static_cast<int>(opening.swing));
  for (QWidget* widget : {static_cast<QWidget*>(hinge_), static_cast<QWidget*>(swing_), doorLabels_[0],
                          doorLabels_[1], static_cast<QWidget*>(flip_)}) {
    widget->setVisible(isDoor);
  }
}

void OpeningPage::showMetricRows(const std::vector<InspectorMetricRow>& rows) {
  while (metricRows_.size() < rows.size()) {
    const int row = static_cast<int>(metricRows_.size());
    auto* label = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::secondary, {}, this);
    auto* value = new TextLabel(theme_, TextStyle::mono, TextLabel::Rank::primary, {}, this);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setElision(Qt::ElideRight);
    for (TextLabel* text : {label, value}) text->setFixedHeight(kRowHeight);
    metrics_->addWidget(label, row, 0);
    metrics_->addWidget(value, row, 1);
    metricRows_.emplace_back(label, value);
  }
  for (std::size_t i = 0; i < metricRows_.size(); ++i) {
    const auto& [label, value] = metricRows_[i];
    const bool isUsed = i < rows.size();
    label->setVisible(isUsed);
    value->setVisible(isUsed);
    if (!isUsed) continue;
    label->setText(qtText(rows[i].label));
    value->setText(qtText(rows[i].value));
    value->setAccessibleName(qtText(rows[i].label + ": " + rows[i].value));
  }
}

}  // namespace ostrelon
