// The clicks of the trim tool.
#include "geometry/edit_operations.h"
#include "geometry/hit_testing.h"
#include "geometry/trim.h"
#include "interaction/board.h"

namespace ostrelon {
namespace {

// The refusals that the console shows in the colour of errors.
bool readsAsError(TrimResult::Code code) {
  using Code = TrimResult::Code;
  switch (code) {
    case Code::targetNotFound:
    case Code::edgeNotFound:
    case Code::sameEntity:
    case Code::targetNotTrimmable:
    case Code::edgeNotTrimmable:
    case Code::noIntersection:
      return true;
    case Code::intersectionAtEndpoint:
    case Code::success:
      return false;
  }
  return true;
}

}  // namespace

TrimClick Board::trimAt(SketchPoint point) {
  const auto refused = [](std::string text) { return TrimClick{std::move(text), true}; };
  const auto pick = pickEntityAtPoint(sketch_.index(), point, scale());
  if (!pick) {
    return {*trimCuttingEdge ? "Click an entity to trim." : "Click an entity to use as the cutting edge."};
  }
  if (!isTrimmable(pick->entity)) return refused("Entity type cannot be trimmed.");
  const UUID hitID = entityID(pick->entity);
  const auto scope = change();
  if (!*trimCuttingEdge) {
    trimCuttingEdge = hitID;
    sketch_.selectOnly(hitID);
    return {sketch_.labelOf(hitID).value_or("Entity") + " set as cutting edge. Click entities to trim."};
  }
  const UUID edgeID = **trimCuttingEdge;
  const auto edgePosition = sketch_.positionOf(edgeID);
  if (!edgePosition) {
    trimCuttingEdge = std::nullopt;
    if (tool == SketchTool::trim) sketch_.clearSelection();
    return {"Cutting edge no longer exists."};
  }
  if (hitID == edgeID) return refused("Cannot trim the cutting edge with itself.");
  const auto targetPosition = sketch_.positionOf(hitID);
  const TrimResult result =
      applyTrim(sketch_, targetPosition ? static_cast<std::int64_t>(*targetPosition) : -1,
                static_cast<std::int64_t>(*edgePosition), point);
  return {trimResultMessage(result), readsAsError(result.code)};
}

std::optional<std::string> Board::trimInstruction() const {
  if (tool != SketchTool::trim) return std::nullopt;
  if (!*trimCuttingEdge) return "Click an entity to use as the cutting edge";
  const auto label = sketch_.labelOf(**trimCuttingEdge);
  return label ? *label + ": click entities to trim" : "Click entities to trim";
}

void Board::clearTrimCuttingEdge() {
  if (tool != SketchTool::trim || !*trimCuttingEdge) return;
  const auto scope = change();
  trimCuttingEdge = std::nullopt;
  sketch_.clearSelection();
}

}  // namespace ostrelon
