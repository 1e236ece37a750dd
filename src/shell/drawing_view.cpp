#include "shell/drawing_view.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <future>
#include <utility>

#include "interaction/canvas_renderer.h"
#include "shell/accessibility.h"
#include "shell/badge.h"
#include "shell/drawing_picture.h"
#include "shell/qt_canvas_painter.h"

namespace ostrelon {
namespace {

constexpr double kMargin = 32;
/// How far an arrow key moves the drawing, view points.
constexpr double kKeyStep = 60;
/// What the wheel reports for one notch, eighths of a degree.
constexpr double kWheelNotch = 120;
constexpr std::chrono::milliseconds kSlice{3};
constexpr int kFromEdge = 16;

}  // namespace

// Joins the walls of a drawing on a thread of its own.
class DrawingView::Joining {
 public:
  Joining(const Drawing& drawing, const std::function<void()>& joined)
      : thread_(std::async(std::launch::async,
                           [this, entities = drawing.entities, systems = drawing.wallSystemSpecs, joined] {
                             joined_ = JoinedWalls::of(entities, systems, 2, &isCancelled_);
                             if (!isCancelled_) joined();
                           })) {}
  Joining(const Joining&) = delete;
  Joining& operator=(const Joining&) = delete;
  ~Joining() {
    isCancelled_ = true;
    thread_.wait();
  }
  JoinedWalls take() {
    thread_.wait();
    return std::move(joined_);
  }

 private:
  std::atomic<bool> isCancelled_ = false;
  JoinedWalls joined_;
  std::future<void> thread_;
};

DrawingView::DrawingView(Theme& theme, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      picture_(EntityPicture::Kind::entitiesWithout,
               [this] {
                 QMetaObject::invokeMethod(
                     this, [this] { update(); }, Qt::QueuedConnection);
               }),
      buttons_(new BadgeBox(theme, 8, this)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::OpenHandCursor);
  setAccessibleRole(*this, QAccessible::Graphic);
  connect(&theme, &Theme::changed, this, [this] { update(); });
  auto* row = new QHBoxLayout(buttons_);
  row->setContentsMargins(3, 3, 3, 3);
  row->setSpacing(0);
  const auto add = [&](Icon icon, const char* name, const QString& title, const std::function<void()>& run) {
    auto* button = new Button(theme, Button::Kind::plain, QString(), buttons_);
    button->setObjectName(QString::fromUtf8(name));
    button->setIconDrawing(icon, 16);
    button->setPaddings(6, 24);
    button->setRadius(4);
    button->setAccessibleName(title);
    button->setToolTip(title);
    connect(button, &QPushButton::clicked, this, run);
    row->addWidget(button);
  };
  const auto middle = [this] { return QRectF(rect()).center(); };
  add(Icon::minus, "drawingView.zoomOut", QStringLiteral("Zoom Out (-)"),
      [this, middle] { zoom(kZoomOutFactor, middle()); });
  add(Icon::plus, "drawingView.zoomIn", QStringLiteral("Zoom In (+)"),
      [this, middle] { zoom(kZoomInFactor, middle()); });
  add(Icon::fit, "drawingView.fit", QStringLiteral("Zoom to Fit (0)"), [this] { fit(); });
}

DrawingView::~DrawingView() = default;

void DrawingView::setDrawing(Drawing drawing) {
  drawing_ = std::move(drawing);
  bounds_ = shownBounds(*drawing_);
  joinWalls();
  notice_.clear();
  if (isFitted_ || !showsAnything()) fit();
  update();
}

void DrawingView::joinWalls() {
  joining_.reset();
  if (!drawing_->plan.look.cleanWalls || drawing_->entities.size() <= kJoinedAtOnce) {
    look_ = drawingLook(drawing_->plan.look, drawing_->entities, drawing_->wallSystemSpecs);
    return;
  }
  look_ = {drawing_->plan.look, {}};
  joining_ = std::make_unique<Joining>(*drawing_, [this] {
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (!joining_) return;
          look_.joined = joining_->take();
          joining_.reset();
          update();
        },
        Qt::QueuedConnection);
  });
}

void DrawingView::setNotice(const QString& sentence) {
  joining_.reset();
  drawing_.reset();
  picture_.clear();
  notice_ = sentence;
  update();
}

bool DrawingView::showsAnything() const {
  return bounds_ && bounds_->overlaps(visibleSketchBox(canvasSize(), view_));
}

void DrawingView::fit() {
  isFitted_ = true;
  if (drawing_) view_ = wholeDrawingView(bounds_, canvasSize(), kMargin);
  update();
}

void DrawingView::zoom(double factor, QPointF about) {
  if (!drawing_) return;
  const SketchPoint anchor{about.x(), about.y()};
  // A drawing that only fits a smaller scale than the canvas knows is seen at that one.
  const double least =
      std::min(kMinimumViewportScale, wholeDrawingView(bounds_, canvasSize(), kMargin).scale);
  const double scale = std::clamp(view_.scale * factor, least, kMaximumViewportScale);
  view_ = viewportWith(viewPointToSketch(anchor, view_), anchor, scale);
  isFitted_ = false;
  update();
}

void DrawingView::moveBy(QPointF points) {
  view_.pan = view_.pan + SketchPoint{points.x(), points.y()};
  isFitted_ = false;
  update();
}

void DrawingView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), theme_.background());
  if (!drawing_) {
    painter.setFont(fontOf(TextStyle::body));
    painter.setPen(theme_.foreground());
    painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, notice_);
    return;
  }
  const PictureView view{{view_, canvasSize()}, theme_.palette(), devicePixelRatioF()};
  if (drawing_->showGrid) {
    QtCanvasPainter canvas(painter);
    CanvasFrame frame{view.transform, view.palette};
    frame.gridPixelRatio = view.pixelRatio;
    paintGrid(canvas, frame);
  }
  picture_.update(view, {drawing_->entities, drawing_->wallSystemSpecs, {}, look_}, index_,
                  std::chrono::steady_clock::now() + kSlice);
  picture_.paint(painter, view);
}

void DrawingView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const QSize size = buttons_->sizeHint();
  buttons_->setGeometry(width() - kFromEdge - size.width(), height() - kFromEdge - size.height(),
                        size.width(), size.height());
  if (isFitted_) fit();
}

bool DrawingView::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    const auto& gesture = static_cast<const QNativeGestureEvent&>(*event);
    if (gesture.gestureType() == Qt::ZoomNativeGesture) {
      zoom(1 + gesture.value(), gesture.position());
      return true;
    }
  }
  return QWidget::event(event);
}

void DrawingView::wheelEvent(QWheelEvent* event) {
  // Two fingers on a touchpad move the drawing, as they do on the canvas; a wheel has no begin and no end.
  const bool isTouchpad = event->phase() != Qt::NoScrollPhase && !event->pixelDelta().isNull();
  if (isTouchpad && !event->modifiers().testFlag(Qt::ControlModifier)) {
    moveBy(event->pixelDelta());
  } else {
    zoom(std::pow(kZoomInFactor, event->angleDelta().y() / kWheelNotch), event->position());
  }
  event->accept();
}

void DrawingView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return event->ignore();
  dragFrom_ = event->position();
  setCursor(Qt::ClosedHandCursor);
}

void DrawingView::mouseMoveEvent(QMouseEvent* event) {
  if (!dragFrom_) return;
  moveBy(event->position() - *dragFrom_);
  dragFrom_ = event->position();
}

void DrawingView::mouseReleaseEvent(QMouseEvent* /*event*/) {
  dragFrom_.reset();
  setCursor(Qt::OpenHandCursor);
}

void DrawingView::mouseDoubleClickEvent(QMouseEvent* /*event*/) { fit(); }

void DrawingView::keyPressEvent(QKeyEvent* event) {
  const QPointF middle = QRectF(rect()).center();
  switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return zoom(kZoomInFactor, middle);
    case Qt::Key_Minus:
      return zoom(kZoomOutFactor, middle);
    case Qt::Key_0:
      return fit();
    case Qt::Key_Left:
      return moveBy({kKeyStep, 0});
    case Qt::Key_Right:
      return moveBy({-kKeyStep, 0});
    case Qt::Key_Up:
      return moveBy({0, kKeyStep});
    case Qt::Key_Down:
      return moveBy({0, -kKeyStep});
    default:
      return QWidget::keyPressEvent(event);
  }
}

}  // namespace ostrelon
