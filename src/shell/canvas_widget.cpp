#include "shell/canvas_widget.h"

#include <QPaintEvent>
#include <QTimer>
#include <cmath>

#include "core/sketch_view_model.h"
#include "interaction/canvas_renderer.h"
#include "shell/canvas_cursor.h"
#include "shell/qt_canvas_painter.h"

namespace ostrelon {

namespace {

using Clock = std::chrono::steady_clock;

/// The part of a frame that painting pictures may take.
constexpr std::chrono::milliseconds kSlice{8};
/// So many entities, dragged or selected, are painted live; more are kept in a picture.
constexpr std::size_t kMostLiveEntities = 32;

/// Everything that the canvas shows.
constexpr FieldMask kPaintedFields = fieldMask(
    SketchField::entities, SketchField::wallSystemSpecs, SketchField::activeWallSystemSpecID,
    SketchField::selectedEntityIDs, SketchField::selectMarquee, SketchField::selectedTool,
    SketchField::showGrid, SketchField::draft, SketchField::polygonDraft, SketchField::hoveredEntityID,
    SketchField::selectDrag, SketchField::activeAxisSnaps, SketchField::activeEntitySnapPoint,
    SketchField::activeGridSnapPoint, SketchField::activeEntitySnapSourcePoint, SketchField::snapGuideAnchor,
    SketchField::acquiredEntitySnap, SketchField::pendingTrackingAcquire,
    SketchField::trackingAcquireProgress, SketchField::trimCuttingEdgeEntityID, SketchField::viewport,
    SketchField::isSegmentLengthEditing);

std::unordered_set<UUID> draggedIDs(const SelectDragState& drag) {
  return std::visit(Overloaded{
                        [](const HandleDrag& handle) { return std::unordered_set<UUID>{handle.entityID}; },
                        [](const BodyDrag& body) { return std::unordered_set<UUID>{body.entityID}; },
                        [](const MultiBodyDrag& multi) { return multi.entityIDs; },
                    },
                    drag);
}

/// How far a group has been dragged, sketch units. All of its entities move alike.
SketchPoint dragMovement(const MultiBodyDrag& drag, const SketchViewModel& model) {
  const auto anchor = drag.anchors.find(drag.leadEntityID);
  const SketchEntity* now = model.entity(drag.leadEntityID);
  if (anchor == drag.anchors.end() || now == nullptr) return {};
  const SketchViewport unit{{0, 0}, 1};
  const ViewRect before = entityViewBounds(anchor->second, 0, unit);
  const ViewRect after = entityViewBounds(*now, 0, unit);
  return {after.minX - before.minX, before.minY - after.minY};
}

}  // namespace

CanvasWidget::CanvasWidget(SketchViewModel& model, QWidget* parent)
    : QWidget(parent), model_(model), palette_(lightPalette()) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
  setAccessibleName(tr("Canvas"));
  subscription_ =
      model_.observe(kPaintedFields, [this](const SketchChange& change) { modelChanged(change.fields); });
  modelChanged(kPaintedFields);
}

CanvasWidget::~CanvasWidget() = default;

void CanvasWidget::setThemePalette(const ThemePalette& palette) {
  if (palette_ == palette) return;
  palette_ = palette;
  updateCursor();
  update();
}

void CanvasWidget::modelChanged(FieldMask fields) {
  if (fields & fieldMask(SketchField::selectDrag)) {
    draggedIDs_ = *model_.selectDrag
                      ? std::make_shared<const std::unordered_set<UUID>>(draggedIDs(**model_.selectDrag))
                      : nullptr;
  }
  if (fields & fieldMask(SketchField::selectedEntityIDs)) {
    selectedIDs_ = model_.selectedEntityIDs->size() > kMostLiveEntities
                       ? std::make_shared<const std::unordered_set<UUID>>(*model_.selectedEntityIDs)
                       : nullptr;
  }
  if (fields & fieldMask(SketchField::selectedTool)) updateCursor();
  update();
}

void CanvasWidget::updateCursor() {
  setCursor(canvasCursor(*model_.selectedTool, palette_, devicePixelRatioF()));
}

PictureView CanvasWidget::view() const {
  return {{*model_.viewport, {static_cast<double>(width()), static_cast<double>(height())}},
          palette_,
          devicePixelRatioF()};
}

void CanvasWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  model_.updateCanvasSize({static_cast<double>(width()), static_cast<double>(height())});
  Q_EMIT resized();
}

void CanvasWidget::finishPainting() { updatePictures(Clock::time_point::max()); }

void CanvasWidget::updateGrid(const PictureView& view) {
  const bool isShown = *model_.showGrid;
  if (gridView_ == view && gridShown_ == isShown) return;
  const double ratio = view.pixelRatio;
  const QSize size(static_cast<int>(std::ceil(width() * ratio)),
                   static_cast<int>(std::ceil(height() * ratio)));
  if (grid_.size() != size) grid_ = QImage(size, QImage::Format_RGB32);
  gridView_ = view;
  gridShown_ = isShown;
  if (grid_.isNull()) return;
  QPainter painter(&grid_);
  painter.scale(ratio, ratio);
  QtCanvasPainter canvas(painter);
  CanvasFrame frame{view.transform, view.palette};
  frame.gridPixelRatio = ratio;
  paintBackground(canvas, frame);
  paintLayer(canvas, CanvasLayer::grid, model_, frame);
}

void CanvasWidget::updatePictures(EntityPicture::Deadline deadline) {
  const PictureView now = view();
  updateGrid(now);
  const auto& systems = *model_.wallSystemSpecs;
  bool isDone = entities_.update(now, {*model_.entities, systems, draggedIDs_}, deadline);

  // A group that is dragged keeps its looks: what is shown of it is painted once, from the start of
  // the drag, and moved.
  const auto& baseline = *model_.selectDragUndoBaseline;
  const EntityList& atRest = draggedIDs_ && baseline ? baseline->entities : *model_.entities;
  if (draggedIDs_ && draggedIDs_->size() > kMostLiveEntities) {
    isDone &= dragged_.update(now, {atRest, systems, draggedIDs_}, deadline);
  } else {
    dragged_.clear();
  }
  if (selectedIDs_) {
    isDone &= selection_.update(now, {atRest, systems, selectedIDs_}, deadline);
  } else {
    selection_.clear();
  }
  if (!isDone && !isTurnAsked_) {
    isTurnAsked_ = true;
    QTimer::singleShot(0, this, [this] {
      isTurnAsked_ = false;
      update();
    });
  }
}

void CanvasWidget::paintEvent(QPaintEvent* event) {
  updatePictures(Clock::now() + kSlice);
  QPainter painter(this);
  painter.setClipRegion(event->region());
  paintLive(painter, view());
}

void CanvasWidget::paintLive(QPainter& painter, const PictureView& now) {
  QtCanvasPainter canvas(painter);
  const CanvasFrame frame{now.transform, now.palette};
  painter.drawImage(QRectF(rect()), grid_);
  paintLayer(canvas, CanvasLayer::snapGuides, model_, frame);
  entities_.paint(painter, now);

  PictureView moved = now;
  if (const auto& drag = *model_.selectDrag) {
    if (const auto* multi = std::get_if<MultiBodyDrag>(&*drag)) {
      const SketchPoint movement = dragMovement(*multi, model_) * now.transform.viewport.scale;
      moved.transform.viewport.pan = moved.transform.viewport.pan + SketchPoint{movement.x, -movement.y};
    }
    if (draggedIDs_->size() > kMostLiveEntities) {
      dragged_.paint(painter, moved);
    } else {
      EntityLayerPainter layer(frame, *model_.wallSystemSpecs);
      for (const UUID& id : *draggedIDs_) {
        if (const SketchEntity* entity = model_.entity(id)) layer.paint(canvas, *entity);
      }
    }
  }
  paintLayer(canvas, CanvasLayer::hover, model_, frame);
  if (selectedIDs_) {
    selection_.paint(painter, moved);
  } else {
    paintLayer(canvas, CanvasLayer::selection, model_, frame);
  }
  for (const CanvasLayer layer :
       {CanvasLayer::marquee, CanvasLayer::trim, CanvasLayer::drafts, CanvasLayer::segmentLabel,
        CanvasLayer::markers, CanvasLayer::dwellPulse, CanvasLayer::lock}) {
    paintLayer(canvas, layer, model_, frame);
  }
}

}  // namespace ostrelon
