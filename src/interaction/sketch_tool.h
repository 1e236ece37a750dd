// The tools of the drawing board.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ostrelon {

enum class SketchTool { select, pan, line, wall, circle, rectangle, polygon, trim };

/// All tools, in the order of the tool list.
inline constexpr std::array kAllSketchTools{SketchTool::select,  SketchTool::pan,    SketchTool::line,
                                            SketchTool::wall,    SketchTool::circle, SketchTool::rectangle,
                                            SketchTool::polygon, SketchTool::trim};

/// "select", "pan", …
std::string_view rawValue(SketchTool tool);
/// "Select", "Pan", …
std::string_view displayName(SketchTool tool);
/// The tool of a raw value; any other text gives none.
std::optional<SketchTool> sketchToolFromRawValue(std::string_view text);

}  // namespace ostrelon
