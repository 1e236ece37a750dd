#include "shell/canvas_widget.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPaintEvent>
#include <QPainterPath>
#include <QWheelEvent>
#include <cmath>
#include <utility>

#include "core/difference_colors.h"
#include "geometry/opening_operations.h"
#include "interaction/board.h"
#include "interaction/canvas_renderer.h"
#include "interaction/opening_painting.h"
#include "shell/canvas_cursor.h"
#include "shell/painted_region.h"
#include "shell/pixel_canvas_painter.h"
#include "shell/theme.h"

namespace ostrelon {

namespace {

using Clock = std::chrono::steady_clock;

/// The part of a frame that painting pictures may take.
constexpr std::chrono::milliseconds kSlice{3};
/// So many entities, dragged or selected, are painted live; more are kept in a picture.
constexpr std::size_t kMostLiveEntities = 32;

/// What the wheel reports for one notch, eighths of a degree.
constexpr double kWheelNotch = 120;
/// How far one notch scrolls, view points.
constexpr double kScrollStep = 60;

SketchPoint viewPoint(QPointF position) { return {position.x(), position.y()}; }

/// Everything that the canvas shows.
FieldMask paintedFields(const Board& board) {
  const Sketch& sketch = board.sketch();
  return fieldsOf(sketch.drawing, sketch.selection, board.view, board.tool, board.gesture, board.snap,
                  board.tracking, board.hover, board.lengthEditor, board.trimCuttingEdge);
}

EntitySet draggedIDs(const SelectDragState& drag) {
  return std::visit(Overloaded{
                        [](const HandleDrag& handle) { return EntitySet{handle.entityID}; },
                        [](const BodyDrag& body) { return EntitySet{body.entityID}; },
                        [](const MultiBodyDrag& multi) { return multi.entityIDs; },
                        [](const PlanItemDrag&) { return EntitySet(); },
                    },
                    drag);
}

/// How far a group has been dragged, sketch units. All of its entities move alike.
SketchPoint dragMovement(const MultiBodyDrag& drag, const Board& board) {
  const SketchEntity* now = board.sketch().entity(entityID(drag.lead));
  if (now == nullptr) return {};
  const SketchViewport unit{{0, 0}, 1};
  const SketchBox before = entityViewBounds(drag.lead, 0, unit);
  const SketchBox after = entityViewBounds(*now, 0, unit);
  return {after.minX - before.minX, before.minY - after.minY};
}

}  // namespace

CanvasWidget::CanvasWidget(Board& board, QWidget* parent)
    : QWidget(parent),
      board_(board),
      gestures_(board),
      palette_(lightPalette()),
      look_(board.sketch(), board.scheduler(),
            [this] {
              isExact_ = false;
              update();
            }),
      entities_(EntityPicture::Kind::entitiesWithout, repaintLater()),
      dragged_(EntityPicture::Kind::entitiesNamed, repaintLater()),
      selection_(EntityPicture::Kind::selection, repaintLater()),
      layers_{EntityPicture(EntityPicture::Kind::changedBefore, repaintLater()),
              EntityPicture(EntityPicture::Kind::removed, repaintLater()),
              EntityPicture(EntityPicture::Kind::changedAfter, repaintLater()),
              EntityPicture(EntityPicture::Kind::added, repaintLater())} {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setAccessibleName(tr("Canvas"));
  subscription_ = board_.observe(paintedFields(board_), [this](FieldMask changed) { boardChanged(changed); });
  boardChanged(paintedFields(board_));
}

CanvasWidget::~CanvasWidget() = default;

std::function<void()> CanvasWidget::repaintLater() {
  return [this] {
    QMetaObject::invokeMethod(
        this, [this] { update(); }, Qt::QueuedConnection);
  };
}

void CanvasWidget::setThemePalette(const ThemePalette& palette) {
  if (palette_ == palette) return;
  palette_ = palette;
  updateCursor();
  update();
}

// A change of the gesture or the selection reaches the pictures only where other entities are dragged or
// selected than before: a draft changes with each move of the pointer.
bool CanvasWidget::takeDragged() {
  const SelectDrag* drag = board_.selectDrag();
  EntitySet ids = drag != nullptr ? draggedIDs(drag->state) : EntitySet();
  if (draggedIDs_ == ids) return false;
  draggedIDs_ = std::move(ids);
  return true;
}

bool CanvasWidget::takeSelected() {
  const EntitySet& ids = board_.sketch().selection->ids;
  if (selected_ == ids) return false;
  selected_ = ids;
  return true;
}

void CanvasWidget::leaveOut() {
  leftOutIDs_ = draggedIDs_;
  if (difference_) leftOutIDs_.merge(difference_->layers->ids);
}

void CanvasWidget::setDifference(std::optional<CanvasDifference> difference) {
  if (difference_ == difference) return;
  const bool isOther = difference.has_value() != difference_.has_value() ||
                       (difference && difference->layers != difference_->layers);
  difference_ = std::move(difference);
  if (isOther) {
    leaveOut();
    isExact_ = false;
  }
  update();
}

void CanvasWidget::boardChanged(FieldMask fields) {
  const Sketch& sketch = board_.sketch();
  bool touchesPictures = (fields & fieldsOf(sketch.drawing, board_.view)) != 0;
  if ((fields & fieldsOf(board_.gesture)) && takeDragged()) {
    leaveOut();
    touchesPictures = true;
  }
  if (fields & fieldsOf(sketch.selection)) touchesPictures |= takeSelected();
  if (fields & fieldsOf(board_.tool, board_.gesture)) updateCursor();
  const QRegion before = std::exchange(overlay_, overlayRegion());
  if (touchesPictures) {
    isExact_ = false;
    update();
  } else {
    update(before + overlay_);
  }
}

void CanvasWidget::updateCursor() {
  // Adding aims as drawing does.
  const SketchTool tool = board_.dimensionPlacing() != nullptr ? SketchTool::line : *board_.tool;
  const CursorLook look{tool, palette_, devicePixelRatioF()};
  if (cursorLook_ == look) return;
  cursorLook_ = look;
  setCursor(canvasCursor(tool, palette_, devicePixelRatioF()));
}

PictureView CanvasWidget::view() const {
  return {{board_.viewport(), {static_cast<double>(width()), static_cast<double>(height())}},
          palette_,
          devicePixelRatioF()};
}

void CanvasWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  board_.resizeCanvas({static_cast<double>(width()), static_cast<double>(height())});
  overlay_ = overlayRegion();
  Q_EMIT resized();
}

bool CanvasWidget::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    const auto* gesture = static_cast<QNativeGestureEvent*>(event);
    if (gesture->gestureType() == Qt::ZoomNativeGesture) {
      gestures_.magnify(viewPoint(gesture->position()), gesture->value());
      return true;
    }
    // A double tap that would zoom ends here as well.
    if (gesture->gestureType() == Qt::SmartZoomNativeGesture) return true;
  }
  return QWidget::event(event);
}

void CanvasWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    gestures_.press(viewPoint(event->position()));
  } else if (event->button() == Qt::MiddleButton) {
    panFrom_ = event->position();
  } else {
    event->ignore();
  }
}

void CanvasWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  // It takes the place of the second press; the double click is reported after the second release.
  mousePressEvent(event);
  isDoubleClick_ = event->button() == Qt::LeftButton;
}

void CanvasWidget::mouseMoveEvent(QMouseEvent* event) {
  if (panFrom_) {
    const QPointF moved = event->position() - *panFrom_;
    panFrom_ = event->position();
    gestures_.scroll(moved.x(), moved.y());
  } else if (event->buttons() & Qt::LeftButton) {
    gestures_.drag(viewPoint(event->position()));
  } else {
    gestures_.hover(viewPoint(event->position()));
  }
}

void CanvasWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) panFrom_.reset();
  if (event->button() != Qt::LeftButton) return;
  gestures_.release(viewPoint(event->position()), event->modifiers().testFlag(Qt::ShiftModifier));
  if (std::exchange(isDoubleClick_, false)) gestures_.doubleClick();
}

void CanvasWidget::wheelEvent(QWheelEvent* event) {
  const QPointF notches = QPointF(event->angleDelta()) / kWheelNotch;
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    gestures_.magnify(viewPoint(event->position()), std::pow(kZoomInFactor, notches.y()) - 1);
  } else {
    QPointF moved = event->pixelDelta().isNull() ? notches * kScrollStep : QPointF(event->pixelDelta());
    // A wheel that turns one way only goes sideways with Shift held.
    if (event->modifiers().testFlag(Qt::ShiftModifier) && moved.x() == 0) moved = moved.transposed();
    gestures_.scroll(moved.x(), moved.y());
  }
  event->accept();
}

void CanvasWidget::leaveEvent(QEvent* event) {
  gestures_.leave();
  QWidget::leaveEvent(event);
}

void CanvasWidget::hideEvent(QHideEvent* event) {
  gestures_.forgetPress();
  panFrom_.reset();
  isDoubleClick_ = false;
  QWidget::hideEvent(event);
}

void CanvasWidget::contextMenuEvent(QContextMenuEvent* event) {
  const QPoint at =
      event->reason() == QContextMenuEvent::Keyboard ? mapFromGlobal(QCursor::pos()) : event->pos();
  if (const auto menu = gestures_.contextMenu({static_cast<double>(at.x()), static_cast<double>(at.y())})) {
    Q_EMIT contextMenuRequested(*menu, mapToGlobal(at));
  }
}

void CanvasWidget::finishPainting() {
  updatePictures(Clock::time_point::max());
  while (!isExact_) {
    for (EntityPicture* picture : pictures()) picture->wait();
    updatePictures(Clock::time_point::max());
  }
}

std::array<EntityPicture*, 7> CanvasWidget::pictures() {
  return {&entities_, &dragged_, &selection_, &layers_[0], &layers_[1], &layers_[2], &layers_[3]};
}

void CanvasWidget::updateGrid(const PictureView& view) {
  const bool isShown = board_.sketch().drawing->showGrid;
  if (gridView_ == view && gridShown_ == isShown) return;
  const double ratio = view.pixelRatio;
  const QSize size(static_cast<int>(std::ceil(width() * ratio)),
                   static_cast<int>(std::ceil(height() * ratio)));
  if (grid_.size() != size) grid_ = QImage(size, QImage::Format_RGB32);
  gridView_ = view;
  gridShown_ = isShown;
  if (grid_.isNull()) return;
  // At a ratio such as 1.5 the last column and row lie partly outside of the view.
  grid_.fill(qtColor(palette_.background));
  PixelCanvasPainter canvas(grid_, ratio);
  CanvasFrame frame{view.transform, view.palette};
  frame.gridPixelRatio = ratio;
  paintBackground(canvas, frame);
  paintLayer(canvas, CanvasLayer::grid, board_, frame);
}

void CanvasWidget::updatePictures(EntityPicture::Deadline deadline) {
  const PictureView now = view();
  updateGrid(now);
  const auto& systems = board_.sketch().drawing->wallSystemSpecs;
  const EntityIndex& index = board_.sketch().index();
  PictureView ofEntities = now;
  if (difference_) ofEntities.palette = fadedPalette(palette_);
  const DrawingLook& look = look_.now();
  leftOutIDs_.follow(board_.sketch().entities());
  bool isDone =
      entities_.update(ofEntities, {board_.sketch().entities(), systems, leftOutIDs_, look}, index, deadline);
  isDone &= updateDifference(now, deadline);

  // A group that is dragged keeps its looks: what is shown of it is painted once, from the start of
  // the drag, and moved. Its walls are joined again once they are put down.
  const DrawingLook apart{look.plan, {}};
  const EntityList* start = board_.sketch().dragStart();
  const EntityList& atRest = !draggedIDs_.empty() && start != nullptr ? *start : board_.sketch().entities();
  if (draggedIDs_.size() > kMostLiveEntities) {
    isDone &= dragged_.update(now, {atRest, systems, draggedIDs_, apart}, index, deadline);
  } else {
    dragged_.clear();
  }
  if (isSelectionPicture()) {
    // Of a group that is dragged the positions at rest are known.
    const EntitySet& shown = draggedIDs_.empty() ? board_.sketch().selection->ids : draggedIDs_;
    isDone &= selection_.update(now, {atRest, systems, shown, {}}, index, deadline);
  } else {
    selection_.clear();
  }
  isExact_ = isDone;
}

bool CanvasWidget::updateDifference(const PictureView& now, EntityPicture::Deadline deadline) {
  if (!difference_) {
    for (EntityPicture& picture : layers_) picture.clear();
    cloudsOf_.reset();
    clouds_ = QImage();
    return true;
  }
  bool isDone = true;
  const EntityIndex none;  // a layer has none of its own
  for (const DifferenceLayer layer : kDifferenceLayers) {
    const DifferenceLayers& layers = *difference_->layers;
    const PictureContent content{layers.of(layer), layers.systemsOf(layer), {}, {}};
    isDone &= layers_[static_cast<std::size_t>(layer)].update(now, content, none, deadline);
  }
  updateClouds(now);
  return isDone;
}

void CanvasWidget::updateClouds(const PictureView& now) {
  std::pair<PictureView, CanvasDifference> wanted{now, *difference_};
  wanted.second.blend = kBothSides;
  if (cloudsOf_ == wanted) return;
  cloudsOf_ = std::move(wanted);
  if (clouds_.size() != grid_.size()) clouds_ = QImage(grid_.size(), QImage::Format_ARGB32_Premultiplied);
  if (clouds_.isNull()) return;
  clouds_.fill(Qt::transparent);
  PixelCanvasPainter canvas(clouds_, now.pixelRatio);
  const CanvasFrame frame{now.transform, now.palette};
  const DifferenceLayers& layers = *difference_->layers;
  paintClouds(canvas, frame, layers, difference_->current);
  if (difference_->current) paintCurrentItem(canvas, frame, layers.items.at(*difference_->current));
}

void CanvasWidget::paintDifference(QPainter& painter, const PictureView& now) const {
  for (const DifferenceLayer layer : kDifferenceLayers) {
    const double opacity = layerOpacity(layer, difference_->blend);
    if (!(opacity > 0)) continue;
    painter.setOpacity(opacity);
    layers_[static_cast<std::size_t>(layer)].paint(painter, now);
  }
  painter.setOpacity(1);
  painter.drawImage(QRectF(QPointF(0, 0), QSizeF(clouds_.size()) / now.pixelRatio), clouds_);
}

void CanvasWidget::paintEvent(QPaintEvent* event) {
  updatePictures(Clock::now() + kSlice);
  QPainter painter(this);
  painter.setClipRegion(event->region());
  paintLive(painter, view());
}

bool CanvasWidget::isSelectionPicture() const { return selected_.size() > kMostLiveEntities; }

QRegion CanvasWidget::overlayRegion() const {
  const PictureView now = view();
  const CanvasFrame frame{now.transform, now.palette};
  PaintedRegion region;
  for (const CanvasLayer layer : kAllCanvasLayers) {
    const bool isPicture = layer == CanvasLayer::grid || layer == CanvasLayer::entities ||
                           layer == CanvasLayer::openings ||
                           (layer == CanvasLayer::selection && isSelectionPicture());
    if (!isPicture) paintLayer(region, layer, board_, frame);
  }
  return region.within(rect());
}

void CanvasWidget::paintOpeningsOver(QPainter& painter, const CanvasFrame& frame) {
  const Sketch& sketch = board_.sketch();
  if (openingsOf_ != sketch.drawingWrites()) {
    openings_ = openingLayout(sketch);
    openingsOf_ = sketch.drawingWrites();
  }
  if (openings_.empty()) return;
  // Through the gaps the grid shows, as beside the walls.
  QPainterPath gaps;
  gaps.setFillRule(Qt::WindingFill);
  for (const auto& gap : openingGaps(frame, openings_)) {
    QPolygonF corners;
    for (const SketchPoint corner : gap) corners << QPointF(corner.x, corner.y);
    gaps.addPolygon(corners);
    gaps.closeSubpath();
  }
  painter.save();
  painter.setClipPath(gaps, Qt::IntersectClip);
  painter.drawImage(QRectF(QPointF(0, 0), QSizeF(grid_.size()) / view().pixelRatio), grid_);
  painter.restore();
  QtCanvasPainter canvas(painter);
  paintOpenings(canvas, frame, openings_, OpeningMisfits::shown);
}

void CanvasWidget::paintLive(QPainter& painter, const PictureView& now) {
  QtCanvasPainter canvas(painter);
  const CanvasFrame frame{now.transform, now.palette};
  // Pixel for pixel: the picture may be a part of a pixel larger than the widget.
  painter.drawImage(QRectF(QPointF(0, 0), QSizeF(grid_.size()) / now.pixelRatio), grid_);
  paintLayer(canvas, CanvasLayer::snapGuides, board_, frame);
  entities_.paint(painter, now);
  if (difference_) paintDifference(painter, now);

  PictureView moved = now;
  if (const SelectDrag* drag = board_.selectDrag(); drag != nullptr && !draggedIDs_.empty()) {
    if (const auto* multi = std::get_if<MultiBodyDrag>(&drag->state)) {
      const SketchPoint movement = dragMovement(*multi, board_) * now.transform.viewport.scale;
      moved.transform.viewport.pan = moved.transform.viewport.pan + SketchPoint{movement.x, -movement.y};
    }
    if (draggedIDs_.size() > kMostLiveEntities) {
      dragged_.paint(painter, moved);
    } else {
      EntityLayerPainter layer(frame, board_.sketch().drawing->wallSystemSpecs, look_.now());
      const auto visit = [this](const auto& paint) {
        for (const UUID& id : draggedIDs_) {
          if (const SketchEntity* entity = board_.sketch().entity(id)) paint(*entity);
        }
      };
      if (layer.hasJoinedWalls()) {
        visit([&](const SketchEntity& entity) { layer.takeIn(canvas, entity); });
        layer.paintJoinedWalls(canvas);
      }
      visit([&](const SketchEntity& entity) { layer.paint(canvas, entity); });
    }
  }
  paintOpeningsOver(painter, frame);
  paintAnnotations(canvas, frame, annotations_.of(board_.sketch()));
  paintLayer(canvas, CanvasLayer::hover, board_, frame);
  if (isSelectionPicture()) {
    selection_.paint(painter, moved);
  } else {
    paintLayer(canvas, CanvasLayer::selection, board_, frame);
  }
  for (const CanvasLayer layer :
       {CanvasLayer::marquee, CanvasLayer::trim, CanvasLayer::drafts, CanvasLayer::segmentLabel,
        CanvasLayer::markers, CanvasLayer::dwellPulse, CanvasLayer::lock}) {
    paintLayer(canvas, layer, board_, frame);
  }
}

}  // namespace ostrelon
