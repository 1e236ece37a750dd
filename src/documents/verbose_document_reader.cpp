#include "documents/verbose_document_reader.h"

#include <utility>

namespace ostrelon {
namespace {

using Value = JsonReading::Value;

template <class T>
T required(std::optional<T> value, const JsonPlace& place, std::string_view key) {
  if (!value) JsonReading::failMissing(place, key);
  return std::move(*value);
}

// Two numbers under two keys: a point or a size.
std::pair<double, double> readPair(JsonReading& reading, Value& value, const JsonPlace& place,
                                   std::string_view firstKey, std::string_view secondKey) {
  std::optional<double> first;
  std::optional<double> second;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == firstKey) {
      first = reading.number(field, here);
    } else if (key == secondKey) {
      second = reading.number(field, here);
    } else {
      reading.pass(field, here);
    }
  });
  const double one = required(first, place, firstKey);
  return {one, required(second, place, secondKey)};
}

SketchPoint readPoint(JsonReading& reading, Value& value, const JsonPlace& place) {
  const auto [x, y] = readPair(reading, value, place, "x", "y");
  return {x, y};
}

PolygonVertices readVertices(JsonReading& reading, Value& value, const JsonPlace& place) {
  std::vector<SketchPoint> vertices;
  JsonReading::Elements elements(reading, reading.array(value, place));
  Value element;
  while (elements.next(element)) vertices.push_back(readPoint(reading, element, place.at(vertices.size())));
  return vertices;
}

enum class Kind { line, wall, circle, arc, rectangle, polygon };

std::optional<Kind> kindNamed(std::string_view name) {
  if (name == "line") return Kind::line;
  if (name == "wall") return Kind::wall;
  if (name == "circle") return Kind::circle;
  if (name == "arc") return Kind::arc;
  if (name == "rectangle") return Kind::rectangle;
  if (name == "polygon") return Kind::polygon;
  return std::nullopt;
}

bool hasEnds(Kind kind) { return kind == Kind::line || kind == Kind::wall; }
bool hasCenter(Kind kind) { return kind == Kind::circle || kind == Kind::arc; }

// The values under an entity's keys; those that its kind does not have stay absent.
struct EntityFields {
  std::optional<UUID> id;
  std::optional<UUID> systemSpecID;
  std::optional<SketchPoint> from;
  std::optional<SketchPoint> to;
  std::optional<SketchPoint> center;
  std::optional<SketchPoint> origin;
  std::optional<SketchSize> size;
  std::optional<double> radius;
  std::optional<double> startAngle;
  std::optional<double> endAngle;
  std::optional<PolygonVertices> vertices;
};

EntityFields readFields(JsonReading& reading, Value& value, const JsonPlace& place, Kind kind) {
  EntityFields fields;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "id") {
      fields.id = reading.uuid(field, here);
    } else if (key == "from" && hasEnds(kind)) {
      fields.from = readPoint(reading, field, here);
    } else if (key == "to" && hasEnds(kind)) {
      fields.to = readPoint(reading, field, here);
    } else if (key == "systemSpecID" && kind == Kind::wall) {
      fields.systemSpecID = reading.uuid(field, here);
    } else if (key == "center" && hasCenter(kind)) {
      fields.center = readPoint(reading, field, here);
    } else if (key == "radius" && hasCenter(kind)) {
      fields.radius = reading.number(field, here);
    } else if (key == "startAngle" && kind == Kind::arc) {
      fields.startAngle = reading.number(field, here);
    } else if (key == "endAngle" && kind == Kind::arc) {
      fields.endAngle = reading.number(field, here);
    } else if (key == "origin" && kind == Kind::rectangle) {
      fields.origin = readPoint(reading, field, here);
    } else if (key == "size" && kind == Kind::rectangle) {
      const auto [width, height] = readPair(reading, field, here, "width", "height");
      fields.size = SketchSize{width, height};
    } else if (key == "vertices" && kind == Kind::polygon) {
      fields.vertices = readVertices(reading, field, here);
    } else {
      reading.pass(field, here);
    }
  });
  return fields;
}

SketchEntity entityOf(EntityFields fields, const JsonPlace& place, Kind kind) {
  const UUID id = required(fields.id, place, "id");
  switch (kind) {
    case Kind::line: {
      const SketchPoint from = required(fields.from, place, "from");
      return LineEntity{id, from, required(fields.to, place, "to")};
    }
    case Kind::wall: {
      const SketchPoint from = required(fields.from, place, "from");
      const SketchPoint to = required(fields.to, place, "to");
      return WallEntity{id, from, to, required(fields.systemSpecID, place, "systemSpecID")};
    }
    case Kind::circle: {
      const SketchPoint center = required(fields.center, place, "center");
      return CircleEntity{id, center, required(fields.radius, place, "radius")};
    }
    case Kind::arc: {
      const SketchPoint center = required(fields.center, place, "center");
      const double radius = required(fields.radius, place, "radius");
      const double startAngle = required(fields.startAngle, place, "startAngle");
      return ArcEntity{id, center, radius, startAngle, required(fields.endAngle, place, "endAngle")};
    }
    case Kind::rectangle: {
      const SketchPoint origin = required(fields.origin, place, "origin");
      return RectangleEntity{id, origin, required(fields.size, place, "size")};
    }
    case Kind::polygon:
      break;
  }
  return PolygonEntity{id, required(std::move(fields.vertices), place, "vertices")};
}

SketchEntity readEntity(JsonReading& reading, Value& value, const JsonPlace& place) {
  simdjson::ondemand::object record = reading.object(value, place);
  // The keys are counted before any is looked at; one that is given twice is one key.
  std::string name;
  std::size_t distinctKeys = 0;
  reading.forEachField(record, [&](std::string_view key, Value&) {
    if (distinctKeys == 0) {
      name = key;
      distinctKeys = 1;
    } else if (key != name) {
      distinctKeys = 2;
    }
  });
  if (distinctKeys != 1) throw DocumentFormatError("Invalid number of keys found, expected one.");
  const auto kind = kindNamed(name);
  if (!kind) JsonReading::fail(place, "the key \"" + name + "\" is none of an entity");

  bool hasFields = false;
  if (record.reset().get(hasFields) != simdjson::SUCCESS) reading.failHere();
  std::optional<SketchEntity> entity;
  reading.forEachField(record, [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    entity = entityOf(readFields(reading, field, here, *kind), here, *kind);
  });
  return required(std::move(entity), place, name);
}

WallSystemSpec readWallSystem(JsonReading& reading, Value& value, const JsonPlace& place) {
  std::optional<UUID> id;
  std::optional<std::string> name;
  std::optional<double> thickness;
  std::optional<double> height;
  std::optional<std::string> notes;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "id") {
      id = reading.uuid(field, here);
    } else if (key == "name") {
      name = reading.text(field, here);
    } else if (key == "thickness") {
      thickness = reading.number(field, here);
    } else if (key == "height") {
      height = reading.number(field, here);
    } else if (key == "assemblyNotes") {
      notes = reading.text(field, here);
    } else {
      reading.pass(field, here);
    }
  });
  WallSystemSpec system;
  system.id = required(id, place, "id");
  system.name = required(std::move(name), place, "name");
  system.thickness = required(thickness, place, "thickness");
  system.height = required(height, place, "height");
  system.assemblyNotes = required(std::move(notes), place, "assemblyNotes");
  return system;
}

SketchViewport readViewport(JsonReading& reading, Value& value, const JsonPlace& place) {
  std::optional<double> panX;
  std::optional<double> panY;
  std::optional<double> scale;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "panX") {
      panX = reading.number(field, here);
    } else if (key == "panY") {
      panY = reading.number(field, here);
    } else if (key == "scale") {
      scale = reading.number(field, here);
    } else {
      reading.pass(field, here);
    }
  });
  const double x = required(panX, place, "panX");
  const double y = required(panY, place, "panY");
  return {{x, y}, required(scale, place, "scale")};
}

}  // namespace

SketchDocumentFile readVerboseDocument(JsonReading& reading) {
  std::optional<std::string> name;
  std::optional<std::vector<SketchEntity>> entities;
  std::optional<std::vector<WallSystemSpec>> systems;
  std::optional<UUID> activeSystem;
  std::optional<SketchViewport> viewport;
  std::optional<bool> showGrid;
  const JsonPlace root;
  reading.forEachField(reading.root(), [&](std::string_view key, Value& value) {
    const JsonPlace here = root.under(key);
    if (key == "documentName") {
      name = reading.text(value, here);
    } else if (key == "entities") {
      entities.emplace();
      JsonReading::Elements elements(reading, reading.array(value, here));
      Value element;
      while (elements.next(element)) {
        entities->push_back(readEntity(reading, element, here.at(entities->size())));
      }
    } else if (key == "wallSystemSpecs") {
      systems.emplace();
      JsonReading::Elements elements(reading, reading.array(value, here));
      Value element;
      while (elements.next(element)) {
        systems->push_back(readWallSystem(reading, element, here.at(systems->size())));
      }
    } else if (key == "activeWallSystemSpecID") {
      activeSystem = reading.uuid(value, here);
    } else if (key == "viewport") {
      viewport = readViewport(reading, value, here);
    } else if (key == "showGrid") {
      showGrid = reading.boolean(value, here);
    } else {
      reading.pass(value, here);
    }
  });
  SketchDocumentFile document;
  document.documentName = required(std::move(name), root, "documentName");
  document.entities = EntityList(required(std::move(entities), root, "entities"));
  document.wallSystemSpecs = required(std::move(systems), root, "wallSystemSpecs");
  document.activeWallSystemSpecID = required(activeSystem, root, "activeWallSystemSpecID");
  document.viewport = required(viewport, root, "viewport");
  document.showGrid = required(showGrid, root, "showGrid");
  reading.expectEnd();
  return document;
}

}  // namespace ostrelon
