#include "console/zoom_command.h"

#include "console/command_words.h"
#include "interaction/canvas_transform.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseZoom(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  using To = ZoomView::To;
  if (words.size() > 2) return WrongUse{};
  const std::string to = words.size() < 2 ? "in" : lowerCasedWord(words, 1);
  if (to == "in" || to == "+") return ZoomView{To::in};
  if (to == "out" || to == "-") return ZoomView{To::out};
  if (to == "fit") return ZoomView{To::fit};
  if (to == "reset") return ZoomView{To::reset};
  return WrongUse{};
}

Reply run(const ZoomView& zoom, const CommandContext& context) {
  Board& board = context.board;
  const SketchSize canvas = board.view->canvasSize;
  const SketchPoint middle{canvas.width * 0.5, canvas.height * 0.5};
  switch (zoom.to) {
    case ZoomView::To::in:
      board.zoom(kZoomInFactor, middle);
      return Reply::done("Zoomed in.");
    case ZoomView::To::out:
      board.zoom(kZoomOutFactor, middle);
      return Reply::done("Zoomed out.");
    case ZoomView::To::fit:
      board.zoomToFit(canvas);
      return Reply::done("Zoomed to fit.");
    case ZoomView::To::reset:
      board.resetViewport(canvas);
      return Reply::done("View reset.");
  }
  return Reply::silent();
}

}  // namespace ostrelon::CommandInterpreter
