#include "geometry/wall_run.h"

#include <cmath>

#include "geometry/outline.h"

namespace ostrelon {
namespace {

// Neighbours whose directions enclose less than about a thousandth of a degree count as parallel.
constexpr double kParallelSine = 2e-5;

// How far to the left of the drawn line the centre line lies.
double leftOffset(double thickness, WallJustification justification) {
  if (!std::isfinite(thickness) || !(thickness > 0)) return 0;
  switch (justification) {
    case WallJustification::middle:
      return 0;
    case WallJustification::leftFace:
      return -thickness / 2;
    case WallJustification::rightFace:
      return thickness / 2;
  }
  return 0;
}

double pathLength(const RunPath& path) {
  double length = 0;
  for (std::size_t i = 0; i < path.wallCount(); ++i) {
    length += distanceBetween(path.points[i], path.points[(i + 1) % path.points.size()]);
  }
  return length;
}

// The part of each wall that the path is; absent where a closed path encloses no area.
std::optional<WallJustification> justificationOf(const RunPath& path, RunFace face) {
  if (face == RunFace::middle) return WallJustification::middle;
  bool outerIsLeft = true;
  if (path.isClosed) {
    const double area = signedArea(path.points);
    const double length = pathLength(path);
    if (!(2 * std::fabs(area) > 1e-9 * length * length)) return std::nullopt;
    outerIsLeft = area < 0;
  }
  return (face == RunFace::outer) == outerIsLeft ? WallJustification::leftFace : WallJustification::rightFace;
}

}  // namespace

WallAxis justifiedAxis(const WallAxis& drawn, double thickness, WallJustification justification) {
  const SketchPoint along = drawn.to - drawn.from;
  const double length = lengthOf(along);
  if (!(length > 0) || !std::isfinite(length)) return drawn;
  const SketchPoint offset = perpendicular(along) * (leftOffset(thickness, justification) / length);
  return {drawn.from + offset, drawn.to + offset};
}

SketchPoint drawnEnd(const WallAxis& axis, int which, double thickness, WallJustification justification) {
  const SketchPoint offset = justifiedAxis(axis, thickness, justification).from - axis.from;
  return (which == 0 ? axis.from : axis.to) - offset;
}

std::optional<SketchPoint> justifiedCorner(const WallAxis& before, const WallAxis& after) {
  const SketchPoint a = before.to - before.from;
  const SketchPoint b = after.to - after.from;
  const double turn = cross(a, b);
  if (!(std::fabs(turn) > kParallelSine * lengthOf(a) * lengthOf(b))) return std::nullopt;
  const SketchPoint corner = before.from + a * (cross(after.from - before.from, b) / turn);
  if (!(dot(corner - before.from, a) > 0) || !(dot(after.to - corner, b) > 0)) return std::nullopt;
  return corner;
}

std::variant<std::vector<WallAxis>, RunRefusal> runAxes(const RunPath& path, double thickness, RunFace face) {
  const auto justification = justificationOf(path, face);
  if (!justification) return RunRefusal{RunProblem::noArea, 0};
  const std::size_t count = path.wallCount();
  const auto drawn = [&](std::size_t wall) {
    return WallAxis{path.points[wall], path.points[(wall + 1) % path.points.size()]};
  };
  std::vector<WallAxis> axes;
  axes.reserve(count);
  for (std::size_t i = 0; i < count; ++i) axes.push_back(justifiedAxis(drawn(i), thickness, *justification));
  if (*justification == WallJustification::middle) return axes;

  const double offset = leftOffset(thickness, *justification);
  for (std::size_t i = path.isClosed ? 0 : 1; i < count; ++i) {
    const std::size_t before = (i + count - 1) % count;
    const SketchPoint corner = path.points[i];
    const SketchPoint a = corner - path.points[(i + path.points.size() - 1) % path.points.size()];
    const SketchPoint b = drawn(i).to - corner;
    const double lengths = lengthOf(a) * lengthOf(b);
    if (std::fabs(cross(a, b)) <= kParallelSine * lengths) {
      if (dot(a, b) < 0) return RunRefusal{RunProblem::turnsBack, before + 1};
      continue;  // straight on: both offsets are the same
    }
    // The point at this distance from both lines lies along the sum of the unit normals n and m, at
    // offset / (1 + n·m) of it: its product with each of them is the offset.
    const SketchPoint n = perpendicular(a) * (1 / lengthOf(a));
    const SketchPoint m = perpendicular(b) * (1 / lengthOf(b));
    const SketchPoint meeting = corner + (n + m) * (offset / (1 + dot(n, m)));
    axes[before].to = meeting;
    axes[i].from = meeting;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const SketchPoint along = drawn(i).to - drawn(i).from;
    if (!(dot(axes[i].to - axes[i].from, along) > 0)) return RunRefusal{RunProblem::wallTooShort, i + 1};
  }
  return axes;
}

}  // namespace ostrelon
