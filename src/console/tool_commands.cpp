#include "console/tool_commands.h"

namespace ostrelon {

// The trim tool starts with nothing selected, since its selection is the cutting edge; chosen again
// it only lets go of the edge.
void SketchViewModel::activateToolFromConsole(SketchTool tool) {
  const ChangeScope scope(tracker_);
  if (tool != SketchTool::trim) {
    activateTool(tool);
    return;
  }
  trimCuttingEdgeEntityID = std::nullopt;
  if (selectedTool == SketchTool::trim) return;
  clearSelection();
  activateTool(SketchTool::trim);
}

namespace CommandInterpreter {

Reply activateToolCommand(SketchTool tool, SketchViewModel& sketch) {
  sketch.activateToolFromConsole(tool);
  std::string reply = std::string(displayName(tool)) + " tool active.";
  if (tool == SketchTool::trim) reply += " Select cutting edge, then click entities to trim.";
  return reply;
}

}  // namespace CommandInterpreter
}  // namespace ostrelon
