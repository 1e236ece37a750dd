// The snap points of one entity, handed to a visitor one by one. Nothing is allocated, so that a search may
// walk every point of a drawing at each move of the pointer.
#pragma once

#include <cmath>
#include <cstddef>
#include <optional>

#include "core/circle.h"
#include "core/sketch_box.h"
#include "core/sketch_entity.h"
#include "interaction/snap_types.h"

namespace ostrelon {

/// Visits (point, kind) in the order that decides ties: a segment's ends, then its middle; a circle's
/// centre, quadrants counter-clockwise from the right, then tangents; corners before edge middles
/// before the centre. Walls count as their centre line.
template <class Visitor>
void forEachSnapPoint(const SketchEntity& entity, std::optional<SketchPoint> fromPoint, Visitor&& visit) {
  const auto visitSegment = [&](SketchPoint from, SketchPoint to) {
    visit(from, EntitySnapKind::endpoint);
    visit(to, EntitySnapKind::endpoint);
    visit(middleOf(from, to), EntitySnapKind::midpoint);
  };
  std::visit(Overloaded{
                 [&](const LineEntity& line) { visitSegment(line.from, line.to); },
                 [&](const WallEntity& wall) { visitSegment(wall.from, wall.to); },
                 [&](const CircleEntity& circle) {
                   const auto [x, y] = circle.center;
                   const double r = circle.radius;
                   visit(circle.center, EntitySnapKind::center);
                   visit(SketchPoint{x + r, y}, EntitySnapKind::quadrant);
                   visit(SketchPoint{x, y + r}, EntitySnapKind::quadrant);
                   visit(SketchPoint{x - r, y}, EntitySnapKind::quadrant);
                   visit(SketchPoint{x, y - r}, EntitySnapKind::quadrant);
                   if (!fromPoint || !(r > 0)) return;
                   // The touching points lie on the polar line of the point: its foot is at r²/q of the way
                   // out, and they lie off it at right angles by r·sqrt(q - r²)/q of the distance.
                   const SketchPoint d = *fromPoint - circle.center;
                   const double q = squaredLength(d);
                   if (!(r * r < q)) return;
                   const double a = r * r / q;
                   const double b = r * std::sqrt(q - r * r) / q;
                   const SketchPoint base = circle.center + d * a;
                   visit(SketchPoint{base.x - d.y * b, base.y + d.x * b}, EntitySnapKind::tangent);
                   visit(SketchPoint{base.x + d.y * b, base.y - d.x * b}, EntitySnapKind::tangent);
                 },
                 [&](const ArcEntity& arc) {
                   visit(pointOnCircle(arc.center, arc.radius, arc.startAngle), EntitySnapKind::endpoint);
                   visit(pointOnCircle(arc.center, arc.radius, arc.endAngle), EntitySnapKind::endpoint);
                   visit(arc.center, EntitySnapKind::center);
                 },
                 [&](const RectangleEntity& rectangle) {
                   const auto [x, y] = rectangle.origin;
                   const auto [width, height] = rectangle.size;
                   const SketchBox box = SketchBox::spanning(rectangle.origin, rectangle.size);
                   const SketchPoint middle{x + width / 2, y + height / 2};
                   for (const SketchPoint corner : box.corners()) visit(corner, EntitySnapKind::corner);
                   visit(SketchPoint{middle.x, box.minY}, EntitySnapKind::edgeMidpoint);
                   visit(SketchPoint{box.maxX, middle.y}, EntitySnapKind::edgeMidpoint);
                   visit(SketchPoint{middle.x, box.maxY}, EntitySnapKind::edgeMidpoint);
                   visit(SketchPoint{box.minX, middle.y}, EntitySnapKind::edgeMidpoint);
                   visit(middle, EntitySnapKind::center);
                 },
                 [&](const PolygonEntity& polygon) {
                   const auto& vertices = polygon.vertices.list();
                   const std::size_t count = vertices.size();
                   if (count == 0) return;
                   SketchPoint sum;
                   for (const SketchPoint& vertex : vertices) {
                     visit(vertex, EntitySnapKind::endpoint);
                     sum = sum + vertex;
                   }
                   for (std::size_t i = 0; count > 1 && i < count; ++i) {
                     visit(middleOf(vertices[i], vertices[(i + 1) % count]), EntitySnapKind::edgeMidpoint);
                   }
                   const auto n = static_cast<double>(count);
                   visit(SketchPoint{sum.x / n, sum.y / n}, EntitySnapKind::center);
                 },
             },
             entity);
}

}  // namespace ostrelon
