#include "geometry/entity_edits.h"

#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

using Edited = std::optional<SketchEntity>;

// The point on the ray from `fixed` through `moving` at this distance from `fixed`.
std::optional<SketchPoint> pointAtDistance(SketchPoint fixed, SketchPoint moving, double distance) {
  const double length = distanceBetween(fixed, moving);
  if (!(length > 0)) return std::nullopt;
  // Scaling by one would round; what is as long already stays exactly where it is.
  if (length == distance) return moving;
  return fixed + (moving - fixed) * (distance / length);
}

template <class Straight>
Edited resizedSegment(Straight segment, double value) {
  const auto end = pointAtDistance(segment.from, segment.to, value);
  if (!end) return std::nullopt;
  segment.to = *end;
  return segment;
}

template <class Straight>
Edited draggedToLength(const SelectionHandle& handle, Straight segment, double value) {
  if (handle.kind == SelectionHandle::Kind::lineStart) {
    const auto start = pointAtDistance(segment.to, segment.from, value);
    if (!start) return std::nullopt;
    segment.from = *start;
    return segment;
  }
  if (handle.kind == SelectionHandle::Kind::lineEnd) return resizedSegment(segment, value);
  return std::nullopt;
}

}  // namespace

std::optional<SketchEntity> resizedEntity(const SketchEntity& entity, double value) {
  if (!(value > 0)) return std::nullopt;
  return std::visit(Overloaded{
                        [&](const LineEntity& line) { return resizedSegment(line, value); },
                        [&](const WallEntity& wall) { return resizedSegment(wall, value); },
                        [&](CircleEntity circle) {
                          circle.radius = value / 2;
                          return Edited(circle);
                        },
                        [&](ArcEntity arc) {
                          arc.radius = value / 2;
                          return Edited(arc);
                        },
                        [&](RectangleEntity rectangle) {
                          rectangle.size.height = value;
                          return Edited(rectangle);
                        },
                        [](const PolygonEntity&) { return Edited(); },
                    },
                    entity);
}

std::optional<SketchEntity> convertedEntity(const SketchEntity& entity, EntityConversionTarget target,
                                            const UUID& wallSystemID) {
  const auto none = [](const auto&) { return Edited(); };
  return std::visit(Overloaded{
                        [&](const LineEntity& line) {
                          if (target == EntityConversionTarget::line) return Edited(line);
                          return Edited(WallEntity{line.id, line.from, line.to, wallSystemID});
                        },
                        [&](const WallEntity& wall) {
                          if (target == EntityConversionTarget::wall) return Edited(wall);
                          return Edited(LineEntity{wall.id, wall.from, wall.to});
                        },
                        [&](const CircleEntity& circle) { return none(circle); },
                        [&](const ArcEntity& arc) { return none(arc); },
                        [&](const RectangleEntity& rectangle) { return none(rectangle); },
                        [&](const PolygonEntity& polygon) { return none(polygon); },
                    },
                    entity);
}

SketchEntity duplicatedEntity(const SketchEntity& entity, double dx, double dy) {
  return withEntityID(translatedEntity(entity, dx, dy), UUID::random());
}

std::optional<std::unordered_map<UUID, SketchPoint>> alignmentOffsets(
    const std::vector<SketchEntity>& entities, AlignmentAxis axis) {
  if (entities.size() < 2) return std::nullopt;
  const std::vector<SketchPoint> moves = alignmentMoves(entities, axis);
  std::unordered_map<UUID, SketchPoint> offsets;
  for (std::size_t i = 0; i < entities.size(); ++i) offsets[entityID(entities[i])] = moves[i];
  return offsets;
}

std::vector<SketchPoint> alignmentMoves(const std::vector<SketchEntity>& entities, AlignmentAxis axis) {
  const SketchPoint center = selectionCentroid(entities).value_or(SketchPoint{});
  std::vector<SketchPoint> moves;
  moves.reserve(entities.size());
  for (const SketchEntity& entity : entities) {
    const SketchPoint own = entityCentroid(entity);
    moves.push_back(axis == AlignmentAxis::horizontal ? SketchPoint{0, center.y - own.y}
                                                      : SketchPoint{center.x - own.x, 0});
  }
  return moves;
}

std::optional<SegmentLengthIndicator> segmentLengthIndicator(const SketchEntity& entity) {
  using Indicator = std::optional<SegmentLengthIndicator>;
  const auto segment = [](SketchPoint from, SketchPoint to) -> Indicator {
    const double length = distanceBetween(from, to);
    if (!(length > 0)) return std::nullopt;
    return SegmentLengthIndicator{from, to, length};
  };
  return std::visit(Overloaded{
                        [&](const LineEntity& line) { return segment(line.from, line.to); },
                        [&](const WallEntity& wall) { return segment(wall.from, wall.to); },
                        [](const CircleEntity&) { return Indicator(); },
                        [](const ArcEntity&) { return Indicator(); },
                        [](const RectangleEntity&) { return Indicator(); },
                        [](const PolygonEntity&) { return Indicator(); },
                    },
                    entity);
}

std::optional<SketchEntity> dragSegmentLength(const SelectionHandle& handle, const SketchEntity& entity,
                                              double value) {
  if (!(value > 0)) return std::nullopt;
  return std::visit(Overloaded{
                        [&](const LineEntity& line) { return draggedToLength(handle, line, value); },
                        [&](const WallEntity& wall) { return draggedToLength(handle, wall, value); },
                        [](const CircleEntity&) { return Edited(); },
                        [](const ArcEntity&) { return Edited(); },
                        [](const RectangleEntity&) { return Edited(); },
                        [](const PolygonEntity&) { return Edited(); },
                    },
                    entity);
}

}  // namespace ostrelon
