// How the difference of two drawings is painted.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/difference_colors.h"
#include "interaction/canvas_overlays.h"
#include "interaction/canvas_renderer.h"
#include "interaction/difference_layers.h"

namespace ostrelon {
namespace {

struct LayerStyle {
  double width;      // view points
  LineDash dash;     // {} for a solid line
  double haloWidth;  // 0 for none
  double fill;       // opacity of areas
};

// By layer.
constexpr std::array<LayerStyle, kDifferenceLayers.size()> kStyles{{
    {1.25, {3, 3}, 0, 0},
    {1.75, {9, 5}, 0, 0},
    {1.75, {}, 0, 0.1},
    {2.0, {}, 8, 0.1},
}};
constexpr double kHaloOpacity = 0.22;
constexpr double kDotExtent = 1.0;
constexpr double kDotRadius = 1.25;
// How far strokes reach beyond what they outline, view points.
constexpr double kReach = 5.0;

// Clouds, view points
constexpr double kCloudRoom = 10;
constexpr double kCloudChord = 16;
constexpr double kCloudWidth = 1.25;
constexpr double kCurrentCloudWidth = 2.25;
constexpr double kCloudOpacity = 0.75;
constexpr int kArcSteps = 6;
constexpr double kArcHalfAngle = std::numbers::pi / 3;  // of each arc of a cloud
constexpr double kTagHeight = 16;
constexpr double kTagTextHeight = 11;
constexpr double kDigitWidth = 7;

constexpr double kCurrentRoom = 5;
constexpr double kCurrentWidth = 1.5;
constexpr double kCurrentCorner = 4;

const LayerStyle& styleOf(DifferenceLayer layer) { return kStyles[static_cast<std::size_t>(layer)]; }

Color colorOf(DifferenceLayer layer, const ThemePalette& palette) {
  const DifferenceColors colors = differenceColors(palette);
  switch (layer) {
    case DifferenceLayer::changedBefore:
    case DifferenceLayer::changedAfter:
      return colors.changed;
    case DifferenceLayer::removed:
      return colors.removed;
    case DifferenceLayer::added:
      return colors.added;
  }
  return palette.foreground;
}

// The box in view points, with y pointing down.
SketchBox viewBox(const SketchBox& box, const CanvasFrame& frame) {
  return SketchBox::spanning(frame.toView({box.minX, box.maxY}), frame.toView({box.maxX, box.minY}));
}

// One side of a cloud: equal arcs from one corner to the next, bulging to the right of the way.
struct CloudSide {
  CloudSide(SketchPoint start, SketchPoint end, double chord)
      : from(start), count(std::max(1.0, std::round(distanceBetween(start, end) / chord))) {
    step = (end - start) * (1 / count);
  }
  void addArc(double number, std::vector<SketchPoint>& points) const {
    const SketchPoint begin = from + step * number;
    const SketchPoint middle = begin + step * 0.5;
    const SketchPoint outwards = perpendicular(step) * -1;
    // The centre lies within, half a chord over the tangent of half the arc's angle away.
    const double inwards = 0.5 / std::tan(kArcHalfAngle);
    const double radius = 0.5 / std::sin(kArcHalfAngle);
    const SketchPoint center = middle - outwards * inwards;
    for (int i = 0; i < kArcSteps; ++i) {
      const double angle = kArcHalfAngle * (2.0 * i / kArcSteps - 1);
      points.push_back(center + step * (radius * std::sin(angle)) + outwards * (radius * std::cos(angle)));
    }
  }

  SketchPoint from;
  double count;
  SketchPoint step;
};

// The sides, walked with the inside to the left, y up.
std::array<CloudSide, 4> cloudSides(const SketchBox& box, double chord) {
  const auto c = box.corners();
  return {CloudSide(c[0], c[1], chord), CloudSide(c[1], c[2], chord), CloudSide(c[2], c[3], chord),
          CloudSide(c[3], c[0], chord)};
}

// The arcs of the cloud that can be seen. A cloud around much of a drawing has a hundred thousand of them
// once the view is near.
CanvasPath visibleCloud(const SketchBox& box, const SketchBox& visible) {
  CanvasPath path;
  if (visible.contains(box)) {
    path.addPiece(revisionCloud(box, kCloudChord), true);
    return path;
  }
  std::vector<SketchPoint> points;
  for (const CloudSide& side : cloudSides(box, kCloudChord)) {
    const bool isLevel = side.step.y == 0;
    const double step = isLevel ? side.step.x : side.step.y;
    const double across = isLevel ? side.from.y : side.from.x;
    const auto [low, high] =
        isLevel ? std::pair(visible.minX, visible.maxX) : std::pair(visible.minY, visible.maxY);
    const auto [nearest, farthest] =
        isLevel ? std::pair(visible.minY, visible.maxY) : std::pair(visible.minX, visible.maxX);
    if (step == 0 || across < nearest || across > farthest) continue;
    const double from = isLevel ? side.from.x : side.from.y;
    const double a = (low - from) / step;
    const double b = (high - from) / step;
    const double first = std::max(0.0, std::floor(std::min(a, b)));
    const double last = std::min(side.count, std::ceil(std::max(a, b)));
    points.clear();
    for (double i = first; i < last; ++i) side.addArc(i, points);
    if (last < first + 1) continue;
    points.push_back(side.from + side.step * last);
    path.addPiece(points, false);
  }
  return path;
}

void paintTag(CanvasPainter& painter, const CanvasFrame& frame, const SketchBox& cloud, std::size_t number,
              Color color) {
  const std::string text = fmt::format("{}", number);
  const double width = std::max(kTagHeight, kDigitWidth * static_cast<double>(text.size()) + 8);
  const SketchBox tag{cloud.minX - width / 2, cloud.minY - kTagHeight / 2, cloud.minX + width / 2,
                      cloud.minY + kTagHeight / 2};
  if (!tag.overlaps(frame.paintedRect())) return;
  painter.fillRoundedRect(tag, kTagHeight / 2, {frame.palette.card});
  painter.strokeRoundedRect(tag, kTagHeight / 2, {.color = color, .width = 1});
  painter.drawText(text, tag.center(), kTagTextHeight, {frame.palette.foreground});
}

}  // namespace

double layerOpacity(DifferenceLayer layer, double blend) {
  const bool isBefore = layer == DifferenceLayer::changedBefore || layer == DifferenceLayer::removed;
  return std::clamp(2 * (isBefore ? 1 - blend : blend), 0.0, 1.0);
}

DifferenceEntityPainter::DifferenceEntityPainter(CanvasFrame frame, std::span<const WallSystemSpec> systems,
                                                 DifferenceLayer layer, double opacity)
    : frame_(std::move(frame)),
      systems_(systems),
      layer_(layer),
      opacity_(opacity),
      color_(colorOf(layer, frame_.palette)),
      visible_(frame_.paintedRect().grown(kReach)) {}

void DifferenceEntityPainter::paint(CanvasPainter& painter, const SketchEntity& entity) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  const double thickness = wall != nullptr ? paintedWallThickness(*wall, systems_) : 0;
  const SketchBox bounds = entityViewBounds(entity, thickness, frame_.transform.viewport);
  if (!bounds.overlaps(visible_)) return;
  if (bounds.width() < kDotExtent && bounds.height() < kDotExtent) {
    painter.fillEllipse({bounds.center(), kDotRadius}, {color_, opacity_});
    return;
  }
  const LayerStyle& style = styleOf(layer_);
  outlineEntity(entity, thickness, frame_, shape_);
  if (style.fill > 0) fillShape(painter, frame_, shape_, {color_, style.fill * opacity_});
  Stroke stroke = entityStroke(color_);
  if (style.haloWidth > 0) {
    stroke.opacity = kHaloOpacity * opacity_;
    stroke.width = style.haloWidth;
    strokeShape(painter, frame_, shape_, stroke);
  }
  stroke.opacity = opacity_;
  stroke.width = style.width;
  stroke.dash = style.dash;
  if (stroke.isDashed()) stroke.cap = LineCap::butt;
  strokeShape(painter, frame_, shape_, stroke);
}

void paintDifferenceLayer(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceLayers& layers,
                          DifferenceLayer layer, double opacity) {
  if (!(opacity > 0)) return;
  DifferenceEntityPainter entities(frame, layers.systemsOf(layer), layer, opacity);
  for (const SketchEntity& entity : layers.of(layer)) entities.paint(painter, entity);
}

std::vector<SketchPoint> revisionCloud(const SketchBox& box, double chord) {
  std::vector<SketchPoint> points;
  for (const CloudSide& side : cloudSides(box, chord)) {
    for (double i = 0; i < side.count; ++i) side.addArc(i, points);
  }
  return points;
}

void paintClouds(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceLayers& layers,
                 std::optional<std::size_t> current) {
  const SketchBox visible = frame.paintedRect().grown(kCloudChord);
  const std::optional<std::size_t> chosen =
      current ? std::optional(layers.items.at(*current).group) : std::nullopt;
  const auto paintCloud = [&](std::size_t number) {
    const SketchBox box = viewBox(layers.groups[number].box, frame).grown(kCloudRoom);
    if (!isFinite(box) || !box.overlaps(visible)) return;
    const bool isChosen = number == chosen;
    const Stroke stroke{.color = frame.palette.foreground,
                        .opacity = isChosen ? 1 : kCloudOpacity,
                        .width = isChosen ? kCurrentCloudWidth : kCloudWidth,
                        .cap = LineCap::round,
                        .join = LineJoin::round};
    const CanvasPath path = visibleCloud(box, visible);
    if (!path.empty()) painter.strokePath(path, stroke);
    paintTag(painter, frame, box, number + 1, stroke.color);
  };
  for (std::size_t i = 0; i < layers.groups.size(); ++i) {
    if (i != chosen) paintCloud(i);
  }
  if (chosen) paintCloud(*chosen);
}

void paintCurrentItem(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceItem& item) {
  const SketchBox box = viewBox(item.box, frame).grown(kCurrentRoom);
  const SketchBox clip = frame.clipBox();
  if (!isFinite(box) || !box.overlaps(clip)) return;
  painter.strokeRoundedRect(box.intersected(clip), kCurrentCorner,
                            {.color = frame.palette.active, .width = kCurrentWidth});
}

void paintDifference(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceLayers& layers,
                     const EntityList& drawing, double blend) {
  CanvasFrame faded = frame;
  faded.palette = fadedPalette(frame.palette);
  paintEntities(painter, faded, drawing, layers.systemsAfter, layers.ids);
  for (const DifferenceLayer layer : kDifferenceLayers) {
    paintDifferenceLayer(painter, frame, layers, layer, layerOpacity(layer, blend));
  }
  paintClouds(painter, frame, layers);
}

}  // namespace ostrelon
