#include "console/numeric_draft_input.h"

#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "console/command_words.h"
#include "core/circle.h"
#include "core/length_text.h"
#include "core/typed_length.h"
#include "interaction/axis_directions.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

// Where a typed size puts the end of the draft, and how the console reports it.
struct TypedEnd {
  SketchPoint current;
  std::string message;
};

// The numbers of a line; absent when one does not read or is not finite.
std::optional<std::vector<double>> readSizes(std::span<const std::string> tokens) {
  std::vector<double> sizes;
  for (const std::string& token : tokens) {
    const auto size = parseDegrees(token);
    if (!size || !std::isfinite(*size)) return std::nullopt;
    sizes.push_back(*size);
  }
  return sizes;
}

std::optional<TypedEnd> typedSegment(SketchTool tool, const SketchDraft& draft,
                                     const std::vector<double>& sizes) {
  if (sizes.size() > 2 || !(sizes[0] >= kMinimumTypedSize)) return std::nullopt;
  const SketchPoint span = draft.current - draft.start;
  SketchPoint direction{1, 0};
  double degrees = directionDegrees(span.x, span.y);
  if (sizes.size() == 2) {
    direction = unitVector(sizes[1]);
    degrees = std::fmod(sizes[1], 360);
    if (degrees < 0) degrees += 360;
  } else if (const double length = lengthOf(span); length > 0) {
    // A draft that is locked to an axis stays exactly on it.
    direction = {span.x / length, span.y / length};
  }
  return TypedEnd{draft.start + direction * sizes[0], std::string(displayName(tool)) + " added (length " +
                                                          formatShortNumber(sizes[0]) + ", angle " +
                                                          formatShortNumber(degrees) + "°)."};
}

std::optional<TypedEnd> typedCircle(const SketchDraft& draft, const std::vector<double>& sizes) {
  if (sizes.size() != 1 || !(sizes[0] >= kMinimumTypedSize)) return std::nullopt;
  return TypedEnd{{draft.start.x + sizes[0], draft.start.y},
                  "Circle added (radius " + formatShortNumber(sizes[0]) + ")."};
}

std::optional<TypedEnd> typedRectangle(const SketchDraft& draft, const std::vector<double>& sizes) {
  if (sizes.size() > 2) return std::nullopt;
  const double width = sizes.front();
  const double height = sizes.back();
  if (!(width >= kMinimumTypedSize) || !(height >= kMinimumTypedSize)) return std::nullopt;
  const double signX = draft.current.x < draft.start.x ? -1 : 1;
  const double signY = draft.current.y < draft.start.y ? -1 : 1;
  return TypedEnd{
      {draft.start.x + signX * width, draft.start.y + signY * height},
      "Rectangle added (width " + formatShortNumber(width) + ", height " + formatShortNumber(height) + ")."};
}

// Null for the tools that take no numbers.
const char* usageOf(SketchTool tool) {
  switch (tool) {
    case SketchTool::line:
    case SketchTool::wall:
      return "Usage: <length> [angle] while drawing";
    case SketchTool::circle:
      return "Usage: <radius> while drawing circle";
    case SketchTool::rectangle:
      return "Usage: <width> [height] while drawing rectangle";
    case SketchTool::select:
    case SketchTool::pan:
    case SketchTool::polygon:
    case SketchTool::trim:
      return nullptr;
  }
  return nullptr;
}

std::optional<TypedEnd> typedEnd(SketchTool tool, const SketchDraft& draft,
                                 const std::vector<double>& sizes) {
  if (tool == SketchTool::circle) return typedCircle(draft, sizes);
  if (tool == SketchTool::rectangle) return typedRectangle(draft, sizes);
  return typedSegment(tool, draft, sizes);
}

// A width, and a distance behind it, for the openings that are being placed.
std::optional<Reply> applyOpeningSize(std::string_view text, Board& board) {
  Words words = splitAtWhiteSpace(text);
  if (words.empty() || !std::holds_alternative<double>(readLength(words.front()))) return std::nullopt;
  const Reply usage = Reply::error("Usage: <width> [distance] while adding doors, windows and openings");
  const auto width = readLengthAt(words, 0);
  const auto* first = std::get_if<LengthInWords>(&width);
  if (first == nullptr || !(first->value > 0)) return usage;
  std::optional<double> distance;
  std::size_t next = first->next;
  if (next < words.size()) {
    const auto second = readLengthAt(words, next);
    const auto* length = std::get_if<LengthInWords>(&second);
    if (length == nullptr) return usage;
    distance = length->value;
    next = length->next;
  }
  if (next != words.size()) return usage;
  board.setOpeningPlacingSize(first->value, distance);
  return Reply::done("Width " + formatLength(first->value) +
                     (distance ? ", distance " + formatLength(*distance) : std::string()) + ".");
}

}  // namespace

std::optional<Reply> applyNumericDraftInput(std::string_view text, Board& board) {
  if (board.openingPlacing() != nullptr) return applyOpeningSize(text, board);
  const char* usage = usageOf(board.tool);
  const SketchDraft* draft = board.draft();
  if (draft == nullptr || usage == nullptr) return std::nullopt;
  const auto tokens = splitAtWhiteSpace(text);
  if (tokens.empty() || !parseDegrees(tokens.front())) return std::nullopt;

  const auto sizes = readSizes(tokens);
  auto end = sizes ? typedEnd(board.tool, *draft, *sizes) : std::nullopt;
  if (!end) return Reply::error(usage);
  const auto change = board.change();
  board.setDraftCurrent(end->current);
  board.clearSnap();
  board.commitTypedDraft();
  return Reply::done(std::move(end->message));
}

}  // namespace ostrelon::CommandInterpreter
