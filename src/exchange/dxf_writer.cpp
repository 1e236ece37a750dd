#include "exchange/dxf_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

#include "core/circle.h"
#include "exchange/dxf_frame.h"
#include "exchange/dxf_layers.h"
#include "exchange/dxf_output.h"
#include "exchange/dxf_own_data.h"
#include "geometry/entity_geometry.h"
#include "geometry/wall_loops.h"
#include "interaction/canvas_frame.h"
#include "interaction/drawing_bounds.h"
#include "interaction/drawing_look.h"
#include "interaction/entity_shape.h"

namespace ostrelon {
namespace {

class EntityWriter {
 public:
  EntityWriter(DxfOutput& out, const DxfLayers& layers, std::span<const WallSystemSpec> systems, DxfForm form,
               const OpeningLayout& openings, const DrawingLook& look)
      : out_(out),
        layers_(layers),
        systems_(systems),
        form_(form),
        scale_(dxfUnitsPerFoot(form.unit)),
        openings_(openings),
        look_(look),
        next_(firstEntityHandle(layers)) {}

  /// Everything goes on this layer from now on; its walls are of these systems. Both must outlive their use.
  void setLayer(const std::string& layer, std::span<const WallSystemSpec> systems) {
    baseLayer_ = layer;
    wallLayer_ = &layer;
    systems_ = systems;
  }

  void writeLoop(const WallLoop& loop) {
    pen_ = penMillimetres(WallEntity{});
    writeClosed(loop.points, layers_.layerOf(loop.systems.front()), true);
  }

  /// False where there is nothing to write.
  bool write(const SketchEntity& entity) {
    pen_ = penMillimetres(entity);
    return std::visit(Overloaded{
                          [this](const LineEntity& line) { return writeLine(line); },
                          [this](const WallEntity& wall) { return writeWall(wall); },
                          [this](const CircleEntity& circle) { return writeCircle(circle); },
                          [this](const ArcEntity& arc) { return writeArc(arc); },
                          [this](const RectangleEntity& rectangle) {
                            const auto corners = rectangleCorners(rectangle.origin, rectangle.size);
                            const bool isFlat = rectangle.size.width == 0 && rectangle.size.height == 0;
                            return !isFlat && writeClosed(corners, layerOf(DxfKind::rectangle));
                          },
                          [this](const PolygonEntity& polygon) {
                            return writeClosed(polygon.vertices.list(), layerOf(DxfKind::polygon));
                          },
                      },
                      entity);
  }

 private:
  bool is2000() const { return form_.version == DxfVersion::r2000; }
  SketchPoint scaled(SketchPoint point) const { return point * scale_; }

  void begin(std::string_view kind, std::string_view layer, std::string_view className) {
    out_.text(0, kind);
    if (is2000()) {
      out_.handle(5, next_);
      ++next_.value;
      out_.handle(330, kDxfModelSpace);
      out_.text(100, "AcDbEntity");
    }
    out_.text(8, layer);
    // In hundredths of a millimetre.
    if (look_.plan.lineWeights && is2000()) out_.integer(370, std::lround(pen_ * 100));
    className_ = className;
  }
  // Ends what all entities have in common.
  void beginOwn() {
    if (is2000()) out_.text(100, className_);
  }

  std::string_view layerOf(DxfKind kind) const {
    return form_.layering == DxfLayering::byKind && wallLayer_ == nullptr ? dxfKindLayer(kind) : baseLayer_;
  }

  bool writeLine(const LineEntity& line, std::string_view layer = {}) {
    if (!isFinite(line.from) || !isFinite(line.to) || line.from == line.to) return false;
    begin("LINE", layer.empty() ? layerOf(DxfKind::line) : layer, "AcDbLine");
    beginOwn();
    out_.flatPoint(10, scaled(line.from));
    out_.flatPoint(11, scaled(line.to));
    if (!layer.empty()) writeDxfPartMark(out_);
    return true;
  }

  bool writeWall(const WallEntity& wall) {
    const bool isJoined = look_.joinedWall(wall) != nullptr;
    const std::string_view ownLayer =
        wallLayer_ != nullptr ? std::string_view(*wallLayer_) : layers_.layerOf(wall.systemSpecID);
    const std::string_view layer = isJoined ? kDxfCenterLineLayer : ownLayer;
    const double thickness = paintedWallThickness(wall, systems_);
    const auto& openings = openings_.ofWall(wall.id);
    if (openings.empty()) {
      if (!isJoined && !writeOutline(wallCorners(wall.from, wall.to, thickness), layer)) return false;
    } else {
      const OpeningWall& host = openings_.all()[openings.front()].wall;
      for (const auto& [from, to] : wallBesideOpenings(host, openings_)) {
        if (!isJoined) writeOutline(wallCorners(host.at(from), host.at(to), thickness), layer);
      }
      for (const std::size_t place : openings) writeOpening(openings_.all()[place]);
    }
    begin("LINE", layer, "AcDbLine");
    out_.text(6, kDxfCenterLineType);
    beginOwn();
    out_.flatPoint(10, scaled(wall.from));
    out_.flatPoint(11, scaled(wall.to));
    if (wallLayer_ == nullptr) writeWallData(wall, ownLayer);
    return true;
  }

  void writeWallData(const WallEntity& wall, std::string_view layer) {
    const auto system = std::find_if(systems_.begin(), systems_.end(), [&](const WallSystemSpec& spec) {
      return spec.id == wall.systemSpecID;
    });
    std::vector<Opening> openings;
    for (const std::size_t place : openings_.ofWall(wall.id)) {
      const PlacedOpening& placed = openings_.all()[place];
      if (placed.fit == OpeningFit::fits) openings.push_back(placed.opening);
    }
    writeDxfWallData(out_, layer, system == systems_.end() ? nullptr : &*system, openings, scale_);
  }

  bool writeOutline(std::span<const SketchPoint> corners, std::string_view layer) {
    return writeClosed(corners, layer, wallLayer_ == nullptr);
  }

  void writeOpening(const PlacedOpening& placed) {
    if (placed.fit != OpeningFit::fits) return;
    const OpeningShape shape = openingShape(placed.opening, placed.wall);
    for (const auto& [from, to] : shape.lines) writeLine({{}, from, to}, kDxfGlazingLayer);
    if (shape.leaf) writeLine({{}, shape.leaf->first, shape.leaf->second}, kDxfDoorLayer);
    if (shape.arc) {
      const auto& [center, radius, start, end] = *shape.arc;
      writeArc({{}, center, radius, start, end}, kDxfDoorLayer);
    }
  }

  bool writeCircle(const CircleEntity& circle) {
    const double radius = std::abs(circle.radius);
    if (!isFinite(circle.center) || !std::isfinite(radius) || radius == 0) return false;
    begin("CIRCLE", layerOf(DxfKind::circle), "AcDbCircle");
    beginOwn();
    out_.flatPoint(10, scaled(circle.center));
    out_.real(40, radius * scale_);
    return true;
  }

  bool writeArc(const ArcEntity& arc, std::string_view layer = {}) {
    const double sweep = arcSpan(arc.startAngle, arc.endAngle);
    const double radius = std::abs(arc.radius);
    if (!isFinite(arc.center) || !std::isfinite(radius) || radius == 0) return false;
    if (!(sweep > kSmallestArcSweep)) return false;
    // A negative radius puts every point on the other side of the centre.
    const double turned = arc.radius < 0 ? std::numbers::pi : 0;
    begin("ARC", layer.empty() ? layerOf(DxfKind::arc) : layer, "AcDbCircle");
    beginOwn();
    out_.flatPoint(10, scaled(arc.center));
    out_.real(40, radius * scale_);
    if (is2000()) out_.text(100, "AcDbArc");
    out_.real(50, degreesOf(normalizedAngle(arc.startAngle + turned)));
    out_.real(51, degreesOf(normalizedAngle(arc.endAngle + turned)));
    if (!layer.empty()) writeDxfPartMark(out_);
    return true;
  }

  /// `isPart`: it is drawn again by its wall.
  bool writeClosed(std::span<const SketchPoint> corners, std::string_view layer, bool isPart = false) {
    if (corners.size() < 2 || !areFinite(corners)) return false;
    if (!is2000()) {
      begin("POLYLINE", layer, {});
      out_.groups({{66, 1}, {70, 1}});
      out_.flatPoint(10, {0, 0});
      if (isPart) writeDxfPartMark(out_);
      for (const SketchPoint corner : corners) {
        out_.groups({{0, "VERTEX"}, {8, layer}});
        out_.flatPoint(10, scaled(corner));
      }
      out_.groups({{0, "SEQEND"}, {8, layer}});
      return true;
    }
    begin("LWPOLYLINE", layer, "AcDbPolyline");
    beginOwn();
    out_.groups({{90, static_cast<int>(corners.size())}, {70, 1}});
    for (const SketchPoint corner : corners) out_.point(10, scaled(corner));
    if (isPart) writeDxfPartMark(out_);
    return true;
  }

  DxfOutput& out_;
  const DxfLayers& layers_;
  std::span<const WallSystemSpec> systems_;
  DxfForm form_;
  double scale_;  // units of the file in a foot
  const OpeningLayout& openings_;
  const DrawingLook& look_;
  double pen_ = 0;  // of the entity that is being written, millimetres
  DxfHandle next_;
  std::string_view className_;
  std::string_view baseLayer_ = kDxfBaseLayer;
  const std::string* wallLayer_ = nullptr;  // null: that of the wall's system
};

}  // namespace

namespace {

SketchBox scaledBox(const std::optional<SketchBox>& box, DxfForm form) {
  if (!box) return {};
  const double scale = dxfUnitsPerFoot(form.unit);
  return {box->minX * scale, box->minY * scale, box->maxX * scale, box->maxY * scale};
}

void writeEntities(EntityWriter& writer, const EntityList& entities, DxfWritten& written) {
  for (const SketchEntity& entity : entities) {
    if (writer.write(entity)) {
      ++written.entities;
    } else {
      ++written.leftOut;
    }
  }
}

}  // namespace

DxfWritten writeDxf(const EntityList& entities, std::span<const WallSystemSpec> systems, DxfForm form,
                    const FileSystem::Writer& write, const OpeningLayout& openings, const PlanLook& plan) {
  constexpr std::uint64_t kHandlesOfOpening = 4;  // another piece of its wall, and three lines at most
  const DrawingLook look = drawingLook(plan, cutOpen(entities, openings), systems);
  const std::vector<WallLoop> loops = wallLoops(look.joined);
  const DxfLayers layers(systems, form, !openings.empty(), plan.cleanWalls);
  DxfOutput out(write);
  // A wall takes two handles at most and everything else one.
  const DxfHandle firstFree{firstEntityHandle(layers).value + loops.size() + 2 * entities.size() +
                            kHandlesOfOpening * openings.all().size()};
  const DxfFrame frame{form, scaledBox(drawingBounds(entities), form), layers, firstFree};
  DxfWritten written;
  writeDxfHead(out, frame);
  EntityWriter writer(out, layers, systems, form, openings, look);
  for (const WallLoop& loop : loops) writer.writeLoop(loop);
  writeEntities(writer, entities, written);
  writeDxfTail(out, frame);
  out.flush();
  return written;
}

DxfWritten writeDxfByLayer(std::span<const DxfLayerContent> contents, DxfForm form,
                           const FileSystem::Writer& write) {
  std::vector<std::string> names;
  std::optional<SketchBox> bounds;
  std::size_t count = 0;
  for (const DxfLayerContent& content : contents) {
    names.push_back(content.layer);
    count += content.entities.size();
    if (const auto box = drawingBounds(content.entities)) bounds = bounds ? bounds->united(*box) : *box;
  }
  const DxfLayers layers(std::move(names));
  DxfOutput out(write);
  const DxfHandle firstFree{firstEntityHandle(layers).value + 2 * count};
  const DxfFrame frame{form, scaledBox(bounds, form), layers, firstFree};
  DxfWritten written;
  writeDxfHead(out, frame);
  const OpeningLayout noOpenings;
  const DrawingLook plain;
  EntityWriter writer(out, layers, {}, form, noOpenings, plain);
  for (const DxfLayerContent& content : contents) {
    writer.setLayer(content.layer, content.systems);
    writeEntities(writer, content.entities, written);
  }
  writeDxfTail(out, frame);
  out.flush();
  return written;
}

}  // namespace ostrelon
