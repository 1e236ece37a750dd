#include "shell/wall_system_panel.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>
#include <cmath>

#include "shell/accessibility.h"
#include "shell/entity_list_model.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kEdge = 16;
constexpr int kInset = 8;
constexpr int kRowHeight = 48;
constexpr int kRowGap = 2;
constexpr int kLabelColumn = 66;
constexpr int kPreviewHeight = 88;
constexpr const char* kActiveTag = "Active";
constexpr int kSmallPreviewHeight = 44;  // in a low window
constexpr int kLowPanel = 620;
constexpr int kFieldPitch = 36;
constexpr int kNoteHeight = 16;
constexpr int kHeadingButton = 26;
constexpr double kSwatchScale = 1.6;   // px an inch
constexpr double kPreviewScale = 4.0;  // px an inch
// Above this many sketch units a thickness is taken to be meant in inches, as those of the systems of a new
// document are.
constexpr double kThickestInFeet = 2;
// Heading, fields, two notes and button with their gaps; the preview comes on top.
constexpr int kInspectorHeight = 16 + 16 + 12 + 16 + 4 * kFieldPitch + 2 * kNoteHeight + 8 + 28 + 16;

// The thickness for a picture, in inches.
double picturedInches(double thickness) { return thickness > kThickestInFeet ? thickness : thickness * 12; }

FieldMask shownFields(const Workspace& workspace) {
  return fieldsOf(workspace.sketch.drawing, workspace.sketch.selection);
}

// A wall in section: two faces, the fill between them, and a dashed centre.
void paintBand(QPainter& painter, const Theme& theme, const QRectF& band, bool hasEnds) {
  QColor fill = theme.muted();
  fill.setAlphaF(0.55F);
  painter.fillRect(band, fill);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(theme.foreground(), 1.5));
  if (hasEnds) {
    painter.drawRect(band);
  } else {
    painter.drawLine(band.topLeft(), band.topRight());
    painter.drawLine(band.bottomLeft(), band.bottomRight());
  }
  QPen dashed(theme.foreground(), 0.75);
  dashed.setCapStyle(Qt::FlatCap);
  dashed.setDashPattern({4 / 0.75, 3 / 0.75});
  painter.setPen(dashed);
  painter.drawLine(QPointF(band.left(), band.center().y()), QPointF(band.right(), band.center().y()));
}

}  // namespace

// --- The rows

int WallSystemListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant WallSystemListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const WallSystemRow& shown = row(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return qtText(shown.spec.name);
    case Qt::AccessibleTextRole: {
      QString words = qtText(shown.spec.name + ", " + wallSystemMeasures(shown.spec));
      if (shown.isActive) words += QStringLiteral(", active");
      if (shown.isAssignedToSelection) words += QStringLiteral(", used by the selected wall");
      return words;
    }
    case kIdentifierRole:
      return QStringLiteral("wallSystems.row.") + qtText(shown.spec.name);
    case kSelectedRole:
      return shown.isShown;
    default:
      return {};
  }
}

void WallSystemListModel::setRows(std::vector<WallSystemRow> rows) {
  if (rows == rows_) return;
  if (rows.size() == rows_.size()) {
    rows_ = std::move(rows);
    if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    return;
  }
  beginResetModel();
  rows_ = std::move(rows);
  endResetModel();
}

class WallSystemRowsView final : public RowsView {
 public:
  WallSystemRowsView(Theme& theme, WallSystemListModel& model, QWidget* parent)
      : RowsView(theme, parent), model_(model) {
    setModel(&model);
    setSelectionMode(SingleSelection);
  }

  int wantedHeight() const { return contentHeight(); }
  bool isRowSelected(int row) const override { return model_.row(row).isShown; }

 protected:
  int rowTop(int row) const override { return row * (kRowHeight + kRowGap); }
  int rowHeight(int /*row*/) const override { return kRowHeight; }
  int rowAt(int y) const override {
    return std::clamp(y / (kRowHeight + kRowGap), 0, std::max(0, rowCount() - 1));
  }
  int contentHeight() const override { return std::max(0, rowCount() * (kRowHeight + kRowGap) - kRowGap); }

  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override {
    const WallSystemRow& shown = model_.row(row);
    const bool onMuted = shown.isShown || isHovered;
    if (onMuted) paintBox(painter, box, 6, theme().muted(), QColor());
    if (hasFocus() && currentIndex().row() == row) paintBox(painter, box, 6, QColor(), theme().foreground());

    const QRectF swatch(box.left() + 8, box.center().y() - 13, 32, 28);
    paintBox(painter, swatch, 4, theme().background(), theme().border());
    painter.save();
    painter.setClipRect(swatch.adjusted(1, 1, -1, -1));
    const double thickness = std::clamp(picturedInches(shown.spec.thickness) * kSwatchScale, 2.0, 22.0);
    const double centre = swatch.center().y();
    paintBand(painter, theme(), QRectF(swatch.left(), centre - thickness / 2, swatch.width(), thickness),
              false);
    painter.restore();

    int right = box.right() - 10;
    if (shown.isActive) {
      const QRectF tagBox(right - tagWidth(), box.center().y() - 8.5, tagWidth(), 18);
      paintBox(painter, tagBox, 4, theme().card(), theme().border());
      painter.setFont(fontOf(TextStyle::tag));
      painter.setPen(theme().foreground());
      painter.drawText(tagBox, Qt::AlignCenter, kActiveTag);
      right -= tagWidth() + 8;
    }
    if (shown.isAssignedToSelection) {
      paintIcon(painter, Icon::check, QRectF(right - 18, box.top(), 18, box.height()), 18, theme().active());
    }

    const QRect words = wordsBox(shown, box);
    painter.setFont(fontOf(TextStyle::bodyStrong));
    painter.setPen(theme().foreground());
    painter.drawText(words.adjusted(0, 5, 0, -23), Qt::AlignVCenter | Qt::AlignLeft, shownName(shown, words));
    painter.setFont(fontOf(TextStyle::caption));
    painter.setPen(onMuted ? theme().foreground() : theme().secondaryOnCard());
    painter.drawText(words.adjusted(0, 25, 0, -6), Qt::AlignVCenter | Qt::AlignLeft,
                     shownMeasures(shown, words));
  }

  // What is cut, and the notes, which have no place in the row.
  QString toolTipText(int row, const QRect& box) const override {
    const WallSystemRow& shown = model_.row(row);
    const QRect words = wordsBox(shown, box);
    const QString name = qtText(shown.spec.name);
    const QString measures = qtText(wallSystemMeasures(shown.spec));
    QStringList lines;
    if (shownName(shown, words) != name) lines.append(name);
    if (shownMeasures(shown, words) != measures) lines.append(measures);
    if (!shown.spec.assemblyNotes.empty()) lines.append(qtText(shown.spec.assemblyNotes));
    return lines.join('\n');
  }

  void keyPressEvent(QKeyEvent* event) override {
    if (!clickByReturn(*event)) RowsView::keyPressEvent(event);
  }

 private:
  static int tagWidth() { return QFontMetrics(fontOf(TextStyle::tag)).horizontalAdvance(kActiveTag) + 14; }
  // The words have what the marks at the right leave.
  static QRect wordsBox(const WallSystemRow& shown, const QRect& box) {
    const int marks = (shown.isActive ? tagWidth() + 8 : 0) + (shown.isAssignedToSelection ? 18 + 8 : 0);
    return box.adjusted(52, 0, -11 - marks, 0);
  }
  static QString shownName(const WallSystemRow& shown, const QRect& words) {
    return elided(qtText(shown.spec.name), fontOf(TextStyle::bodyStrong), Qt::ElideRight, words.width());
  }
  static QString shownMeasures(const WallSystemRow& shown, const QRect& words) {
    return elided(qtText(wallSystemMeasures(shown.spec)), fontOf(TextStyle::caption), Qt::ElideRight,
                  words.width());
  }

  WallSystemListModel& model_;
};

// --- The preview

WallPreview::WallPreview(Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
  setObjectName(QStringLiteral("wallSystems.preview"));
  setAccessibleRole(*this, QAccessible::Graphic);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void WallPreview::setThickness(double thickness) {
  thickness_ = thickness;
  setAccessibleName(QStringLiteral("Wall %1 thick").arg(qtText(wallSizeText(thickness))));
  update();
}

void WallPreview::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBox(painter, rect(), 8, theme_.background(), theme_.border());
  if (!(thickness_ > 0)) return;
  const QString text = qtText(wallSizeText(thickness_));
  const QFont font = fontOf(TextStyle::mono);
  const int textWidth = std::min(QFontMetrics(font).horizontalAdvance(text), 60);
  const double band =
      std::clamp(picturedInches(thickness_) * kPreviewScale, 2.0, std::max(2.0, height() - 16.0));
  const double top = std::round((height() - band) / 2) + 0.5;
  const double dimensionX = std::round(width() - 16.0 - textWidth - 14) + 0.5;
  paintBand(painter, theme_, QRectF(20.5, top, dimensionX - 13 - 20.5, band), true);

  painter.setPen(QPen(theme_.mutedForeground(), 1));
  painter.drawLine(QPointF(dimensionX, top), QPointF(dimensionX, top + band));
  for (const double y : {top, top + band}) {
    painter.drawLine(QPointF(dimensionX - 5, y), QPointF(dimensionX + 5, y));
    painter.drawLine(QPointF(dimensionX - 3.5, y + 3.5), QPointF(dimensionX + 3.5, y - 3.5));
  }
  painter.setFont(font);
  painter.setPen(theme_.foreground());
  painter.drawText(QRectF(dimensionX + 9, 0, textWidth + 4, height()), Qt::AlignVCenter | Qt::AlignLeft,
                   elided(text, font, Qt::ElideRight, textWidth));
}

// --- The panel

WallSystemPanelView::WallSystemPanelView(Workspace& workspace, Theme& theme, QWidget* parent)
    : Panel(theme, Qt::LeftEdge, parent),
      workspace_(workspace),
      heading_(new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "WALL SYSTEMS", this)),
      model_(new WallSystemListModel(this)),
      list_(new WallSystemRowsView(theme, *model_, this)),
      divider_(new Hairline(theme, Qt::Horizontal, this)),
      contextTitle_(new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, {}, this)),
      preview_(new WallPreview(theme, this)),
      assignButton_(
          new Button(theme, Button::Kind::outlined, QStringLiteral("Assign to selected wall"), this)),
      unfoldButton_(new Button(theme, Button::Kind::plain, QString(), this)),
      update_(workspace, shownFields(workspace), this, [this] { refresh(); }) {
  setObjectName(QStringLiteral("wallSystems"));
  setAccessibleName(QStringLiteral("Wall systems"));
  list_->setObjectName(QStringLiteral("wallSystems.list"));
  list_->setAccessibleName(QStringLiteral("Wall systems"));
  contextTitle_->setObjectName(QStringLiteral("wallSystems.contextTitle"));
  contextTitle_->setElision(Qt::ElideRight);
  connect(list_, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
    selectWallSystemRow(workspace_, UUID(model_->row(index.row()).spec.id));
  });

  headingButtons_ = {addHeadingButton(Icon::plus, "wallSystems.add", QStringLiteral("Add wall system")),
                     addHeadingButton(Icon::stack, "wallSystems.duplicate", QStringLiteral("Duplicate")),
                     addHeadingButton(Icon::bin, "wallSystems.delete", QStringLiteral("Delete"))};
  connect(headingButtons_[0], &QPushButton::clicked, this, [this] {
    addWallSystemFromPanel(workspace_);
    editName();
  });
  connect(headingButtons_[1], &QPushButton::clicked, this, [this] {
    duplicatePanelSystem(workspace_);
    editName();
  });
  connect(headingButtons_[2], &QPushButton::clicked, this, [this] { deletePanelSystem(workspace_); });
  setTabOrder(headingButtons_.back(), list_);
  connect(list_, &QAbstractItemView::doubleClicked, this, [this] { editName(); });

  struct FieldText {
    WallSystemField field;
    const char* label;
    const char* identifier;
  };
  constexpr std::array<FieldText, 4> texts{
      FieldText{WallSystemField::name, "Name", "wallSystems.name"},
      FieldText{WallSystemField::thickness, "Thickness", "wallSystems.thickness"},
      FieldText{WallSystemField::height, "Height", "wallSystems.height"},
      FieldText{WallSystemField::assemblyNotes, "Assembly", "wallSystems.assembly"}};
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const bool isNumeric =
        texts[i].field == WallSystemField::thickness || texts[i].field == WallSystemField::height;
    fields_[i].field = texts[i].field;
    fields_[i].label =
        new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, texts[i].label, this);
    auto* input = new Field(theme, isNumeric, this);
    fields_[i].input = input;
    input->setObjectName(texts[i].identifier);
    input->setAccessibleName(texts[i].label);
    if (texts[i].field == WallSystemField::assemblyNotes) {
      input->setItalicPlaceholder(QStringLiteral("notes"));
      fields_[i].note = nullptr;
    } else {
      fields_[i].note = new TextLabel(theme, TextStyle::caption, TextLabel::Rank::secondary, {}, this);
      fields_[i].note->setObjectName(QString::fromLatin1(texts[i].identifier) + QStringLiteral(".note"));
      fields_[i].note->setElision(Qt::ElideRight);
    }
    input->installEventFilter(this);
    connect(input, &QLineEdit::textEdited, this, [this, i] { showNote(fields_[i], std::nullopt); });
    connect(input, &QLineEdit::returnPressed, this, [this, i] { commit(fields_[i]); });
    if (i > 0) setTabOrder(fields_[i - 1].input, input);
  }
  assignButton_->setObjectName(QStringLiteral("wallSystems.assign"));
  setTabOrder(fields_.back().input, assignButton_);
  connect(assignButton_, &QPushButton::clicked, this, [this] { assignPanelSystemToSelection(workspace_); });

  unfoldButton_->setObjectName(QStringLiteral("wallSystems.unfold"));
  unfoldButton_->setIconDrawing(Icon::wall, 18);
  unfoldButton_->setPaddings(7, 30);
  unfoldButton_->setAccessibleName(QStringLiteral("Show wall systems"));
  unfoldButton_->setToolTip(QStringLiteral("Wall systems"));
  connect(unfoldButton_, &QPushButton::clicked, this, &WallSystemPanelView::unfoldRequested);
  setRail(false);
  refresh();
}

void WallSystemPanelView::setRail(bool rail) {
  rail_ = rail;
  for (QObject* child : children()) {
    auto* widget = qobject_cast<QWidget*>(child);
    if (widget != nullptr) widget->setVisible((widget == unfoldButton_) == rail);
  }
  place();
}

void WallSystemPanelView::resizeEvent(QResizeEvent* event) {
  Panel::resizeEvent(event);
  place();
}

void WallSystemPanelView::place() {
  unfoldButton_->setGeometry((width() - 32 + 1) / 2, 8, 32, 30);
  const int inner = width() - 2 * kEdge;
  int y = kEdge;
  const int buttons = static_cast<int>(headingButtons_.size()) * kHeadingButton;
  heading_->setGeometry(kEdge, y, inner - buttons, 16);
  int x = width() - kEdge + 5 - buttons;
  for (Button* button : headingButtons_) {
    button->setGeometry(x, y - 5, kHeadingButton, kHeadingButton);
    x += kHeadingButton;
  }
  y += 16 + 8;
  const int previewHeight = height() < kLowPanel ? kSmallPreviewHeight : kPreviewHeight;
  const int listHeight = std::clamp(height() - y - 16 - kInspectorHeight - previewHeight, kRowHeight,
                                    std::max(kRowHeight, list_->wantedHeight()));
  list_->setGeometry(kInset + 1, y, width() - 2 * kInset - 1, listHeight);
  y += listHeight + 12;
  divider_->setGeometry(1, y, width() - 1, 1);
  y += 1 + 16;
  contextTitle_->setGeometry(kEdge, y, inner, 16);
  y += 16 + 12;
  preview_->setGeometry(kEdge, y, inner, previewHeight);
  y += previewHeight + 16;
  for (const FieldRow& row : fields_) {
    row.label->setGeometry(kEdge, y, kLabelColumn, 28);
    row.input->setGeometry(kEdge + kLabelColumn, y, inner - kLabelColumn, 28);
    y += kFieldPitch;
    if (row.note == nullptr) continue;
    // The name has a note only while it is refused; it then stands in the gap below the field.
    const bool isName = row.field == WallSystemField::name;
    row.note->setGeometry(kEdge + kLabelColumn + 2, y - 7, inner - kLabelColumn - 2, kNoteHeight);
    if (!isName || !row.note->text().isEmpty()) y += kNoteHeight;
  }
  assignButton_->setGeometry(kEdge, y + 8, inner, 28);
}

bool WallSystemPanelView::eventFilter(QObject* object, QEvent* event) {
  // A field that is left without Return shows again what holds.
  if (event->type() == QEvent::FocusOut) showFieldTexts(true);
  return Panel::eventFilter(object, event);
}

void WallSystemPanelView::refresh() {
  model_->setRows(wallSystemRows(workspace_));
  contextTitle_->setText(qtText(panelContextTitle(workspace_)));
  assignButton_->setEnabled(selectedWallEntity(workspace_) != nullptr);
  const WallSystemSpec* spec = panelSystem(workspace_);
  for (std::size_t i = 1; i < headingButtons_.size(); ++i) headingButtons_[i]->setEnabled(spec != nullptr);
  headingButtons_.back()->setEnabled(model_->rowCount() > 1);
  const bool isAnother = !spec || !shown_ || shown_->id != spec->id;
  shown_ = spec != nullptr ? std::optional(*spec) : std::nullopt;
  preview_->setThickness(spec != nullptr ? spec->thickness : 0);
  showFieldTexts(isAnother);
  list_->viewport()->update();
  place();
}

void WallSystemPanelView::showFieldTexts(bool evenWhileEditing) {
  for (const FieldRow& row : fields_) {
    row.input->setEnabled(shown_.has_value());
    if (!evenWhileEditing && row.input->hasFocus() && row.input->isModified()) continue;
    const QString text = shown_ ? qtText(wallSystemFieldText(*shown_, row.field)) : QString();
    if (row.input->text() != text) row.input->setText(text);
    row.input->setModified(false);
    showNote(row, std::nullopt);
    // A text that is too long for the field shows its beginning.
    if (!row.input->hasFocus()) row.input->setCursorPosition(0);
  }
}

void WallSystemPanelView::showNote(const FieldRow& row, const std::optional<std::string>& refusal) {
  if (row.note == nullptr) return;
  if (row.input->property("invalid").toBool() != refusal.has_value()) {
    row.input->setProperty("invalid", refusal.has_value());
    row.input->style()->polish(row.input);  // the style sheet knows the property
  }
  std::string text;
  if (refusal) {
    text = *refusal;
  } else if (shown_ && row.field != WallSystemField::name) {
    text = wallSizeInInches(row.field == WallSystemField::thickness ? shown_->thickness : shown_->height);
  }
  row.note->setRank(refusal ? TextLabel::Rank::primary : TextLabel::Rank::secondary);
  row.note->setText(qtText(text));
  row.input->setAccessibleDescription(qtText(text));
  place();
}

void WallSystemPanelView::commit(const FieldRow& row) {
  if (!shown_) return;
  const auto refusal = commitWallSystemField(workspace_, shown_->id, row.field, plainText(row.input->text()));
  if (refusal) {
    row.input->selectAll();
    showNote(row, refusal);
    return;
  }
  row.input->setModified(false);
  refresh();
}

Button* WallSystemPanelView::addHeadingButton(Icon icon, const char* identifier, const QString& name) {
  auto* button = new Button(theme(), Button::Kind::plain, QString(), this);
  button->setObjectName(identifier);
  button->setIconDrawing(icon, 16);
  button->setPaddings(5, kHeadingButton);
  button->setAccessibleName(name);
  button->setToolTip(name);
  return button;
}

void WallSystemPanelView::editName() {
  refresh();
  Field* name = fields_.front().input;
  name->setFocus(Qt::OtherFocusReason);
  name->selectAll();
}

}  // namespace ostrelon
