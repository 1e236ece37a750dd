// What the object says: the transcript and the toast.
#include "core/sketch_view_model.h"

namespace ostrelon {
namespace {

constexpr double kSuccessToastSeconds = 2.5;
constexpr double kErrorToastSeconds = 5;

std::optional<double> toastSeconds(DocumentToastState::Style style) {
  switch (style) {
    case DocumentToastState::Style::saving:
      return std::nullopt;
    case DocumentToastState::Style::success:
      return kSuccessToastSeconds;
    case DocumentToastState::Style::error:
      return kErrorToastSeconds;
  }
  return std::nullopt;
}

}  // namespace

void SketchViewModel::appendConsoleLine(std::string text, bool isError, bool isSystem) {
  const ChangeScope scope(tracker_);
  consoleLines.edit().push_back({UUID::random(), std::move(text), isError, isSystem});
}

void SketchViewModel::setCommandInput(std::string text) { commandInput = std::move(text); }

void SketchViewModel::setConsoleInputFocused(bool focused) { isConsoleInputFocused = focused; }

void SketchViewModel::printEntityDescription(const UUID& id) {
  if (const SketchEntity* found = entity(id)) {
    appendConsoleLine(entityDescription(*found, wallSystemName(*found)), false, true);
  }
}

void SketchViewModel::showDocumentToast(std::string message, DocumentToastState::Style style,
                                        std::optional<double> duration) {
  const ChangeScope scope(tracker_);
  documentToastDismissTask_.reset();
  documentToast = DocumentToastState{message, style};
  const std::optional<double> seconds = duration ? duration : toastSeconds(style);
  if (!seconds) return;
  documentToastDismissTask_ = host_.scheduler.after(Seconds(*seconds), [this, message = std::move(message)] {
    if (*documentToast && (*documentToast)->message == message) documentToast = std::nullopt;
  });
}

void SketchViewModel::clearDocumentToast() { documentToast = std::nullopt; }

}  // namespace ostrelon
