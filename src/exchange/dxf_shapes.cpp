#include "exchange/dxf_shapes.h"

#include <cmath>

#include "core/sketch_entity.h"

namespace ostrelon {
namespace {

// A bulge smaller than this is a straight piece: the arc stays within 1e-12 of its chord's length.
constexpr double kSmallestBulge = 1e-12;

}  // namespace

DxfShape mapped(const DxfShape& shape, const AffineMap& map) {
  const auto points = [&](const std::vector<SketchPoint>& given) {
    std::vector<SketchPoint> result;
    result.reserve(given.size());
    for (const SketchPoint point : given) result.push_back(map.point(point));
    return result;
  };
  return std::visit(Overloaded{[](const DxfNothing& nothing) -> DxfShape { return nothing; },
                               [&](const DxfLine& line) -> DxfShape {
                                 return DxfLine{map.point(line.from), map.point(line.to)};
                               },
                               [&](const DxfCurve& curve) -> DxfShape {
                                 return DxfCurve{map.point(curve.center), map.vector(curve.u),
                                                 map.vector(curve.v), curve.start, curve.sweep};
                               },
                               [&](const DxfPath& path) -> DxfShape {
                                 return DxfPath{points(path.points), path.isClosed};
                               },
                               [&](const std::shared_ptr<const DxfSpline>& spline) -> DxfShape {
                                 DxfSpline result = *spline;
                                 result.points = points(spline->points);
                                 return std::make_shared<const DxfSpline>(std::move(result));
                               },
                               [&](const DxfWall& wall) -> DxfShape {
                                 return DxfWall{map.point(wall.from), map.point(wall.to), wall.content};
                               },
                               [&](const std::shared_ptr<const DxfInsert>& insert) -> DxfShape {
                                 DxfInsert result = *insert;
                                 result.map = map.after(insert->map);
                                 result.columnStep = map.vector(insert->columnStep);
                                 result.rowStep = map.vector(insert->rowStep);
                                 return std::make_shared<const DxfInsert>(result);
                               }},
                    shape);
}

// With chord c and bulge b = tan(θ/4) the centre lies c (1 - b²) / (4 b) to the left of the chord's middle.
DxfShape bulgedPiece(SketchPoint from, SketchPoint to, double bulge) {
  if (!(std::abs(bulge) > kSmallestBulge)) return DxfLine{from, to};
  const SketchPoint left = perpendicular(to - from);
  const SketchPoint center = (from + to) * 0.5 + left * ((1 - bulge * bulge) / (4 * bulge));
  const double sweep = 4 * std::atan(std::abs(bulge));
  const SketchPoint u = from - center;
  if (!isFinite(center) || !isFinite(u) || !(sweep > 0)) return DxfLine{from, to};
  return DxfCurve{center, u, perpendicular(u) * (bulge > 0 ? 1.0 : -1.0), 0, sweep};
}

DxfCurve circleCurve(SketchPoint center, double radius) { return {center, {radius, 0}, {0, radius}}; }

DxfCurve arcCurve(SketchPoint center, double radius, double startDegrees, double endDegrees) {
  const double start = std::fmod(startDegrees, 360);
  double sweep = std::fmod(std::fmod(endDegrees, 360) - start, 360);
  if (sweep <= 0) sweep += 360;
  DxfCurve curve = circleCurve(center, radius);
  curve.start = radiansOf(start);
  if (sweep < 360) curve.sweep = radiansOf(sweep);
  return curve;
}

}  // namespace ostrelon
