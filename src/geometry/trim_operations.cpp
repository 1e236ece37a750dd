// Trimming and extending entities of a sketch.
#include <utility>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "geometry/trim.h"

namespace ostrelon {
namespace {

void putInPlace(Sketch& sketch, std::size_t position, TrimReplace& outcome) {
  sketch.selectOnly(entityID(outcome.entity));
  if (sketch.entities()[position] == outcome.entity) {
    sketch.countAsEdit(UndoStep::own);
  } else {
    sketch.edit([&](Drawing& drawing) { drawing.entities.replace(position, std::move(outcome.entity)); });
  }
}

void putInPlace(Sketch& sketch, std::size_t position, TrimReplaceMany& outcome) {
  if (!outcome.entities.empty()) sketch.selectOnly(entityID(outcome.entities.front()));
  sketch.edit([&](Drawing& drawing) {
    drawing.entities.remove(position);
    drawing.entities.insert(position, std::move(outcome.entities));
  });
}

void putInPlace(Sketch& sketch, std::size_t position, TrimDelete& /*outcome*/) {
  const UUID gone = entityID(sketch.entities()[position]);
  sketch.edit([&](Drawing& drawing) { drawing.entities.remove(position); });
  sketch.deselect(gone);
}

}  // namespace

TrimResult applyTrim(Sketch& sketch, std::int64_t targetIndex, std::int64_t edgeIndex, SketchPoint point) {
  using Code = TrimResult::Code;
  const EntityList& entities = sketch.entities();
  const auto isIndex = [&](std::int64_t index) {
    return index >= 0 && static_cast<std::uint64_t>(index) < entities.size();
  };
  const auto result = [&](Code code) { return TrimResult{code, targetIndex + 1, edgeIndex + 1}; };
  if (!isIndex(targetIndex)) return {Code::targetNotFound, 0, 0};
  if (!isIndex(edgeIndex)) return {Code::edgeNotFound, 0, 0};
  if (targetIndex == edgeIndex) return result(Code::sameEntity);
  const auto position = static_cast<std::size_t>(targetIndex);
  const SketchEntity& target = entities[position];
  const SketchEntity& edge = entities[static_cast<std::size_t>(edgeIndex)];
  if (!isTrimmable(target)) return result(Code::targetNotTrimmable);
  if (!isTrimmable(edge)) return result(Code::edgeNotTrimmable);

  TrimGeometry geometry = trimEntity(target, edge, point);
  if (const auto* failure = std::get_if<TrimFailure>(&geometry)) {
    return result(*failure == TrimFailure::noIntersection ? Code::noIntersection
                                                          : Code::intersectionAtEndpoint);
  }
  const auto change = sketch.change();
  std::visit([&](auto& outcome) { putInPlace(sketch, position, outcome); }, std::get<TrimOutcome>(geometry));
  return result(Code::success);
}

bool extendLine(Sketch& sketch, const UUID& lineID, const UUID& boundaryID) {
  if (lineID == boundaryID) return false;
  const SketchEntity* lineEntity = sketch.entity(lineID);
  const auto* line = lineEntity != nullptr ? std::get_if<LineEntity>(lineEntity) : nullptr;
  const SketchEntity* boundary = sketch.entity(boundaryID);
  const bool isBoundary = boundary != nullptr && (std::holds_alternative<LineEntity>(*boundary) ||
                                                  std::holds_alternative<WallEntity>(*boundary));
  if (line == nullptr || !isBoundary) return false;
  const Segment edge = cuttingSegments(*boundary).front();
  const auto extended = extendSegmentToBoundary(line->from, line->to, edge.first, edge.second);
  if (!extended) return false;
  const auto change = sketch.change();
  const LineEntity longer{line->id, extended->first, extended->second};
  replaceEntity(sketch, longer.id, longer, UndoStep::own);
  sketch.selectOnly(longer.id);
  return true;
}

}  // namespace ostrelon
