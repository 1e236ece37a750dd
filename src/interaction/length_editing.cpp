// The length editor over a straight segment: the one being drawn, dragged or selected.
#include <cmath>

#include "core/adding.h"
#include "core/circle.h"
#include "core/length_text.h"
#include "geometry/edit_operations.h"
#include "geometry/entity_edits.h"
#include "interaction/board.h"

namespace ostrelon {
namespace {

bool drawsSegments(SketchTool tool) { return tool == SketchTool::line || tool == SketchTool::wall; }

}  // namespace

std::optional<std::string> Board::currentLengthText() const {
  if (drawsSegments(tool)) {
    if (draft() == nullptr) return std::nullopt;
    return formatFeetInches(distanceBetween(draft()->start, draft()->current));
  }
  if (tool != SketchTool::select) return std::nullopt;
  const SketchEntity* selected = sketch_.selectedEntity();
  const auto indicator = selected != nullptr ? segmentLengthIndicator(*selected) : std::nullopt;
  if (!indicator) return std::nullopt;
  return formatFeetInches(indicator->length);
}

void Board::beginLengthEdit(std::optional<std::string> text) {
  lengthEditor = LengthEditor{true, text ? *text : currentLengthText().value_or(""), std::nullopt, !text};
}

void Board::setLengthEditText(std::string text) {
  LengthEditor edited = lengthEditor;
  edited.text = std::move(text);
  edited.isTextOffered = false;
  lengthEditor = std::move(edited);
}

bool Board::commitLengthEdit() {
  const auto scope = change();
  const auto refuse = [&](const char* why) {
    LengthEditor refused = lengthEditor;
    refused.error = why;
    lengthEditor = std::move(refused);
  };
  const auto value = parseFeetInches(lengthEditor->text);
  if (!value || !(*value > 0) || !std::isfinite(*value)) {
    refuse("Enter a valid feet/inches length.");
    return false;
  }
  // The text with which the editor opens is rounded to the inch: unchanged it asks for nothing.
  const bool isAsOffered = lengthEditor->isTextOffered && currentLengthText();
  if (!isAsOffered && !applyLength(*value)) {
    refuse("Length edit is only available for line and wall segments.");
    return false;
  }
  closeLengthEditor();
  return true;
}

bool Board::applyLength(double value) {
  const auto scope = change();
  if (drawsSegments(tool)) {
    if (draft() == nullptr) return false;
    SketchDraft resized = *draft();
    const double angle = std::atan2(resized.current.y - resized.start.y, resized.current.x - resized.start.x);
    resized.current = pointOnCircle(resized.start, value, angle);
    gesture = resized;
    clearSnap();
    return true;
  }
  if (tool != SketchTool::select) return false;

  const auto* handleDrag = selectDrag() != nullptr ? std::get_if<HandleDrag>(&selectDrag()->state) : nullptr;
  if (handleDrag != nullptr) {
    const SketchEntity* dragged = sketch_.entity(handleDrag->entityID);
    const auto resized =
        dragged != nullptr ? dragSegmentLength(handleDrag->handle, *dragged, value) : std::nullopt;
    if (!resized) return false;
    replaceEntity(sketch_, entityID(*resized), *resized);
    clearSnap();
    return true;
  }
  const SketchEntity* selected = sketch_.selectedEntity();
  if (selected == nullptr || !segmentLengthIndicator(*selected)) return false;
  const EntityEditResult result = setSelectedEntityLength(sketch_, value);
  return result == EntityEditResult::applied || result == EntityEditResult::unchanged;
}

}  // namespace ostrelon
