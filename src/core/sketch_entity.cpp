#include "core/sketch_entity.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "core/circle.h"
#include "core/entity_list.h"
#include "core/length_text.h"

namespace ostrelon {
namespace {

struct KindNames {
  std::string_view kind;
  std::string_view label;
};

// In the order of the variant's cases.
constexpr std::array<KindNames, std::variant_size_v<SketchEntity>> kKindNames{{{"line", "Line"},
                                                                               {"wall", "Wall"},
                                                                               {"circle", "Circle"},
                                                                               {"arc", "Arc"},
                                                                               {"rectangle", "Rectangle"},
                                                                               {"polygon", "Polygon"}}};

std::string pointText(SketchPoint point) {
  return "(" + formatOneDecimal(point.x) + ", " + formatOneDecimal(point.y) + ")";
}

std::string segmentDescription(SketchPoint from, SketchPoint to) {
  return fmt::format("from {} to {} · L={:.1f}", pointText(from), pointText(to), distanceBetween(from, to));
}

EntityMetrics segmentMetrics(std::string type, SketchPoint from, SketchPoint to) {
  EntityMetrics metrics;
  metrics.entityType = std::move(type);
  metrics.from = from;
  metrics.to = to;
  metrics.length = distanceBetween(from, to);
  metrics.angle = directionDegrees(to.x - from.x, to.y - from.y);
  return metrics;
}

}  // namespace

const UUID& entityID(const SketchEntity& entity) {
  return std::visit([](const auto& value) -> const UUID& { return value.id; }, entity);
}

SketchEntity withEntityID(SketchEntity entity, const UUID& id) {
  std::visit([&id](auto& value) { value.id = id; }, entity);
  return entity;
}

std::string_view entityKindName(const SketchEntity& entity) { return kKindNames[entity.index()].kind; }

std::string_view entityTypeLabel(const SketchEntity& entity) { return kKindNames[entity.index()].label; }

std::optional<int> entityNumber(const UUID& id, const EntityList& entities) {
  const auto index = entities.indexOf(id);
  if (!index) return std::nullopt;
  return static_cast<int>(*index) + 1;
}

std::string entityLabel(const SketchEntity& entity, int number,
                        const std::optional<std::string>& wallSystemName) {
  if (std::holds_alternative<WallEntity>(entity) && wallSystemName) {
    return fmt::format("{} {} ({})", entityTypeLabel(entity), number, *wallSystemName);
  }
  return fmt::format("{} {}", entityTypeLabel(entity), number);
}

std::string entityDescription(const SketchEntity& entity, const std::optional<std::string>& wallSystemName) {
  return std::visit(
      Overloaded{
          [](const LineEntity& line) { return "line " + segmentDescription(line.from, line.to); },
          [&](const WallEntity& wall) {
            return fmt::format("wall [{}] {}", wallSystemName.value_or("unknown"),
                               segmentDescription(wall.from, wall.to));
          },
          [](const CircleEntity& circle) {
            return fmt::format("circle center {} · r={:.1f}", pointText(circle.center), circle.radius);
          },
          [](const ArcEntity& arc) {
            return fmt::format("arc center {} · r={:.1f} · span={:.1f}°", pointText(arc.center), arc.radius,
                               degreesOf(arcSpan(arc.startAngle, arc.endAngle)));
          },
          [](const RectangleEntity& rectangle) {
            return fmt::format("rect origin {} · {}×{}", pointText(rectangle.origin),
                               formatOneDecimal(rectangle.size.width),
                               formatOneDecimal(rectangle.size.height));
          },
          [](const PolygonEntity& polygon) {
            return fmt::format("polygon · {} vertices · P={:.1f} · A={:.1f}", polygon.vertices.size(),
                               polygonPerimeter(polygon.vertices.list()),
                               polygonArea(polygon.vertices.list()));
          },
      },
      entity);
}

EntityMetrics entityMetrics(const SketchEntity& entity, std::optional<double> wallThickness) {
  return std::visit(Overloaded{
                        [](const LineEntity& line) { return segmentMetrics("Line", line.from, line.to); },
                        [&](const WallEntity& wall) {
                          EntityMetrics metrics = segmentMetrics("Wall", wall.from, wall.to);
                          metrics.width = wallThickness;
                          return metrics;
                        },
                        [](const CircleEntity& circle) {
                          EntityMetrics metrics;
                          metrics.entityType = "Circle";
                          metrics.from = circle.center;
                          metrics.to = SketchPoint{circle.center.x + circle.radius, circle.center.y};
                          metrics.length = 2 * circle.radius;
                          return metrics;
                        },
                        [](const ArcEntity& arc) {
                          EntityMetrics metrics;
                          metrics.entityType = "Arc";
                          metrics.from = pointOnCircle(arc.center, arc.radius, arc.startAngle);
                          metrics.to = pointOnCircle(arc.center, arc.radius, arc.endAngle);
                          metrics.length = arc.radius * arcSpan(arc.startAngle, arc.endAngle);
                          return metrics;
                        },
                        [](const RectangleEntity& rectangle) {
                          EntityMetrics metrics;
                          metrics.entityType = "Rectangle";
                          metrics.from = rectangle.origin;
                          metrics.to = SketchPoint{rectangle.origin.x + rectangle.size.width,
                                                   rectangle.origin.y + rectangle.size.height};
                          metrics.length = rectangle.size.height;
                          metrics.width = rectangle.size.width;
                          return metrics;
                        },
                        [](const PolygonEntity& polygon) {
                          EntityMetrics metrics;
                          metrics.entityType = "Polygon";
                          if (!polygon.vertices.empty()) metrics.from = polygon.vertices[0];
                          metrics.length = polygonPerimeter(polygon.vertices.list());
                          metrics.area = polygonArea(polygon.vertices.list());
                          metrics.vertexCount = static_cast<int>(polygon.vertices.size());
                          return metrics;
                        },
                    },
                    entity);
}

double polygonPerimeter(const std::vector<SketchPoint>& vertices) {
  if (vertices.size() < 2) return 0;
  double sum = distanceBetween(vertices.back(), vertices.front());
  for (std::size_t i = 1; i < vertices.size(); ++i) sum += distanceBetween(vertices[i - 1], vertices[i]);
  return sum;
}

double polygonArea(const std::vector<SketchPoint>& vertices) {
  if (vertices.size() < 3) return 0;
  double sum = 0;
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const SketchPoint& a = vertices[i];
    const SketchPoint& b = vertices[(i + 1) % vertices.size()];
    sum += a.x * b.y - b.x * a.y;
  }
  return std::fabs(sum) / 2;
}

std::vector<SketchPoint> wallCorners(SketchPoint from, SketchPoint to, double thickness) {
  const double length = distanceBetween(from, to);
  if (!(length > 0)) return {};
  const SketchPoint normal =
      SketchPoint{-(to.y - from.y) / length, (to.x - from.x) / length} * (thickness / 2);
  return {from + normal, to + normal, to - normal, from - normal};
}

}  // namespace ostrelon
