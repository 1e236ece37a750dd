// Results: the program's values as JSON.
#include <algorithm>

#include "automation/json_values.h"
#include "documents/sketch_document_io.h"
#include "updates/update_feed.h"

namespace ostrelon {

Json toJson(const FilePath& value) { return value.string(); }
Json toJson(const UUID& value) { return value.text(); }
Json toJson(Date value) { return secondsSince1970(value); }
Json toJson(SketchPoint value) { return Json::array({value.x, value.y}); }
Json toJson(SketchSize value) { return Json::array({value.width, value.height}); }

Json toJson(SketchTool value) { return std::string(rawValue(value)); }

Json toJson(const SketchEntity& value) {
  Json json{{"case", std::string(entityKindName(value))}, {"id", toJson(entityID(value))}};
  std::visit(Overloaded{
                 [&](const LineEntity& line) {
                   json["from"] = toJson(line.from);
                   json["to"] = toJson(line.to);
                 },
                 [&](const WallEntity& wall) {
                   json["from"] = toJson(wall.from);
                   json["to"] = toJson(wall.to);
                   json["systemSpecID"] = toJson(wall.systemSpecID);
                 },
                 [&](const CircleEntity& circle) {
                   json["center"] = toJson(circle.center);
                   json["radius"] = circle.radius;
                 },
                 [&](const ArcEntity& arc) {
                   json["center"] = toJson(arc.center);
                   json["radius"] = arc.radius;
                   json["startAngle"] = arc.startAngle;
                   json["endAngle"] = arc.endAngle;
                 },
                 [&](const RectangleEntity& rectangle) {
                   json["origin"] = toJson(rectangle.origin);
                   json["size"] = toJson(rectangle.size);
                 },
                 [&](const PolygonEntity& polygon) { json["vertices"] = toJson(polygon.vertices.list()); },
             },
             value);
  return json;
}

Json toJson(const EntityList& value) {
  Json list = Json::array();
  for (const SketchEntity& entity : value) list.push_back(toJson(entity));
  return list;
}

Json toJson(const EntityMetrics& value) {
  return {{"entityType", value.entityType}, {"from", toJson(value.from)},
          {"to", toJson(value.to)},         {"length", toJson(value.length)},
          {"width", toJson(value.width)},   {"angle", toJson(value.angle)},
          {"area", toJson(value.area)},     {"vertexCount", toJson(value.vertexCount)}};
}

Json toJson(const WallSystemSpec& value) {
  return {{"id", toJson(value.id)},
          {"name", value.name},
          {"thickness", value.thickness},
          {"height", value.height},
          {"assemblyNotes", value.assemblyNotes}};
}

Json toJson(const ConsoleLine& value) {
  return {{"id", toJson(value.id)},
          {"text", value.text},
          {"isError", value.isError},
          {"isSystem", value.isSystem}};
}

Json toJson(const SketchViewport& value) { return {{"pan", toJson(value.pan)}, {"scale", value.scale}}; }

Json toJson(const SketchDraft& value) {
  return {{"start", toJson(value.start)}, {"current", toJson(value.current)}};
}

Json toJson(const PolygonDraft& value) {
  return {{"vertices", toJson(value.vertices)}, {"current", toJson(value.current)}};
}

Json toJson(const SelectMarqueeState& value) {
  return {{"startSketchPoint", toJson(value.startSketchPoint)},
          {"currentSketchPoint", toJson(value.currentSketchPoint)},
          {"startViewX", value.startViewX},
          {"currentViewX", value.currentViewX}};
}

Json toJson(const SelectionHandle& value) {
  Json name = toJson(value.kind);
  if (value.kind != SelectionHandle::Kind::polygonVertex) return name;
  return {{name.get<std::string>(), value.index}};
}

Json toJson(const std::map<SelectionHandle, SketchPoint>& values) {
  Json list = Json::array();
  for (const auto& [handle, point] : values) list.push_back(Json::array({toJson(handle), toJson(point)}));
  return list;
}

Json toJson(const SelectDragState& value) {
  return std::visit(Overloaded{
                        [](const HandleDrag& drag) {
                          return Json{{"case", "handle"},
                                      {"handle", toJson(drag.handle)},
                                      {"entityID", toJson(drag.entityID)},
                                      {"anchor", toJson(drag.anchor)}};
                        },
                        [](const BodyDrag& drag) {
                          return Json{{"case", "body"},
                                      {"entityID", toJson(drag.entityID)},
                                      {"anchor", toJson(drag.anchor)},
                                      {"startSketchPoint", toJson(drag.startSketchPoint)}};
                        },
                        [](const MultiBodyDrag& drag) {
                          Json anchors = Json::object();
                          for (const std::size_t place : drag.places) {
                            anchors[entityID(drag.start[place]).text()] = toJson(drag.start[place]);
                          }
                          return Json{{"case", "multiBody"},
                                      {"entityIDs", toJson(drag.entityIDs)},
                                      {"anchors", std::move(anchors)},
                                      {"leadEntityID", toJson(entityID(drag.lead))},
                                      {"startSketchPoint", toJson(drag.startSketchPoint)}};
                        },
                        [](const PlanItemDrag& drag) {
                          return Json{{"case", "planItem"},
                                      {"id", toJson(planItemID(drag.anchor))},
                                      {"anchor", toJson(drag.anchor)},
                                      {"startSketchPoint", toJson(drag.startSketchPoint)}};
                        },
                    },
                    value);
}

Json toJson(const Opening& value) {
  Json json{{"id", toJson(value.id)},
            {"wallID", toJson(value.wallID)},
            {"kind", toJson(value.kind)},
            {"distance", value.distance},
            {"width", value.width}};
  if (value.kind == OpeningKind::door) {
    json["hinge"] = toJson(value.hinge);
    json["swing"] = toJson(value.swing);
  }
  return json;
}

namespace {

template <HasFields Record>
Json fieldsOf(const Record& record) {
  Json json = Json::object();
  forEachField(
      [&]<class T>(std::string_view name, const T& member) {
        if constexpr (HasFields<T>) {
          json[std::string(name)] = fieldsOf(member);
        } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, std::string>) {
          json[std::string(name)] = member;
        } else {
          json[std::string(name)] = toJson(member);
        }
      },
      record);
  return json;
}

}  // namespace

Json toJson(const RoomName& value) { return fieldsOf(value); }
Json toJson(const RoomDivider& value) { return fieldsOf(value); }
Json toJson(const Dimension& value) { return fieldsOf(value); }
Json toJson(const Note& value) { return fieldsOf(value); }
Json toJson(const PlanSheet& value) { return fieldsOf(value); }

Json toJson(const PlanItem& value) {
  return std::visit([](const auto& item) { return toJson(item); }, value);
}

// What a plan without them does not say stays unsaid.
Json toJson(const Plan& value) {
  Json json{{"look",
             {{"cleanWalls", value.look.cleanWalls},
              {"filledWalls", value.look.filledWalls},
              {"lineWeights", value.look.lineWeights}}},
            {"openings", toJson(value.openings.list())}};
  if (value.look.dimensionStrings) json["look"]["dimensionStrings"] = true;
  const auto add = [&](const char* name, const auto& list) {
    if (!list.empty()) json[name] = toJson(list.list());
  };
  add("roomNames", value.roomNames);
  add("roomDividers", value.roomDividers);
  add("dimensions", value.dimensions);
  add("notes", value.notes);
  if (value.sheet != PlanSheet()) json["sheet"] = toJson(value.sheet);
  return json;
}

Json toJson(const SketchUndoSnapshot& value) {
  Json json{{"entities", toJson(value.entities)}};
  if (value.twin.plan && !value.twin.plan->empty()) json["plan"] = toJson(*value.twin.plan);
  return json;
}

Json toJson(const SketchUndoStack& value) {
  return {{"undoSnapshots", value.undoSnapshots().size()}, {"redoSnapshots", value.redoSnapshots().size()}};
}

Json toJson(const SketchCommandMutationState& value) {
  return {{"undoSnapshot", toJson(value.undoSnapshot)},
          {"selectedEntityIDs", toJson(value.selectedEntityIDs)},
          {"primarySelectedEntityID", toJson(value.primarySelectedEntityID)},
          {"selectedTool", toJson(value.selectedTool)},
          {"draft", toJson(value.draft)},
          {"trimCuttingEdgeEntityID", toJson(value.trimCuttingEdgeEntityID)},
          {"activeWallSystemSpecID", toJson(value.activeWallSystemSpecID)},
          {"isDocumentDirty", value.isDocumentDirty}};
}

Json toJson(const DocumentToastState& value) {
  return {{"message", value.message}, {"style", toJson(value.style)}};
}

Json toJson(const EntitySnapTarget& value) {
  return {{"point", toJson(value.point)},
          {"kind", toJson(value.kind)},
          {"entityID", toJson(value.entityID)},
          {"entityName", value.entityName}};
}

Json toJson(const GridSnapTarget& value) {
  return {{"point", toJson(value.point)},
          {"axes", toJson(value.axes)},
          {"isMajorIntersection", value.isMajorIntersection}};
}

Json toJson(const SketchSnapResult& value) {
  return {{"point", toJson(value.point)},
          {"axes", toJson(value.axes)},
          {"entitySnap", toJson(value.entitySnap)},
          {"gridSnap", toJson(value.gridSnap)},
          {"entitySnapSourcePoint", toJson(value.entitySnapSourcePoint)}};
}

Json toJson(const SketchSnapping::TrackingCandidate& value) {
  return {{"point", toJson(value.point)}, {"axes", toJson(value.axes)}, {"priority", value.priority}};
}

Json toJson(const SegmentLengthIndicator& value) {
  return {{"from", toJson(value.from)}, {"to", toJson(value.to)}, {"length", value.length}};
}

Json toJson(const EntityPick& value) {
  return {{"entity", toJson(value.entity)}, {"distance", value.distance}};
}

Json toJson(const SketchBox& value) {
  return {{"minX", value.minX}, {"minY", value.minY}, {"maxX", value.maxX}, {"maxY", value.maxY}};
}

Json toJson(const TrimOutcome& value) {
  return std::visit(Overloaded{
                        [](const TrimReplace& outcome) {
                          return Json{{"case", "replace"}, {"entity", toJson(outcome.entity)}};
                        },
                        [](const TrimReplaceMany& outcome) {
                          return Json{{"case", "replaceMany"}, {"entities", toJson(outcome.entities)}};
                        },
                        [](const TrimDelete&) {
                          return Json{{"case", "delete"}};
                        },
                    },
                    value);
}

Json toJson(const TrimGeometry& value) {
  return std::visit([](const auto& content) { return toJson(content); }, value);
}

Json toJson(const TrimResult& value) {
  if (value.code != TrimResult::Code::success) {
    return {{"case", "failure"}, {"code", static_cast<int>(value.code)}};
  }
  return {{"case", "success"}, {"target", value.targetNumber}, {"edge", value.edgeNumber}};
}

Json toJson(const SegmentCircleHit& value) { return Json::array({toJson(value.point), value.t}); }

Json toJson(const DocumentCheckpoint& value) {
  Json json{{"id", value.id},
            {"message", value.message},
            {"createdAt", toJson(value.createdAt)},
            {"fileName", value.fileName},
            {"sourceCheckpointID", toJson(value.sourceCheckpointID)}};
  if (!value.mergedCheckpointIDs.empty()) json["mergedCheckpointIDs"] = value.mergedCheckpointIDs;
  return json;
}

Json toJson(const DocumentHistoryBranch& value) {
  return {{"id", value.id},
          {"name", value.name},
          {"createdAt", toJson(value.createdAt)},
          {"sourceCheckpointID", toJson(value.sourceCheckpointID)},
          {"headCheckpointID", toJson(value.headCheckpointID)}};
}

Json toJson(const DocumentHistoryMetadata& value) {
  return {{"v", value.v},
          {"documentFileName", toJson(value.documentFileName)},
          {"currentBranchID", value.currentBranchID},
          {"branches", toJson(value.branches)}};
}

Json toJson(const DocumentHistoryState& value) {
  return {{"metadata", toJson(value.metadata)}, {"checkpointsByBranch", toJson(value.checkpointsByBranch)}};
}

Json toJson(const DocumentHistoryState::FoundCheckpoint& value) {
  return {{"branch", toJson(value.branch)}, {"checkpoint", toJson(value.checkpoint)}};
}

Json toJson(const SketchDocumentV2& value) { return Json::parse(SketchDocumentIO::encodeDocument(value)); }

Json toJson(const LoadedSketchDocument& value) {
  return std::visit(Overloaded{
                        [](const SketchDocumentFile& file) {
                          return Json{{"case", "v1"},
                                      {"documentName", file.documentName},
                                      {"entities", toJson(file.entities)},
                                      {"wallSystemSpecs", toJson(file.wallSystemSpecs)},
                                      {"activeWallSystemSpecID", toJson(file.activeWallSystemSpecID)},
                                      {"viewport", toJson(file.viewport)},
                                      {"showGrid", file.showGrid}};
                        },
                        [](const SketchDocumentV2& document) {
                          Json json{{"case", "v2"}};
                          json.update(toJson(document));
                          return json;
                        },
                    },
                    value.document);
}

Json toJson(const RecoverableJournal& value) {
  return {{"id", value.id},
          {"documentName", value.documentName},
          {"path", toJson(value.path)},
          {"savedAt", toJson(value.savedAt)},
          {"changedAt", toJson(value.changedAt)},
          {"changes", value.changes}};
}

Json toJson(const KeptDrawing& value) {
  return {{"id", value.id},
          {"name", value.name},
          {"path", toJson(value.path)},
          {"keptAt", toJson(value.keptAt)},
          {"reason", value.reason},
          {"entities", value.entities}};
}

Json toJson(const AutoSaveRecoveryCandidate& value) {
  return {{"url", toJson(value.url)}, {"displayName", value.displayName}, {"savedAt", toJson(value.savedAt)}};
}

Json toJson(const Color& value) { return Json::array({value.red, value.green, value.blue}); }

Json toJson(const ThemePalette& value) {
  return {{"background", toJson(value.background)},
          {"foreground", toJson(value.foreground)},
          {"card", toJson(value.card)},
          {"muted", toJson(value.muted)},
          {"mutedForeground", toJson(value.mutedForeground)},
          {"border", toJson(value.border)},
          {"accent", toJson(value.accent)},
          {"accentForeground", toJson(value.accentForeground)},
          {"destructive", toJson(value.destructive)},
          {"active", toJson(value.active)}};
}

Json toJson(const AppVersion& value) {
  Json identifiers = Json::array();
  for (const PreReleaseIdentifier& identifier : value.prereleaseIdentifiers) {
    const bool isNumeric = std::holds_alternative<std::int64_t>(identifier);
    Json json{{"case", isNumeric ? "numeric" : "text"}};
    std::visit([&](const auto& content) { json["value"] = toJson(content); }, identifier);
    identifiers.push_back(std::move(json));
  }
  return {{"major", value.major},
          {"minor", value.minor},
          {"patch", value.patch},
          {"prerelease", toJson(value.prerelease)},
          {"buildMetadata", toJson(value.buildMetadata)},
          {"prereleaseIdentifiers", std::move(identifiers)}};
}

// Manifests and releases have the form that they have in the feed.
Json toJson(const AppUpdateRelease& value) { return toJson(AppUpdateManifest{{value}})["releases"].front(); }

Json toJson(const AppUpdateManifest& value) { return Json::parse(encodeManifest(value)); }

Json toJson(const AppUpdateAvailability& value) {
  return {{"currentVersion", value.currentVersion},
          {"latestRelease", toJson(value.latestRelease)},
          {"interveningReleases", toJson(value.interveningReleases)}};
}

Json toJson(const AppUpdateEvaluationResult& value) {
  return std::visit(Overloaded{
                        [](const UpToDate& result) {
                          return Json{{"case", "upToDate"},
                                      {"currentVersion", result.currentVersion},
                                      {"latestVersion", toJson(result.latestVersion)}};
                        },
                        [](const AppUpdateAvailability& availability) {
                          Json json{{"case", "updateAvailable"}};
                          json.update(toJson(availability));
                          return json;
                        },
                    },
                    value);
}

Json toJson(const AppUpdateChangeGroup& value) {
  return {
      {"version", value.version}, {"changes", toJson(value.changes)}, {"notesURL", toJson(value.notesURL)}};
}

Json toJson(const EntitySet& values) {
  std::vector<UUID> sorted(values.begin(), values.end());
  std::sort(sorted.begin(), sorted.end());
  return toJson(sorted);
}

}  // namespace ostrelon
