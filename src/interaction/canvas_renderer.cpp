#include "interaction/canvas_renderer.h"

#include <cmath>

#include "core/entity_list.h"
#include "geometry/opening_operations.h"
#include "interaction/annotation_painting.h"
#include "interaction/board.h"
#include "interaction/canvas_overlays.h"
#include "interaction/opening_painting.h"

namespace ostrelon {

namespace {

constexpr double kMinorGridWidth = 1.0;
constexpr double kMajorGridWidth = 1.25;
constexpr double kMajorGridOpacity = 0.35;
constexpr double kAxisWidth = 1.5;
constexpr double kAxisOpacity = 0.25;
/// Lines beyond the visible part on each side, in minor steps.
constexpr double kGridOverhang = 2;
/// More lines than any canvas can show apart; a count above it comes of numbers too large to add up.
constexpr double kMostGridLines = 20000;

/// Below this extent, view points, an entity is a dot.
constexpr double kDotExtent = 1.0;
/// How far strokes reach beyond what they outline, view points.
constexpr double kStrokeReach = 2.0;

struct GridExtents {
  double startX = 0;
  double endX = 0;
  double startY = 0;
  double endY = 0;
};

/// All lines of one spacing, as one path.
class GridPath {
 public:
  GridPath(const CanvasFrame& frame, GridExtents extents) : frame_(frame), extents_(extents) {}

  void addLines(double startX, double startY, double step) {
    // Counted, not summed up: far from the origin adding a step to a coordinate may not change it.
    const double columns = std::floor((extents_.endX - startX) / step);
    const double rows = std::floor((extents_.endY - startY) / step);
    if (!(columns < kMostGridLines) || !(rows < kMostGridLines)) return;
    for (int i = 0; i <= static_cast<int>(columns); ++i) addColumn(startX + i * step);
    for (int i = 0; i <= static_cast<int>(rows); ++i) addRow(startY + i * step);
  }
  void addColumn(double x) {
    const double viewX = onPixelCenter(frame_.toView({x, 0}).x);
    if (!std::isfinite(viewX)) return;
    path_.addSegment({viewX, frame_.toView({0, extents_.startY}).y},
                     {viewX, frame_.toView({0, extents_.endY}).y});
  }
  void addRow(double y) {
    const double viewY = onPixelCenter(frame_.toView({0, y}).y);
    if (!std::isfinite(viewY)) return;
    path_.addSegment({frame_.toView({extents_.startX, 0}).x, viewY},
                     {frame_.toView({extents_.endX, 0}).x, viewY});
  }
  void stroke(CanvasPainter& painter, Color color, double opacity, double width) {
    if (!path_.empty()) painter.strokePath(path_, {.color = color, .opacity = opacity, .width = width});
    path_.clear();
  }

 private:
  double onPixelCenter(double view) const {
    if (frame_.gridPixelRatio <= 0) return view;
    return (std::floor(view * frame_.gridPixelRatio) + 0.5) / frame_.gridPixelRatio;
  }

  const CanvasFrame& frame_;
  GridExtents extents_;
  CanvasPath path_;
};

}  // namespace

void paintBackground(CanvasPainter& painter, const CanvasFrame& frame) {
  painter.fillRoundedRect(frame.paintedRect(), 0, {frame.palette.background});
}

void paintGrid(CanvasPainter& painter, const CanvasFrame& frame) {
  const double step = gridStep(frame.scale());
  const double majorStep = step * kGridMajorEvery;
  const SketchBox visible = visibleSketchBox(frame.transform.canvasSize, frame.transform.viewport);
  const auto before = [](double value, double by) { return std::floor(value / by) * by; };
  const auto beyond = [](double value, double by) { return std::ceil(value / by) * by; };
  const double overhang = kGridOverhang * step;
  const GridExtents extents{before(visible.minX - overhang, step), beyond(visible.maxX + overhang, step),
                            before(visible.minY - overhang, step), beyond(visible.maxY + overhang, step)};
  const ThemePalette& palette = frame.palette;

  GridPath path(frame, extents);
  path.addLines(extents.startX, extents.startY, step);
  path.stroke(painter, palette.border, 1, kMinorGridWidth);

  path.addLines(before(extents.startX, majorStep), before(extents.startY, majorStep), majorStep);
  path.stroke(painter, palette.mutedForeground, kMajorGridOpacity, kMajorGridWidth);

  if (extents.startX <= 0 && 0 <= extents.endX) path.addColumn(0);
  if (extents.startY <= 0 && 0 <= extents.endY) path.addRow(0);
  path.stroke(painter, palette.foreground, kAxisOpacity, kAxisWidth);
}

EntityLayerPainter::EntityLayerPainter(const CanvasFrame& frame, std::span<const WallSystemSpec> systems,
                                       const DrawingLook& look)
    : frame_(frame),
      systems_(systems),
      look_(look),
      walls_(frame_, wallFill(frame_.palette, look.plan.filledWalls), strokeOf(WallEntity{})),
      visible_(frame_.paintedRect().grown(kStrokeReach)) {}

Stroke EntityLayerPainter::strokeOf(const SketchEntity& entity) const {
  return look_.plan.lineWeights ? weightedStroke(frame_, entity) : entityStroke(frame_.palette.foreground);
}

void EntityLayerPainter::takeIn(CanvasPainter& painter, const SketchEntity& entity) {
  if (const JoinedWall* joined = look_.joinedWall(entity)) walls_.add(painter, *joined);
}

void EntityLayerPainter::paint(CanvasPainter& painter, const SketchEntity& entity) {
  if (look_.joinedWall(entity) != nullptr) return;
  const auto* wall = std::get_if<WallEntity>(&entity);
  const double thickness = wall != nullptr ? paintedWallThickness(*wall, systems_) : 0;
  const SketchBox bounds = entityViewBounds(entity, thickness, frame_.transform.viewport);
  if (!bounds.overlaps(visible_)) return;

  const Stroke stroke = strokeOf(entity);
  if (bounds.width() < kDotExtent && bounds.height() < kDotExtent) {
    const CanvasSegment dot{bounds.center(), bounds.center()};
    painter.strokeSegments({&dot, 1}, stroke);
    return;
  }
  outlineEntity(entity, thickness, frame_, shape_);
  if (wall != nullptr) fillShape(painter, frame_, shape_, wallFill(frame_.palette, look_.plan.filledWalls));
  strokeShape(painter, frame_, shape_, stroke);
  if (wall != nullptr) strokeWallCenterLine(painter, frame_, wall->from, wall->to, stroke.color);
}

void paintEntities(CanvasPainter& painter, const CanvasFrame& frame, const EntityList& entities,
                   std::span<const WallSystemSpec> systems, const EntitySet& leftOut,
                   const DrawingLook& look) {
  EntityLayerPainter layer(frame, systems, look);
  const auto visit = [&](const auto& paint) {
    for (const SketchEntity& entity : entities) {
      if (leftOut.empty() || !leftOut.contains(entityID(entity))) paint(entity);
    }
  };
  if (layer.hasJoinedWalls()) {
    visit([&](const SketchEntity& entity) { layer.takeIn(painter, entity); });
    layer.paintJoinedWalls(painter);
  }
  visit([&](const SketchEntity& entity) { layer.paint(painter, entity); });
}

void paintLayer(CanvasPainter& painter, CanvasLayer layer, const Board& board, const CanvasFrame& frame) {
  switch (layer) {
    case CanvasLayer::grid:
      if (board.sketch().drawing->showGrid) paintGrid(painter, frame);
      return;
    case CanvasLayer::snapGuides:
      paintSnapGuides(painter, board, frame);
      return;
    case CanvasLayer::entities: {
      const Drawing& drawing = board.sketch().drawing;
      paintEntities(painter, frame, drawing.entities, drawing.wallSystemSpecs, {},
                    drawingLook(drawing.plan.look, drawing.entities, drawing.wallSystemSpecs));
      return;
    }
    case CanvasLayer::openings: {
      const OpeningLayout layout = openingLayout(board.sketch());
      paintOpeningGaps(painter, frame, layout);
      paintOpenings(painter, frame, layout, OpeningMisfits::shown);
      paintAnnotations(painter, frame, KeptAnnotations().of(board.sketch()));
      return;
    }
    case CanvasLayer::hover:
      paintHover(painter, board, frame);
      return;
    case CanvasLayer::selection:
      paintSelection(painter, board, frame);
      return;
    case CanvasLayer::marquee:
      paintMarquee(painter, board, frame);
      return;
    case CanvasLayer::trim:
      paintTrim(painter, board, frame);
      return;
    case CanvasLayer::drafts:
      paintDrafts(painter, board, frame);
      return;
    case CanvasLayer::segmentLabel:
      paintSegmentLabel(painter, board, frame);
      return;
    case CanvasLayer::markers:
      paintMarkers(painter, board, frame);
      return;
    case CanvasLayer::dwellPulse:
      paintDwellPulse(painter, board, frame);
      return;
    case CanvasLayer::lock:
      paintLock(painter, board, frame);
      return;
  }
}

void paintCanvas(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  paintBackground(painter, frame);
  for (const CanvasLayer layer : kAllCanvasLayers) paintLayer(painter, layer, board, frame);
}

}  // namespace ostrelon
