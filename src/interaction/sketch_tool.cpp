#include "interaction/sketch_tool.h"

#include <cstddef>

namespace ostrelon {
namespace {

struct ToolNames {
  std::string_view raw;
  std::string_view display;
};

constexpr std::array<ToolNames, kAllSketchTools.size()> kNames{{{"select", "Select"},
                                                                {"pan", "Pan"},
                                                                {"line", "Line"},
                                                                {"wall", "Wall"},
                                                                {"circle", "Circle"},
                                                                {"rectangle", "Rectangle"},
                                                                {"polygon", "Polygon"},
                                                                {"trim", "Trim"}}};

}  // namespace

std::string_view rawValue(SketchTool tool) { return kNames[static_cast<std::size_t>(tool)].raw; }

std::string_view displayName(SketchTool tool) { return kNames[static_cast<std::size_t>(tool)].display; }

std::optional<SketchTool> sketchToolFromRawValue(std::string_view text) {
  for (const SketchTool tool : kAllSketchTools) {
    if (rawValue(tool) == text) return tool;
  }
  return std::nullopt;
}

}  // namespace ostrelon
