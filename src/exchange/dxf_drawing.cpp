#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "core/circle.h"
#include "core/entity_bounds.h"
#include "exchange/dxf_chords.h"
#include "exchange/dxf_reader.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// Blocks within blocks: deeper than any drawing, and no deeper than the stack.
constexpr int kDeepestBlock = 64;
// The vertices that a drawing may have for each of its entities, on average.
constexpr std::size_t kVerticesPerEntity = 4;
// Half-axes that differ by less than this share of themselves are those of a circle.
constexpr double kRoundness = 1e-6;
// The largest number of a document's file.
constexpr double kFarthest = std::numeric_limits<float>::max();

class Drawer {
 public:
  Drawer(const DxfFile& file, const DxfChoices& choices)
      : file_(file), verticesLeft_(choices.mostEntities * kVerticesPerEntity), choices_(choices) {
    drawing_.objectsOnLayer.assign(file.layers.size(), 0);
    for (const DxfLayer& layer : file.layers) {
      hiddenLayer_.push_back(layer.isFrozen ? DxfReason::layerFrozen
                             : layer.isOff  ? DxfReason::layerOff
                                            : DxfReason::drawn);
    }
    if (choices.layers) chooseLayers(*choices.layers);
    isUnderWay_.assign(file.blocks.size(), false);
  }

  DxfDrawing draw() {
    const AffineMap toFeet = AffineMap::scale(choices_.feetPerUnit);
    drawing_.entities.reserve(std::min(file_.items.size(), choices_.mostEntities));
    for (const DxfItem& item : file_.items) drawItem(item, toFeet, item.layer, 0);
    return std::move(drawing_);
  }

 private:
  void chooseLayers(const std::vector<std::string>& names) {
    std::fill(hiddenLayer_.begin(), hiddenLayer_.end(), DxfReason::layerNotTaken);
    for (const std::string& name : names) {
      bool isKnown = false;
      for (std::size_t i = 0; i < file_.layers.size(); ++i) {
        if (lowerCased(file_.layers[i].name) != lowerCased(name)) continue;
        hiddenLayer_[i] = DxfReason::drawn;
        isKnown = true;
      }
      if (!isKnown) refuseLayer(name);
    }
  }

  [[noreturn]] void refuseLayer(const std::string& name) const {
    constexpr std::size_t kMostNamed = 12;
    std::string names;
    for (std::size_t i = 0; i < std::min(file_.layers.size(), kMostNamed); ++i) {
      names += (i == 0 ? "" : ", ") + file_.layers[i].name;
    }
    if (file_.layers.size() > kMostNamed) names += ", …";
    throw DxfError(fmt::format("The file has no layer \"{}\"; it has {}.", name, names));
  }

  void leaveOut(const DxfItem& item, DxfReason reason) {
    if (!item.continues) ++drawing_.leftOut[{reason, file_.kinds[item.kind]}];
  }

  void drawItem(const DxfItem& item, const AffineMap& map, std::uint32_t layer, int depth) {
    if (item.hidden != DxfReason::drawn) {
      leaveOut(item, item.hidden);
      return;
    }
    if (const auto* insert = std::get_if<std::shared_ptr<const DxfInsert>>(&item.shape)) {
      drawInsert(item, **insert, map, layer, depth);
      return;
    }
    if (const auto* nothing = std::get_if<DxfNothing>(&item.shape)) {
      leaveOut(item, nothing->reason);
      return;
    }
    if (!item.continues) ++drawing_.objectsOnLayer[layer];
    if (hiddenLayer_[layer] != DxfReason::drawn) {
      leaveOut(item, hiddenLayer_[layer]);
      return;
    }
    const std::size_t first = drawing_.entities.size();
    const std::size_t firstOpening = drawing_.openings.size();
    std::visit(Overloaded{[](const DxfNothing&) {}, [](const std::shared_ptr<const DxfInsert>&) {},
                          [&](const DxfWall& wall) { addWall(wall, map); },
                          [&](const DxfLine& line) { addLine(map.point(line.from), map.point(line.to)); },
                          [&](const DxfCurve& curve) { addCurve(curve, map); },
                          [&](const DxfPath& path) {
                            std::vector<SketchPoint> points;
                            points.reserve(path.points.size());
                            for (const SketchPoint point : path.points) points.push_back(map.point(point));
                            addPath(std::move(points), path.isClosed);
                          },
                          [&](const std::shared_ptr<const DxfSpline>& spline) { addSpline(*spline, map); }},
               item.shape);
    if (drawing_.entities.size() == first) {
      leaveOut(item, DxfReason::noSize);
      return;
    }
    const auto isTooFar = [](const SketchEntity& entity) {
      const SketchBox box = entityBounds(entity);
      const double farthest =
          std::max({std::abs(box.minX), std::abs(box.maxX), std::abs(box.minY), std::abs(box.maxY)});
      return !isFinite(box) || farthest > kFarthest;
    };
    const auto begin = drawing_.entities.begin() + static_cast<std::ptrdiff_t>(first);
    if (std::any_of(begin, drawing_.entities.end(), isTooFar)) {
      drawing_.entities.resize(first);
      drawing_.openings.resize(firstOpening);
      leaveOut(item, DxfReason::tooFar);
    }
  }

  void drawInsert(const DxfItem& item, const DxfInsert& insert, const AffineMap& map, std::uint32_t layer,
                  int depth) {
    const DxfBlock& block = file_.blocks[insert.block];
    if (!block.isDefined) {
      leaveOut(item, DxfReason::noBlock);
      return;
    }
    if (depth >= kDeepestBlock || isUnderWay_[insert.block]) {
      leaveOut(item, DxfReason::ownBlock);
      return;
    }
    // Layers that are frozen hide what is drawn through them; those that are off, only what lies on them.
    if (hiddenLayer_[layer] == DxfReason::layerFrozen) {
      leaveOut(item, DxfReason::layerFrozen);
      return;
    }
    isUnderWay_[insert.block] = true;
    AffineMap each = map.after(insert.map).after({{1, 0}, {0, 1}, block.base * -1.0});
    const SketchPoint origin = each.origin;
    for (std::uint32_t row = 0; row < insert.rows; ++row) {
      for (std::uint32_t column = 0; column < insert.columns; ++column) {
        each.origin = origin + map.vector(insert.columnStep * column + insert.rowStep * row);
        count();
        for (const DxfItem& inner : block.items) {
          count();
          drawItem(inner, each, inner.layer == kDxfLayerZero ? layer : inner.layer, depth + 1);
        }
      }
    }
    isUnderWay_[insert.block] = false;
  }

  // What is drawn out of blocks is bounded even where nothing comes of it.
  void count() {
    if (++counted_ > choices_.mostEntities) refuseSize();
  }
  [[noreturn]] void refuseSize() const {
    throw DxfError(fmt::format("With its blocks drawn out, the drawing would have more than {} entities.",
                               choices_.mostEntities));
  }
  void add(SketchEntity entity) {
    if (drawing_.entities.size() >= choices_.mostEntities) refuseSize();
    drawing_.entities.push_back(std::move(entity));
  }
  void spendVertices(std::size_t number) {
    if (number > verticesLeft_) refuseSize();
    verticesLeft_ -= number;
  }

  void addLine(SketchPoint from, SketchPoint to) {
    if (from != to) add(LineEntity{UUID::random(), from, to});
  }

  // A wall that was turned over with its block has its doors open to the other side.
  void addWall(const DxfWall& wall, const AffineMap& map) {
    const SketchPoint from = map.point(wall.from);
    const SketchPoint to = map.point(wall.to);
    if (from == to) return;
    const UUID id = UUID::random();
    add(WallEntity{id, from, to, systemOf(wall.content->system)});
    const double before = distanceBetween(wall.from, wall.to);
    const double scale = before > 0 ? distanceBetween(from, to) / before : 1;
    const bool isMirrored = cross(map.x, map.y) < 0;
    for (Opening opening : wall.content->openings) {
      opening.id = UUID::random();
      opening.wallID = id;
      opening.distance *= scale;
      opening.width *= scale;
      if (!std::isfinite(opening.distance) || !std::isfinite(opening.width)) continue;
      if (isMirrored) opening.swing = opening.swing == DoorSwing::in ? DoorSwing::out : DoorSwing::in;
      drawing_.openings.push_back(opening);
    }
  }

  // The system by its name and measures; a walls' own system each, where it is unknown.
  UUID systemOf(const std::optional<WallSystemSpec>& wanted) {
    if (!wanted) return UUID::random();
    for (const WallSystemSpec& known : drawing_.systems) {
      if (known.name == wanted->name && known.thickness == wanted->thickness &&
          known.height == wanted->height) {
        return known.id;
      }
    }
    drawing_.systems.push_back(*wanted);
    drawing_.systems.back().id = UUID::random();
    return drawing_.systems.back().id;
  }

  void addPath(std::vector<SketchPoint> points, bool isClosed) {
    points.erase(std::unique(points.begin(), points.end()), points.end());
    if (isClosed && points.size() > 1 && points.front() == points.back()) points.pop_back();
    if (isClosed && points.size() > 2) {
      spendVertices(points.size());
      add(PolygonEntity{UUID::random(), PolygonVertices(std::move(points))});
      return;
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i) addLine(points[i], points[i + 1]);
  }

  void addCurve(const DxfCurve& given, const AffineMap& map) {
    const DxfCurve curve{map.point(given.center), map.vector(given.u), map.vector(given.v), given.start,
                         given.sweep};
    const double uLength = lengthOf(curve.u);
    const double vLength = lengthOf(curve.v);
    const double size = std::max(uLength, vLength);
    const bool isRound = std::abs(uLength - vLength) <= kRoundness * size &&
                         std::abs(dot(curve.u, curve.v)) <= kRoundness * size * size;
    if (!isRound) {
      const bool isWhole = curve.sweep >= kFullTurn;
      addPath(curveChords(curve, kDxfChordTolerance, verticesLeft_), isWhole);
      return;
    }
    if (curve.sweep >= kFullTurn) {
      add(CircleEntity{UUID::random(), curve.center, uLength});
      return;
    }
    const double turn = std::atan2(curve.u.y, curve.u.x);
    const bool isForward = cross(curve.u, curve.v) > 0;
    const double from = isForward ? turn + curve.start : turn - curve.start - curve.sweep;
    add(ArcEntity{UUID::random(), curve.center, uLength, normalizedAngle(from),
                  normalizedAngle(from + curve.sweep)});
  }

  void addSpline(const DxfSpline& given, const AffineMap& map) {
    DxfSpline spline = given;
    for (SketchPoint& point : spline.points) point = map.point(point);
    addPath(splineChords(spline, kDxfChordTolerance, verticesLeft_), spline.isClosed);
  }

  const DxfFile& file_;
  std::size_t verticesLeft_;
  const DxfChoices& choices_;
  std::vector<DxfReason> hiddenLayer_;
  std::vector<bool> isUnderWay_;  // by block: it is being drawn
  std::size_t counted_ = 0;
  DxfDrawing drawing_;
};

}  // namespace

std::size_t DxfDrawing::leftOutCount() const {
  return std::accumulate(leftOut.begin(), leftOut.end(), std::size_t{0},
                         [](std::size_t sum, const auto& kind) { return sum + kind.second; });
}

DxfDrawing drawDxf(const DxfFile& file, const DxfChoices& choices) { return Drawer(file, choices).draw(); }

}  // namespace ostrelon
