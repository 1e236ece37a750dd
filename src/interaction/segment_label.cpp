#include "interaction/segment_label.h"

#include <algorithm>
#include <cmath>

#include "core/length_text.h"
#include "interaction/board.h"
#include "interaction/canvas_clipping.h"
#include "platform/unicode.h"

namespace ostrelon {

namespace {

constexpr double kCharacterWidth = 7;
constexpr double kTextPadding = 14;
/// A segment whose normal rises by less than this is vertical on the screen.
constexpr double kVerticalTolerance = 1e-6;

/// The segment that the label belongs to, sketch units.
std::optional<CanvasSegment> labelledSegment(const Board& board) {
  const SketchTool tool = board.tool.get();
  if (tool == SketchTool::line || tool == SketchTool::wall) {
    if (const SketchDraft* draft = board.draft()) return CanvasSegment{draft->start, draft->current};
    return std::nullopt;
  }
  if (tool != SketchTool::select) return std::nullopt;
  const SketchEntity* entity = board.sketch().selectedEntity();
  if (entity == nullptr) return std::nullopt;
  if (const auto* line = std::get_if<LineEntity>(entity)) return CanvasSegment{line->from, line->to};
  if (const auto* wall = std::get_if<WallEntity>(entity)) return CanvasSegment{wall->from, wall->to};
  return std::nullopt;
}

SketchPoint labelNormal(SketchPoint from, SketchPoint to) {
  const double length = distanceBetween(from, to);
  const SketchPoint normal{(to.y - from.y) / length, (from.x - to.x) / length};
  if (std::abs(normal.y) <= kVerticalTolerance) return {1, 0};
  return normal.y < 0 ? normal : normal * -1;
}

}  // namespace

std::optional<SegmentLabel> segmentLabel(const Board& board, const SketchViewport& viewport) {
  const auto segment = labelledSegment(board);
  if (!segment) return std::nullopt;
  const double length = distanceBetween(segment->from, segment->to);
  const SketchPoint from = sketchPointToView(segment->from, viewport);
  const SketchPoint to = sketchPointToView(segment->to, viewport);
  const double viewLength = distanceBetween(from, to);
  if (!(length > 0) || !(viewLength > 0) || !std::isfinite(viewLength)) return std::nullopt;

  const SketchPoint middle = from + (to - from) * 0.5;
  const SketchPoint center = middle + labelNormal(from, to) * kSegmentLabelDistance;
  if (!isFinite(center)) return std::nullopt;
  std::string text = formatFeetInches(length);
  const double width = std::max(kSegmentLabelMinimumWidth,
                                kCharacterWidth * static_cast<double>(characterCount(text)) + kTextPadding);
  return SegmentLabel{std::move(text),
                      {center.x - width / 2, center.y - kSegmentLabelHeight / 2, center.x + width / 2,
                       center.y + kSegmentLabelHeight / 2}};
}

}  // namespace ostrelon
