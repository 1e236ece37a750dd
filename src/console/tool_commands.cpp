#include "console/tool_commands.h"

namespace ostrelon {

// Typed commands disturb less than the tool buttons: `line` and `poly` keep the selection and the
// cutting edge, `trim` keeps a draft. The trim tool starts with nothing selected, since its selection
// is the cutting edge; chosen again it only lets go of the edge.
void SketchViewModel::activateToolFromConsole(SketchTool tool) {
  if (tool == SketchTool::select) {
    activateSelectTool();
    return;
  }
  const ChangeScope scope(tracker_);
  endSelectGestures();
  if (tool == SketchTool::trim) {
    trimCuttingEdgeEntityID = std::nullopt;
    if (selectedTool != SketchTool::trim) clearSelection();
  } else {
    cancelDraft();
  }
  selectedTool = tool;
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
