#include "shell/canvas_overlay.h"

#include <fmt/format.h>

#include <QAccessible>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "app/align.h"
#include "interaction/canvas_transform.h"
#include "interaction/drawing_tools.h"
#include "interaction/segment_label.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kEdge = 16;
constexpr int kStackGap = 8;
constexpr int kToastHeight = 40;
constexpr int kNoteHeight = 16;
constexpr const char* kKeptNote = "Kept: File, History";
constexpr int kToastWidest = 480;
constexpr int kToastRaisedBelow = 720;
constexpr int kToastRaise = 60;

// Everything that the badges show.
FieldMask shownFields(const Workspace& workspace) {
  const Board& board = workspace.board;
  return fieldsOf(workspace.sketch.drawing, workspace.sketch.selection, workspace.messages.toast, board.view,
                  board.tool, board.gesture, board.snap, board.tracking, board.hover, board.lengthEditor,
                  board.cursor, board.trimCuttingEdge);
}

// The name of what is under the pointer.
std::optional<std::string> hoverLabelText(const Workspace& workspace) {
  const Hover& hover = workspace.board.hover;
  if (!hover.viewPoint) return std::nullopt;
  if (hover.planItem) {
    const auto item = findPlanItem(workspace.sketch.drawing->plan, *hover.planItem);
    return item ? std::optional(planItemLabel(workspace.sketch, *item)) : std::nullopt;
  }
  return hover.entityID ? workspace.sketch.labelOf(*hover.entityID) : std::nullopt;
}

QString entityCount(std::size_t count) {
  return QStringLiteral("%1 %2").arg(count).arg(count == 1 ? "entity" : "entities");
}

// A badge beside the pointer is never wider than the canvas.
void fitBadge(Badge& badge) {
  const int room =
      badge.parentWidget() != nullptr ? badge.parentWidget()->width() - 16 : badge.sizeHint().width();
  badge.resize(std::min(badge.sizeHint().width(), std::max(room, 80)), badge.sizeHint().height());
}

void showBadge(Badge& badge, const std::optional<std::string>& text, Icon icon, TextStyle style) {
  badge.setVisible(text.has_value());
  if (!text) return;
  badge.setParts({{.icon = icon, .words = qtText(*text), .iconInk = BadgePart::Ink::active, .style = style}});
  fitBadge(badge);
}

}  // namespace

// --- The hover label

EntityHoverLabel::EntityHoverLabel(Theme& theme, QWidget* parent)
    : Badge(theme, QStringLiteral("canvas.hoverLabel"), parent) {}

void EntityHoverLabel::show(const QString& label, bool accent) {
  setFilled(accent);
  setParts({{.words = label}});
  fitBadge(*this);
  setVisible(true);
}

// --- The toast

ToastView::ToastView(Theme& theme, QWidget* parent) : QLabel(parent), theme_(theme) {
  setObjectName(QStringLiteral("canvas.toast"));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
  slide_.setStartValue(0.0);
  slide_.setEndValue(1.0);
  slide_.setEasingCurve(QEasingCurve::OutCubic);
  connect(&slide_, &QVariantAnimation::valueChanged, this, [this] { place(); });
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void ToastView::setToast(std::optional<DocumentToastState> toast, bool isKept) {
  const bool hasNote = isKept && toast.has_value();
  if (isKept && !toast) toast = DocumentToastState{kKeptNote, DocumentToastState::Style::success};
  if (toast == toast_ && hasNote == hasNote_) return;
  const bool slidesIn = !toast_ && toast;
  toast_ = toast;
  hasNote_ = hasNote;
  if (spinnerTimer_ != 0) killTimer(std::exchange(spinnerTimer_, 0));
  if (!toast) {
    slide_.stop();
    hide();
    return;
  }
  setText(qtText(toast->message));
  setAccessibleName(hasNote_ ? text() + QStringLiteral(" ") + QLatin1String(kKeptNote) : text());
  if (toast->style == DocumentToastState::Style::saving && animationMilliseconds(1) > 0) {
    spinnerTimer_ = startTimer(40);
  }
  show();
  raise();
  if (slidesIn) {
    slide_.setDuration(animationMilliseconds(120));
    slide_.start();
    if (animationMilliseconds(120) == 0) place();
  }
  place();
  update();
  QAccessibleEvent told(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

void ToastView::setAnchor(QPoint bottomMiddle, int canvasWidth) {
  anchor_ = bottomMiddle;
  canvasWidth_ = canvasWidth;
  if (toast_) place();
}

int ToastView::wantedWidth(int canvasWidth) const {
  if (!toast_) return 0;
  const int room = std::min(kToastWidest, canvasWidth - 2 * kEdge);
  // Painted words may be a fraction wider than measured ones; what fits is never cut short.
  int words = QFontMetrics(fontOf(TextStyle::control)).horizontalAdvance(qtText(toast_->message)) + 2;
  if (hasNote_) {
    const QFontMetrics note(fontOf(TextStyle::caption));
    words = std::max(words, note.horizontalAdvance(QLatin1String(kKeptNote)) + 2);
  }
  return std::clamp(words + 16 + 12 + 2 * 14, 120, std::max(120, room));
}

int ToastView::cardHeight() const { return hasNote_ ? kToastHeight + kNoteHeight : kToastHeight; }

QRect ToastView::card() const {
  const int reach = shadowReach(2);
  return geometry().adjusted(reach, reach, -reach, -reach);
}

void ToastView::place() {
  if (!toast_) return;
  const int width = wantedWidth(canvasWidth_);
  const int reach = shadowReach(2);
  const double shown = slide_.state() == QAbstractAnimation::Running ? slide_.currentValue().toDouble() : 1.0;
  const int rise = static_cast<int>(std::lround((1 - shown) * 12));
  setGeometry(anchor_.x() - width / 2 - reach, anchor_.y() - cardHeight() - reach + rise, width + 2 * reach,
              cardHeight() + 2 * reach);
}

void ToastView::paintEvent(QPaintEvent* /*event*/) {
  if (!toast_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (slide_.state() == QAbstractAnimation::Running) painter.setOpacity(slide_.currentValue().toDouble());
  const int reach = shadowReach(2);
  const QRectF box = QRectF(rect()).adjusted(reach, reach, -reach, -reach);
  paintShadow(painter, box, theme_, 2, 10);
  paintBox(painter, box, 10, theme_.card(), theme_.border());
  const QRectF message = box.adjusted(0, 0, 0, hasNote_ ? -kNoteHeight : 0);
  const QRectF iconBox(box.left() + 14, box.top(), 16, message.height());
  switch (toast_->style) {
    case DocumentToastState::Style::saving:
      painter.save();
      painter.translate(iconBox.center());
      painter.rotate(spinnerAngle_);
      painter.drawPixmap(QPointF(-8, -8),
                         iconPixmap(Icon::spinner, 16, theme_.mutedForeground(), devicePixelRatioF()));
      painter.restore();
      break;
    case DocumentToastState::Style::success:
      paintIcon(painter, Icon::check, iconBox, 16, theme_.green());
      break;
    case DocumentToastState::Style::error:
      paintIcon(painter, Icon::alert, iconBox, 16, theme_.destructive());
      break;
  }
  const QRectF words = message.adjusted(14 + 16 + 12, 0, -14, 0);
  painter.setFont(fontOf(TextStyle::control));
  painter.setPen(theme_.foreground());
  painter.drawText(words, Qt::AlignVCenter | Qt::AlignLeft,
                   painter.fontMetrics().elidedText(qtText(toast_->message), Qt::ElideRight,
                                                    static_cast<int>(words.width())));
  if (!hasNote_) return;
  painter.setFont(fontOf(TextStyle::caption));
  painter.setPen(theme_.mutedForeground());
  // Right below the words, whose line is lower than their box.
  painter.drawText(words.translated(0, 20), Qt::AlignVCenter | Qt::AlignLeft, QLatin1String(kKeptNote));
}

void ToastView::timerEvent(QTimerEvent* event) {
  if (event->timerId() != spinnerTimer_) return;
  spinnerAngle_ = (spinnerAngle_ + 15) % 360;
  update();
}

// --- The controls of the view

ViewportButton::ViewportButton(Theme& theme, const QString& title, Icon icon, const QString& identifier,
                               QWidget* parent)
    : Button(theme, Kind::plain, QString(), parent) {
  setObjectName(identifier);
  setAccessibleName(title);
  setIconDrawing(icon, 16);
  setRadius(4);
  setFixedSize(28, 24);
}

// The canvas paints the pill of the length; the button over it takes the click, and shows itself while
// the pointer or the focus is on it.
class LengthLabelButton final : public Button {
 public:
  LengthLabelButton(Theme& theme, QWidget* parent) : Button(theme, Kind::outlined, QString(), parent) {}

 protected:
  void paintEvent(QPaintEvent* event) override {
    if (underMouse() || hasFocus()) Button::paintEvent(event);
  }
};

// --- The whole

CanvasOverlay::CanvasOverlay(Application& application, Theme& theme, QWidget& canvas)
    : QObject(&canvas),
      application_(application),
      workspace_(application.workspace()),
      theme_(theme),
      canvas_(canvas),
      status_(new Badge(theme, QStringLiteral("canvas.statusBadge"), &canvas)),
      coordinates_(new Badge(theme, QStringLiteral("canvas.cursorCoordinates"), &canvas)),
      trimInstruction_(new Badge(theme, QStringLiteral("canvas.trimInstruction"), &canvas)),
      snapFeedback_(new Badge(theme, QStringLiteral("canvas.snapFeedback"), &canvas)),
      measurement_(new Badge(theme, QStringLiteral("canvas.draftMeasurement"), &canvas)),
      hoverLabel_(new EntityHoverLabel(theme, &canvas)),
      alignBar_(new BadgeBox(theme, 8, &canvas)),
      alignHorizontal_(new Button(theme, Button::Kind::plain, QStringLiteral("Align horizontal"), alignBar_)),
      alignVertical_(new Button(theme, Button::Kind::plain, QStringLiteral("Align vertical"), alignBar_)),
      viewport_(new BadgeBox(theme, 8, &canvas)),
      gridScale_(new TextLabel(theme, TextStyle::mono, TextLabel::Rank::secondary, {}, viewport_)),
      percentage_(new TextLabel(theme, TextStyle::measurement, TextLabel::Rank::primary, {}, viewport_)),
      lengthLabel_(new LengthLabelButton(theme, &canvas)),
      lengthEditor_(new Field(theme, true, &canvas)),
      lengthError_(new Badge(theme, QStringLiteral("canvas.segmentLengthError"), &canvas)),
      toast_(new ToastView(theme, &canvas)),
      update_(workspace_, shownFields(workspace_), this, [this] { refresh(); }),
      keptNotice_(
          application.observe([this](FieldMask) { QTimer::singleShot(0, this, [this] { refresh(); }); })) {
  coordinates_->setMinimumBadgeWidth(132);

  // The align bar.
  alignBar_->setObjectName(QStringLiteral("canvas.alignBar"));
  struct AlignButton {
    Button* button;
    const char* identifier;
    Icon icon;
    AlignmentAxis axis;
  };
  auto* alignRow = new QHBoxLayout(alignBar_);
  alignRow->setContentsMargins(2, 2, 2, 2);
  alignRow->setSpacing(2);
  for (const AlignButton& row :
       {AlignButton{alignHorizontal_, "canvas.alignHorizontal", Icon::alignHorizontal,
                    AlignmentAxis::horizontal},
        AlignButton{alignVertical_, "canvas.alignVertical", Icon::alignVertical, AlignmentAxis::vertical}}) {
    row.button->setObjectName(row.identifier);
    row.button->setIconDrawing(row.icon, 16);
    row.button->setTextStyle(TextStyle::badge);
    row.button->setRadius(4);
    row.button->setPaddings(8, 24);
    row.button->setToolTip(row.axis == AlignmentAxis::horizontal
                               ? QStringLiteral("Bring the centres onto one horizontal line")
                               : QStringLiteral("Bring the centres onto one vertical line"));
    connect(row.button, &QPushButton::clicked, this,
            [this, axis = row.axis] { alignSelectionAndReport(workspace_, axis); });
    alignRow->addWidget(row.button);
  }

  // The viewport cluster.
  viewport_->setObjectName(QStringLiteral("viewport"));
  auto* cluster = new QHBoxLayout(viewport_);
  cluster->setContentsMargins(3, 3, 3, 3);
  cluster->setSpacing(0);
  gridScale_->setObjectName(QStringLiteral("viewport.gridScale"));
  gridScale_->setAlignment(Qt::AlignCenter);
  gridScale_->setMinimumWidth(40);
  gridScale_->setToolTip(QStringLiteral("Grid step"));
  percentage_->setObjectName(QStringLiteral("viewport.zoomPercentage"));
  percentage_->setAlignment(Qt::AlignCenter);
  percentage_->setFixedWidth(44);
  percentage_->setToolTip(QStringLiteral("Zoom"));
  const auto addButton = [&](const QString& title, Icon icon, const char* identifier, std::string_view key,
                             auto action) {
    auto* button = new ViewportButton(theme, title, icon, identifier, viewport_);
    button->setToolTip(toolTipWithKey(title, key));
    connect(button, &QPushButton::clicked, this, action);
    cluster->addWidget(button);
  };
  const auto addLine = [&] {
    auto* line = new Hairline(theme, Qt::Vertical, viewport_);
    line->setFixedHeight(12);
    cluster->addSpacing(4);
    cluster->addWidget(line, 0, Qt::AlignVCenter);
    cluster->addSpacing(4);
  };
  const auto zoom = [this](double factor) {
    const SketchSize size = workspace_.board.view->canvasSize;
    workspace_.board.zoom(factor, {size.width * 0.5, size.height * 0.5});
  };
  cluster->addWidget(gridScale_);
  addLine();
  addButton(QStringLiteral("Zoom out"), Icon::minus, "viewport.zoomOut", "⌘-",
            [zoom] { zoom(kZoomOutFactor); });
  cluster->addWidget(percentage_);
  addButton(QStringLiteral("Zoom in"), Icon::plus, "viewport.zoomIn", "⌘+", [zoom] { zoom(kZoomInFactor); });
  addLine();
  addButton(QStringLiteral("Zoom to fit"), Icon::fit, "viewport.fit", "⌘0",
            [this] { workspace_.board.zoomToFit(workspace_.board.view->canvasSize); });
  addButton(QStringLiteral("Reset view"), Icon::reset, "viewport.reset", "⇧⌘0",
            [this] { workspace_.board.resetViewport(workspace_.board.view->canvasSize); });

  // The length of a segment: the canvas paints the pill, a button over it takes the click.
  lengthLabel_->setObjectName(QStringLiteral("canvas.segmentLengthLabel"));
  lengthLabel_->setTextStyle(TextStyle::measurement);
  lengthLabel_->setRadius(5);
  lengthLabel_->setPaddings(7, 20);
  lengthLabel_->setToolTip(QStringLiteral("Type a length"));
  connect(lengthLabel_, &QPushButton::clicked, this, [this] { beginLengthEdit(); });
  lengthEditor_->setObjectName(QStringLiteral("canvas.segmentLengthEditor"));
  lengthEditor_->setAccessibleName(QStringLiteral("Length in feet and inches"));
  lengthEditor_->setFixedHeight(24);
  lengthEditor_->setAlignment(Qt::AlignCenter);
  lengthEditor_->installEventFilter(this);
  // The cluster is at the bottom.
  QWidget::setTabOrder(alignVertical_, lengthLabel_);
  QWidget::setTabOrder(lengthLabel_, lengthEditor_);
  connect(lengthEditor_, &QLineEdit::textEdited, this,
          [this](const QString& text) { workspace_.board.setLengthEditText(plainText(text)); });
  connect(lengthEditor_, &QLineEdit::returnPressed, this, [this] { workspace_.board.commitLengthEdit(); });
  for (QWidget* widget : {static_cast<QWidget*>(lengthLabel_), static_cast<QWidget*>(lengthEditor_),
                          static_cast<QWidget*>(lengthError_), static_cast<QWidget*>(alignBar_)}) {
    widget->hide();
  }
  canvas_.installEventFilter(this);
  refresh();
}

bool CanvasOverlay::eventFilter(QObject* object, QEvent* event) {
  // The badge lets the pointer through, so that its tooltip is asked of the canvas.
  if (object == &canvas_ && event->type() == QEvent::ToolTip) {
    const auto& help = *static_cast<QHelpEvent*>(event);
    const bool isAsked = status_->isCut() && status_->geometry().contains(help.pos());
    showToolTip(help, isAsked ? status_->text() : QString(), &canvas_);
    return true;
  }
  // An editor that loses the focus closes without a result.
  if (object == lengthEditor_ && event->type() == QEvent::FocusOut &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason &&
      workspace_.board.lengthEditor->isOpen) {
    workspace_.board.closeLengthEditor();
  }
  return QObject::eventFilter(object, event);
}

void CanvasOverlay::beginLengthEdit() {
  workspace_.board.beginLengthEdit();
  refreshSegmentLabel();
}

void CanvasOverlay::refresh() {
  refreshStatus();
  refreshPointerBadges();
  refreshViewport();
  refreshSegmentLabel();
  toast_->setToast(workspace_.messages.toast, application_.keptNotice);
  place();
}

void CanvasOverlay::refreshStatus() {
  const WallSystemSpec* active = workspace_.sketch.drawing->activeWallSystem();
  std::vector<BadgePart> parts{
      {.icon = Icon::stack, .words = entityCount(workspace_.sketch.entities().size())},
      {.words = qtText(displayName(workspace_.board.tool)), .hasLineBefore = true},
      {.words = qtText(workspace_.sketch.selectionSummary()), .hasLineBefore = true, .elides = true},
  };
  if (active != nullptr)
    parts.push_back({.icon = Icon::wall, .words = qtText(active->name), .hasLineBefore = true});
  status_->setParts(std::move(parts));
  alignBar_->setVisible(workspace_.sketch.selection->ids.size() >= 2);
}

void CanvasOverlay::refreshPointerBadges() {
  const auto& cursor = *workspace_.board.cursor;
  coordinates_->setVisible(cursor.has_value());
  if (cursor) {
    // Never "-0.0".
    const auto number = [](double value) {
      return qtText(fmt::format("{:.1f}", std::abs(value) < 0.05 ? 0.0 : value));
    };
    coordinates_->setParts(
        {{.words = QStringLiteral("X"), .ink = BadgePart::Ink::secondary, .style = TextStyle::mono},
         {.words = number(cursor->x), .style = TextStyle::measurement},
         {.words = QStringLiteral("Y"), .ink = BadgePart::Ink::secondary, .style = TextStyle::mono},
         {.words = number(cursor->y), .style = TextStyle::measurement}});
    coordinates_->setAccessibleName(
        QStringLiteral("Cursor coordinates X %1 Y %2").arg(number(cursor->x), number(cursor->y)));
  }
  const auto instruction = workspace_.board.instruction();
  trimInstruction_->setVisible(instruction.has_value());
  if (instruction) {
    const Icon icon = workspace_.board.isPlacing() ? Icon::ruler : Icon::trim;
    trimInstruction_->setParts({{.icon = icon, .words = qtText(*instruction)}});
  }
  showBadge(*snapFeedback_, workspace_.board.snap->feedback, Icon::scope, TextStyle::badge);
  showBadge(*measurement_, workspace_.board.draftMeasurementText(), Icon::ruler, TextStyle::measurement);

  const auto label = hoverLabelText(workspace_);
  if (label) {
    hoverLabel_->show(qtText(*label), workspace_.board.tool == SketchTool::trim);
  } else {
    hoverLabel_->hide();
  }
}

void CanvasOverlay::refreshViewport() {
  gridScale_->setText(qtText(gridScaleLabel(workspace_.board.viewport().scale)));
  percentage_->setText(qtText(zoomPercentageLabel(workspace_.board.viewport().scale)));
  gridScale_->setAccessibleName(QStringLiteral("Grid step ") + gridScale_->text());
  percentage_->setAccessibleName(QStringLiteral("Zoom ") + percentage_->text());
}

void CanvasOverlay::refreshSegmentLabel() {
  const auto label = segmentLabel(workspace_.board, workspace_.board.viewport());
  const bool isEditing = label && workspace_.board.lengthEditor->isOpen;
  lengthLabel_->setVisible(label && !isEditing);
  if (label) {
    const QRectF pill(label->pill.minX, label->pill.minY, label->pill.width(), label->pill.height());
    lengthLabel_->setText(qtText(label->text));
    lengthLabel_->setAccessibleName(QStringLiteral("Length ") + qtText(label->text));
    lengthLabel_->setGeometry(pill.toAlignedRect());
    const int width = std::max(72, static_cast<int>(pill.width()) + 24);
    const QRect editor(static_cast<int>(std::lround(pill.center().x())) - width / 2,
                       static_cast<int>(std::lround(pill.center().y())) - 12, width, 24);
    lengthEditor_->setGeometry(editor);
    const auto& error = workspace_.board.lengthEditor->error;
    if (isEditing && error) {
      lengthError_->setParts(
          {{.icon = Icon::alert, .words = qtText(*error), .iconInk = BadgePart::Ink::foreground}});
      fitBadge(*lengthError_);
      lengthError_->move(std::clamp(editor.center().x() - lengthError_->width() / 2, 4,
                                    std::max(4, canvas_.width() - lengthError_->width() - 4)),
                         editor.bottom() + 6);
    }
    lengthError_->setVisible(isEditing && error.has_value());
  } else {
    lengthError_->hide();
  }
  const QString text = qtText(workspace_.board.lengthEditor->text);
  if (isEditing && !lengthEditor_->isVisible()) {
    lengthEditor_->setText(text);
    lengthEditor_->show();
    lengthEditor_->setFocus(Qt::OtherFocusReason);
    lengthEditor_->selectAll();
  } else if (!isEditing && lengthEditor_->isVisible()) {
    const bool hadFocus = lengthEditor_->hasFocus();
    lengthEditor_->hide();
    if (hadFocus) canvas_.setFocus(Qt::OtherFocusReason);
  } else if (isEditing && lengthEditor_->text() != text) {
    lengthEditor_->setText(text);
  }
}

void CanvasOverlay::place() {
  const int width = canvas_.width();
  const int height = canvas_.height();
  status_->setGeometry(kEdge, kEdge, std::min(status_->sizeHint().width(), std::max(80, width - 2 * kEdge)),
                       28);

  // The instruction is in the middle of the top edge, one row down where the status is in the way.
  int middleTop = kEdge;
  const auto rowFor = [&](int wanted) {
    const int left = (width - wanted) / 2;
    return left < status_->geometry().right() + 16 ? std::max(middleTop, kEdge + 28 + kStackGap) : middleTop;
  };
  if (!trimInstruction_->isHidden()) {
    const int wanted = std::min(trimInstruction_->sizeHint().width(), width - 2 * kEdge);
    middleTop = rowFor(wanted);
    trimInstruction_->setGeometry((width - wanted) / 2, middleTop, wanted, 28);
    middleTop += 28 + kStackGap;
  }
  if (!alignBar_->isHidden()) {
    const QSize wanted = alignBar_->sizeHint();
    middleTop = rowFor(wanted.width());
    alignBar_->setGeometry((width - wanted.width()) / 2, middleTop, wanted.width(), 28);
  }

  coordinates_->setGeometry(kEdge, height - kEdge - 28, coordinates_->sizeHint().width(), 28);
  const QSize cluster = viewport_->sizeHint();
  const int clusterWidth = cluster.width();
  viewport_->setGeometry(width - kEdge - clusterWidth, height - kEdge - 32, clusterWidth, 32);
  // The toast is in one row with the coordinates and the viewport controls where it reaches neither, and
  // above them everywhere else.
  const int toastReach = (toast_->wantedWidth(width) + 1) / 2 + kStackGap;
  const bool isClear = coordinates_->geometry().right() < width / 2 - toastReach &&
                       viewport_->geometry().left() > width / 2 + toastReach;
  const int toastRise = width < kToastRaisedBelow || !isClear ? kToastRaise : kEdge;
  toast_->setAnchor({width / 2, height - toastRise}, width);
  placePointerBadges();
}

void CanvasOverlay::placePointerBadges() {
  const SketchViewport& view = workspace_.board.viewport();
  const QSize room = canvas_.size();
  // Beside a point: to its right and below, on the other side where the edge of the canvas is near.
  const auto besidePoint = [room](SketchPoint point, QSize size, int right, int below) {
    int x = static_cast<int>(std::lround(point.x)) + right;
    int y = static_cast<int>(std::lround(point.y)) + below;
    if (x + size.width() > room.width() - 8)
      x = static_cast<int>(std::lround(point.x)) - right - size.width();
    if (y + size.height() > room.height() - 8)
      y = static_cast<int>(std::lround(point.y)) - below - size.height();
    return QPoint(std::max(8, x), std::max(8, y));
  };

  const auto beside = pointerBadgePoint(workspace_.board);
  const SketchPoint at = beside ? sketchPointToView(*beside, view) : SketchPoint{0, 0};
  QSize both(0, 0);
  std::vector<Badge*> stack;
  for (Badge* badge : {snapFeedback_, measurement_}) {
    if (badge->isHidden()) continue;
    both = QSize(std::max(both.width(), badge->width()),
                 both.height() + (stack.empty() ? 0 : 4) + badge->height());
    stack.push_back(badge);
  }
  QPoint corner = besidePoint(at, both, 20, 22);
  for (Badge* badge : stack) {
    badge->move(corner);
    corner.ry() += badge->height() + 4;
  }
  if (!hoverLabel_->isHidden() && workspace_.board.hover->viewPoint) {
    hoverLabel_->move(besidePoint(*workspace_.board.hover->viewPoint, hoverLabel_->size(), 14, 18));
  }
}

}  // namespace ostrelon
