// The length editor over a straight segment: the one being drawn, dragged or selected.
#include <cmath>

#include "core/length_text.h"
#include "core/sketch_view_model.h"
#include "geometry/entity_edits.h"

namespace ostrelon {
namespace {

bool drawsSegments(SketchTool tool) { return tool == SketchTool::line || tool == SketchTool::wall; }

}  // namespace

std::optional<std::string> SketchViewModel::currentSegmentLengthText() const {
  if (drawsSegments(selectedTool)) {
    if (!*draft) return std::nullopt;
    return formatFeetInches(distanceBetween((*draft)->start, (*draft)->current));
  }
  if (selectedTool != SketchTool::select) return std::nullopt;
  const SketchEntity* selected = selectedEntity();
  const auto indicator = selected != nullptr ? segmentLengthIndicator(*selected) : std::nullopt;
  if (!indicator) return std::nullopt;
  return formatFeetInches(indicator->length);
}

void SketchViewModel::beginSegmentLengthEdit(std::optional<std::string> text) {
  const ChangeScope scope(tracker_);
  segmentLengthEditText = text ? *text : currentSegmentLengthText().value_or("");
  segmentLengthEditError = std::nullopt;
  isSegmentLengthEditing = true;
  isSegmentLengthTextOffered_ = !text;
}

void SketchViewModel::setSegmentLengthEditText(std::string text) {
  segmentLengthEditText = std::move(text);
  isSegmentLengthTextOffered_ = false;
}

bool SketchViewModel::commitSegmentLengthEdit() {
  const ChangeScope scope(tracker_);
  const auto value = parseFeetInches(segmentLengthEditText.get());
  if (!value || !(*value > 0) || !std::isfinite(*value)) {
    segmentLengthEditError = "Enter a valid feet/inches length.";
    return false;
  }
  // The text with which the editor opens is rounded to the inch: as it stands it asks for nothing.
  const bool isAsOffered = isSegmentLengthTextOffered_ && currentSegmentLengthText();
  if (!isAsOffered && !applySegmentLength(*value)) {
    segmentLengthEditError = "Length edit is only available for line and wall segments.";
    return false;
  }
  closeSegmentLengthEdit();
  return true;
}

bool SketchViewModel::applySegmentLength(double value) {
  const ChangeScope scope(tracker_);
  if (drawsSegments(selectedTool)) {
    if (!*draft) return false;
    SketchDraft resized = **draft;
    const double angle = std::atan2(resized.current.y - resized.start.y, resized.current.x - resized.start.x);
    resized.current = pointOnCircle(resized.start, value, angle);
    draft = resized;
    clearSnapState();
    return true;
  }
  if (selectedTool != SketchTool::select) return false;

  const auto* handleDrag = *selectDrag ? std::get_if<HandleDrag>(&**selectDrag) : nullptr;
  if (handleDrag != nullptr) {
    const SketchEntity* dragged = entity(handleDrag->entityID);
    const auto resized =
        dragged != nullptr ? dragSegmentLength(handleDrag->handle, *dragged, value) : std::nullopt;
    if (!resized) return false;
    replaceEntity(entityID(*resized), *resized);
    clearSnapState();
    return true;
  }
  const SketchEntity* selected = selectedEntity();
  if (selected == nullptr || !segmentLengthIndicator(*selected)) return false;
  const EntityEditResult result = setSelectedEntityLength(value);
  return result == EntityEditResult::applied || result == EntityEditResult::unchanged;
}

}  // namespace ostrelon
