// Arguments: JSON as the program's values.
#include <limits>

#include "automation/json_values.h"
#include "documents/sketch_document_io.h"
#include "updates/update_feed.h"

namespace ostrelon {
namespace {

template <class T>
T member(const Json& object, const char* key, const ReadContext& context) {
  try {
    return Reader<T>::read(memberOf(object, key), context);
  } catch (const ArgumentError& error) {
    throw ArgumentError(std::string(key) + ": " + error.what());
  }
}

void expectObject(const Json& json, const char* what) {
  if (!json.is_object()) throw ArgumentError(std::string("expected ") + what);
}

}  // namespace

std::size_t readCasePosition(const Json& json, std::span<const std::string_view> names) {
  if (json.is_number_integer() && json.get<std::int64_t>() >= 0 &&
      json.get<std::int64_t>() < static_cast<std::int64_t>(names.size())) {
    return json.get<std::size_t>();
  }
  std::string all;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (json.is_string() && json.get_ref<const std::string&>() == names[i]) return i;
    all.append(i == 0 ? "" : ", ").append(names[i]);
  }
  throw ArgumentError("expected one of " + all);
}

const Json& memberOf(const Json& object, const char* key) {
  static const Json missing;
  if (!object.is_object()) return missing;
  const auto found = object.find(key);
  return found == object.end() ? missing : *found;
}

template <>
bool Reader<bool>::read(const Json& json, const ReadContext&) {
  if (!json.is_boolean()) throw ArgumentError("expected true or false");
  return json.get<bool>();
}

template <>
double Reader<double>::read(const Json& json, const ReadContext&) {
  if (!json.is_number()) throw ArgumentError("expected a number");
  return json.get<double>();
}

template <>
std::int64_t Reader<std::int64_t>::read(const Json& json, const ReadContext&) {
  if (!json.is_number_integer() ||
      (json.is_number_unsigned() &&
       json.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))) {
    throw ArgumentError("expected a whole number");
  }
  return json.get<std::int64_t>();
}

template <>
int Reader<int>::read(const Json& json, const ReadContext& context) {
  const std::int64_t value = Reader<std::int64_t>::read(json, context);
  if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
    throw ArgumentError("expected a whole number of at most 32 bits");
  }
  return static_cast<int>(value);
}

template <>
std::string Reader<std::string>::read(const Json& json, const ReadContext&) {
  if (!json.is_string()) throw ArgumentError("expected a text");
  return json.get<std::string>();
}

template <>
FilePath Reader<FilePath>::read(const Json& json, const ReadContext&) {
  if (!json.is_string() || json.get_ref<const std::string&>().empty()) throw ArgumentError("expected a path");
  return json.get<std::string>();
}

template <>
UUID Reader<UUID>::read(const Json& json, const ReadContext&) {
  const auto id = json.is_string() ? UUID::parse(json.get_ref<const std::string&>()) : std::nullopt;
  if (!id) throw ArgumentError("expected an identifier of 36 characters");
  return *id;
}

template <>
Date Reader<Date>::read(const Json& json, const ReadContext&) {
  if (!json.is_number()) throw ArgumentError("expected a date as seconds since 1970");
  return dateFromSeconds(json.get<double>());
}

template <>
SketchPoint Reader<SketchPoint>::read(const Json& json, const ReadContext&) {
  if (!json.is_array() || json.size() != 2 || !json[0].is_number() || !json[1].is_number()) {
    throw ArgumentError("expected a point [x, y]");
  }
  return {json[0].get<double>(), json[1].get<double>()};
}

template <>
SketchSize Reader<SketchSize>::read(const Json& json, const ReadContext&) {
  if (!json.is_array() || json.size() != 2 || !json[0].is_number() || !json[1].is_number()) {
    throw ArgumentError("expected a size [width, height]");
  }
  return {json[0].get<double>(), json[1].get<double>()};
}

template <>
SketchTool Reader<SketchTool>::read(const Json& json, const ReadContext&) {
  const auto tool =
      json.is_string() ? sketchToolFromRawValue(json.get_ref<const std::string&>()) : std::nullopt;
  if (!tool) throw ArgumentError("expected the name of a tool");
  return *tool;
}

template <>
SketchEntity Reader<SketchEntity>::read(const Json& json, const ReadContext& context) {
  if (json.is_string()) {
    const UUID id = Reader<UUID>::read(json, context);
    const SketchEntity* found = context.sketch.entity(id);
    if (found == nullptr) throw ArgumentError("no entity of the document has this identifier");
    return *found;
  }
  expectObject(json, "an entity, or the identifier of one");
  const auto kind = member<std::string>(json, "case", context);
  // A value that is only looked at may leave its identifier out.
  const UUID id = json.contains("id") ? member<UUID>(json, "id", context) : UUID::random();
  const auto point = [&](const char* key) { return member<SketchPoint>(json, key, context); };
  const auto number = [&](const char* key) { return member<double>(json, key, context); };
  if (kind == "line") return LineEntity{id, point("from"), point("to")};
  if (kind == "wall") {
    return WallEntity{id, point("from"), point("to"), member<UUID>(json, "systemSpecID", context)};
  }
  if (kind == "circle") return CircleEntity{id, point("center"), number("radius")};
  if (kind == "arc") {
    return ArcEntity{id, point("center"), number("radius"), number("startAngle"), number("endAngle")};
  }
  if (kind == "rectangle")
    return RectangleEntity{id, point("origin"), member<SketchSize>(json, "size", context)};
  if (kind == "polygon") {
    return PolygonEntity{id, PolygonVertices(member<std::vector<SketchPoint>>(json, "vertices", context))};
  }
  throw ArgumentError("case: expected line, wall, circle, arc, rectangle or polygon");
}

template <>
EntityList Reader<EntityList>::read(const Json& json, const ReadContext& context) {
  if (json.is_null()) return context.sketch.entities();
  return EntityList(Reader<std::vector<SketchEntity>>::read(json, context));
}

template <>
std::unordered_set<UUID> Reader<std::unordered_set<UUID>>::read(const Json& json,
                                                                const ReadContext& context) {
  const auto ids = Reader<std::vector<UUID>>::read(json, context);
  return {ids.begin(), ids.end()};
}

template <>
WallSystemSpec Reader<WallSystemSpec>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a wall system");
  return {member<UUID>(json, "id", context), member<std::string>(json, "name", context),
          member<double>(json, "thickness", context), member<double>(json, "height", context),
          member<std::string>(json, "assemblyNotes", context)};
}

template <>
SketchViewport Reader<SketchViewport>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a viewport {\"pan\":[x,y],\"scale\":s}");
  return {member<SketchPoint>(json, "pan", context), member<double>(json, "scale", context)};
}

template <>
SketchDraft Reader<SketchDraft>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a draft");
  return {member<SketchPoint>(json, "start", context), member<SketchPoint>(json, "current", context)};
}

template <>
SketchBox Reader<SketchBox>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a rectangle {\"minX\":…,\"minY\":…,\"maxX\":…,\"maxY\":…}");
  return {member<double>(json, "minX", context), member<double>(json, "minY", context),
          member<double>(json, "maxX", context), member<double>(json, "maxY", context)};
}

template <>
SelectionHandle Reader<SelectionHandle>::read(const Json& json, const ReadContext& context) {
  if (json.is_object()) {
    return SelectionHandle::polygonVertex(member<int>(json, "polygonVertex", context));
  }
  if (!json.is_string()) throw ArgumentError("expected a handle");
  return {Reader<SelectionHandle::Kind>::read(json, context), 0};
}

template <>
SelectMarqueeState Reader<SelectMarqueeState>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a marquee");
  return {member<SketchPoint>(json, "startSketchPoint", context),
          member<SketchPoint>(json, "currentSketchPoint", context),
          member<double>(json, "startViewX", context), member<double>(json, "currentViewX", context)};
}

template <>
EntitySnapTarget Reader<EntitySnapTarget>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a snap target");
  return {member<SketchPoint>(json, "point", context), member<EntitySnapKind>(json, "kind", context),
          member<UUID>(json, "entityID", context), member<std::string>(json, "entityName", context)};
}

template <>
GridSnapTarget Reader<GridSnapTarget>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a grid snap");
  return {member<SketchPoint>(json, "point", context), member<std::vector<AxisSnap>>(json, "axes", context),
          member<bool>(json, "isMajorIntersection", context)};
}

template <>
SketchSnapResult Reader<SketchSnapResult>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a snap result");
  SketchSnapResult result;
  result.point = member<SketchPoint>(json, "point", context);
  if (json.contains("axes")) result.axes = member<std::vector<AxisSnap>>(json, "axes", context);
  result.entitySnap = member<std::optional<EntitySnapTarget>>(json, "entitySnap", context);
  result.gridSnap = member<std::optional<GridSnapTarget>>(json, "gridSnap", context);
  result.entitySnapSourcePoint = member<std::optional<SketchPoint>>(json, "entitySnapSourcePoint", context);
  return result;
}

template <>
Opening Reader<Opening>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "an opening");
  Opening opening;
  opening.id = member<UUID>(json, "id", context);
  opening.wallID = member<UUID>(json, "wallID", context);
  opening.kind = member<OpeningKind>(json, "kind", context);
  opening.distance = member<double>(json, "distance", context);
  opening.width = member<double>(json, "width", context);
  if (json.contains("hinge")) opening.hinge = member<DoorHinge>(json, "hinge", context);
  if (json.contains("swing")) opening.swing = member<DoorSwing>(json, "swing", context);
  return opening;
}

namespace {

// A member that is missing is as in an empty record.
template <HasFields Record>
void readFields(const Json& json, const ReadContext& context, Record& record) {
  expectObject(json, "an item of the plan");
  forEachField(
      [&]<class T>(std::string_view name, T& value) {
        const auto found = json.find(name);
        if (found == json.end()) return;
        if constexpr (HasFields<T>) {
          readFields(*found, context, value);
        } else if constexpr (std::is_same_v<T, std::uint32_t>) {
          value = static_cast<std::uint32_t>(std::clamp(Reader<double>::read(*found, context), 0.0, 4e9));
        } else {
          value = Reader<T>::read(*found, context);
        }
      },
      record);
}

template <HasFields Record>
std::vector<Record> readRecords(const Json& json, const ReadContext& context) {
  std::vector<Record> records;
  for (const Json& element : json) readFields(element, context, records.emplace_back());
  return records;
}

}  // namespace

template <>
PlanItem Reader<PlanItem>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "an item of the plan");
  const auto fields = [&](auto record) -> PlanItem {
    readFields(json, context, record);
    return record;
  };
  if (json.contains("name")) return fields(RoomName());
  if (json.contains("text")) return fields(Note());
  if (json.contains("from")) return fields(Dimension());
  if (json.contains("start")) return fields(RoomDivider());
  return Reader<Opening>::read(json, context);
}

template <>
Plan Reader<Plan>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a plan {\"look\":{…},\"openings\":[…]}");
  Plan plan;
  if (json.contains("look")) {
    const Json& look = json.at("look");
    expectObject(look, "a look {\"cleanWalls\":true,…}");
    plan.look = {member<bool>(look, "cleanWalls", context), member<bool>(look, "filledWalls", context),
                 member<bool>(look, "lineWeights", context),
                 look.contains("dimensionStrings") && member<bool>(look, "dimensionStrings", context)};
  }
  if (json.contains("openings")) plan.openings = member<std::vector<Opening>>(json, "openings", context);
  if (json.contains("roomNames")) plan.roomNames = readRecords<RoomName>(json.at("roomNames"), context);
  if (json.contains("roomDividers")) {
    plan.roomDividers = readRecords<RoomDivider>(json.at("roomDividers"), context);
  }
  if (json.contains("dimensions")) plan.dimensions = readRecords<Dimension>(json.at("dimensions"), context);
  if (json.contains("notes")) plan.notes = readRecords<Note>(json.at("notes"), context);
  if (json.contains("sheet")) readFields(json.at("sheet"), context, plan.sheet);
  return plan;
}

template <>
SketchUndoSnapshot Reader<SketchUndoSnapshot>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "an undo snapshot {\"entities\":[…]}");
  SketchUndoSnapshot snapshot{member<EntityList>(json, "entities", context)};
  if (json.contains("plan")) snapshot.twin.plan = member<Plan>(json, "plan", context);
  return snapshot;
}

template <>
SketchCommandMutationState Reader<SketchCommandMutationState>::read(const Json& json,
                                                                    const ReadContext& context) {
  expectObject(json, "a command mutation state");
  return {member<SketchUndoSnapshot>(json, "undoSnapshot", context),
          member<std::unordered_set<UUID>>(json, "selectedEntityIDs", context),
          member<std::optional<UUID>>(json, "primarySelectedEntityID", context),
          member<SketchTool>(json, "selectedTool", context),
          member<std::optional<SketchDraft>>(json, "draft", context),
          member<std::optional<UUID>>(json, "trimCuttingEdgeEntityID", context),
          member<UUID>(json, "activeWallSystemSpecID", context),
          member<bool>(json, "isDocumentDirty", context)};
}

template <>
TrimResult Reader<TrimResult>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "a trim result");
  if (member<std::string>(json, "case", context) == "success") {
    return {TrimResult::Code::success, member<std::int64_t>(json, "target", context),
            member<std::int64_t>(json, "edge", context)};
  }
  const int code = member<int>(json, "code", context);
  if (code < 0 || code > 8) throw ArgumentError("code: expected a number from 0 to 8");
  // Codes that no trim gives read as an entity that cannot be trimmed.
  const bool isUnused = code == 5 || code == 6;
  return {isUnused ? TrimResult::Code::targetNotTrimmable : static_cast<TrimResult::Code>(code), 0, 0};
}

template <>
LoadedSketchDocument Reader<LoadedSketchDocument>::read(const Json& json, const ReadContext&) {
  return SketchDocumentIO::decodeDocument(json.is_string() ? json.get<std::string>() : jsonText(json));
}

template <>
SketchDocumentV2 Reader<SketchDocumentV2>::read(const Json& json, const ReadContext& context) {
  LoadedSketchDocument loaded = Reader<LoadedSketchDocument>::read(json, context);
  auto* document = std::get_if<SketchDocumentV2>(&loaded.document);
  if (document == nullptr) throw ArgumentError("expected a document of format 2");
  return std::move(*document);
}

template <>
AppVersion Reader<AppVersion>::read(const Json& json, const ReadContext&) {
  const auto version = json.is_string() ? parseVersion(json.get_ref<const std::string&>()) : std::nullopt;
  if (!version) throw ArgumentError("expected a version");
  return *version;
}

template <>
AppUpdateManifest Reader<AppUpdateManifest>::read(const Json& json, const ReadContext&) {
  if (json.is_array()) return decodeManifest(jsonText(Json{{"releases", json}}));
  return decodeManifest(json.is_string() ? json.get<std::string>() : jsonText(json));
}

template <>
AppUpdateAvailability Reader<AppUpdateAvailability>::read(const Json& json, const ReadContext& context) {
  expectObject(json, "an available update");
  return {member<std::string>(json, "currentVersion", context),
          member<AppUpdateRelease>(json, "latestRelease", context),
          member<std::vector<AppUpdateRelease>>(json, "interveningReleases", context)};
}

template <>
AutoSaveRecoveryCandidate Reader<AutoSaveRecoveryCandidate>::read(const Json& json,
                                                                  const ReadContext& context) {
  expectObject(json, "a recovery candidate");
  return {member<FilePath>(json, "url", context), member<std::string>(json, "displayName", context),
          member<std::optional<Date>>(json, "savedAt", context)};
}

template <>
AppUpdateRelease Reader<AppUpdateRelease>::read(const Json& json, const ReadContext& context) {
  std::string error;
  const auto value =
      json.is_string() ? parseJson(json.get_ref<const std::string&>(), error) : std::optional(json);
  if (!value) throw ArgumentError("expected a release");
  return Reader<AppUpdateManifest>::read(Json::array({*value}), context).releases.front();
}

}  // namespace ostrelon
