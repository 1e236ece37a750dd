#include "console/zoom_command.h"

#include "interaction/canvas_transform.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {

Reply zoomCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  const std::string word = arguments.size() < 2 ? "in" : lowerCased(arguments[1]);
  const SketchSize canvas = sketch.canvasSize;
  const SketchPoint middle{canvas.width * 0.5, canvas.height * 0.5};
  if (arguments.size() <= 2) {
    if (word == "in" || word == "+") {
      sketch.zoomViewport(kZoomInFactor, middle);
      return "Zoomed in.";
    }
    if (word == "out" || word == "-") {
      sketch.zoomViewport(kZoomOutFactor, middle);
      return "Zoomed out.";
    }
    if (word == "fit") {
      sketch.zoomToFit(canvas);
      return "Zoomed to fit.";
    }
    if (word == "reset") {
      sketch.resetViewport(canvas);
      return "View reset.";
    }
  }
  return "Usage: zoom [in|out|fit|reset]";
}

}  // namespace ostrelon::CommandInterpreter
