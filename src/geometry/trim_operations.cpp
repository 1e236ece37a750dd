// Trimming and extending entities of the document, and the clicks of the trim tool.
#include "core/sketch_view_model.h"
#include "geometry/hit_testing.h"
#include "geometry/trim.h"

namespace ostrelon {

TrimResult SketchViewModel::applyTrim(std::int64_t targetIndex, std::int64_t edgeIndex, SketchPoint point) {
  using Code = TrimResult::Code;
  const auto isIndex = [&](std::int64_t index) {
    return index >= 0 && static_cast<std::uint64_t>(index) < entities->size();
  };
  const auto result = [&](Code code) { return TrimResult{code, targetIndex + 1, edgeIndex + 1}; };
  if (!isIndex(targetIndex)) return {Code::targetNotFound, 0, 0};
  if (!isIndex(edgeIndex)) return {Code::edgeNotFound, 0, 0};
  if (targetIndex == edgeIndex) return result(Code::sameEntity);
  const auto position = static_cast<std::size_t>(targetIndex);
  const SketchEntity target = entities.get()[position];
  const SketchEntity edge = entities.get()[static_cast<std::size_t>(edgeIndex)];
  if (!isTrimmable(target)) return result(Code::targetNotTrimmable);
  if (!isTrimmable(edge)) return result(Code::edgeNotTrimmable);

  TrimGeometry geometry = trimEntity(target, edge, point);
  if (const auto* failure = std::get_if<TrimFailure>(&geometry)) {
    return result(*failure == TrimFailure::noIntersection ? Code::noIntersection
                                                          : Code::intersectionAtEndpoint);
  }
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  std::visit(Overloaded{
                 [&](TrimReplace& outcome) {
                   selectOnly(entityID(outcome.entity));
                   if (!((*entities)[position] == outcome.entity)) {
                     entities.edit().replace(position, std::move(outcome.entity));
                   }
                 },
                 [&](TrimReplaceMany& outcome) {
                   if (!outcome.entities.empty()) selectOnly(entityID(outcome.entities.front()));
                   entities.edit().remove(position);
                   entities.edit().insert(position, std::move(outcome.entities));
                 },
                 [&](TrimDelete&) {
                   entities.edit().remove(position);
                   deselect(entityID(target));
                 },
             },
             std::get<TrimOutcome>(geometry));
  isDocumentDirty = true;
  return result(Code::success);
}

std::string SketchViewModel::handleTrimClick(SketchPoint point) {
  const auto pick = pickEntityAtPoint(index(), point, viewport->scale);
  if (!pick) {
    return *trimCuttingEdgeEntityID ? "Click an entity to trim."
                                    : "Click an entity to use as the cutting edge.";
  }
  if (!isTrimmable(pick->entity)) return "Entity type cannot be trimmed.";
  const UUID hitID = entityID(pick->entity);
  const ChangeScope scope(tracker_);
  if (!*trimCuttingEdgeEntityID) {
    trimCuttingEdgeEntityID = hitID;
    selectOnly(hitID);
    return entityLabelText(hitID).value_or("Entity") + " set as cutting edge. Click entities to trim.";
  }
  const UUID edgeID = **trimCuttingEdgeEntityID;
  const auto edgePosition = entityIndex(edgeID);
  if (!edgePosition) {
    trimCuttingEdgeEntityID = std::nullopt;
    if (selectedTool == SketchTool::trim) clearSelection();
    return "Cutting edge no longer exists.";
  }
  if (hitID == edgeID) return "Cannot trim the cutting edge with itself.";
  const auto targetPosition = entityIndex(hitID);
  return trimResultMessage(applyTrim(targetPosition ? static_cast<std::int64_t>(*targetPosition) : -1,
                                     static_cast<std::int64_t>(*edgePosition), point));
}

std::optional<std::string> SketchViewModel::trimInstruction() const {
  if (selectedTool != SketchTool::trim) return std::nullopt;
  if (!*trimCuttingEdgeEntityID) return "Click an entity to use as the cutting edge";
  const auto label = entityLabelText(**trimCuttingEdgeEntityID);
  return label ? *label + ": click entities to trim" : "Click entities to trim";
}

void SketchViewModel::clearTrimCuttingEdge() {
  if (selectedTool != SketchTool::trim || !*trimCuttingEdgeEntityID) return;
  const ChangeScope scope(tracker_);
  trimCuttingEdgeEntityID = std::nullopt;
  clearSelection();
}

bool SketchViewModel::extendLine(const UUID& lineID, const UUID& boundaryID) {
  if (lineID == boundaryID) return false;
  const SketchEntity* lineEntity = entity(lineID);
  const auto* line = lineEntity != nullptr ? std::get_if<LineEntity>(lineEntity) : nullptr;
  const SketchEntity* boundary = entity(boundaryID);
  const bool isBoundary = boundary != nullptr && (std::holds_alternative<LineEntity>(*boundary) ||
                                                  std::holds_alternative<WallEntity>(*boundary));
  if (line == nullptr || !isBoundary) return false;
  const Segment edge = cuttingSegments(*boundary).front();
  const auto extended = extendSegmentToBoundary(line->from, line->to, edge.first, edge.second);
  if (!extended) return false;
  const ChangeScope scope(tracker_);
  const LineEntity longer{line->id, extended->first, extended->second};
  captureUndoCheckpoint();
  replaceEntity(longer.id, longer);
  selectOnly(longer.id);
  return true;
}

}  // namespace ostrelon
