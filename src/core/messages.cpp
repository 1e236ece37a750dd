#include "core/messages.h"

#include <utility>

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

Messages::Messages(ChangeTracker& tracker, Scheduler& scheduler) : tracker_(tracker), scheduler_(scheduler) {
  const ChangeScope scope(tracker_);
  appendSystem("Ostrelon console ready.");
  appendSystem("Type help for commands.");
}

void Messages::append(std::string text, bool isError, bool isSystem) {
  const ChangeScope scope(tracker_);
  lines.edit().push_back({UUID::random(), std::move(text), isError, isSystem});
}

void Messages::showToast(std::string message, DocumentToastState::Style style,
                         std::optional<double> duration) {
  const ChangeScope scope(tracker_);
  dismissal_.reset();
  toast = DocumentToastState{message, style};
  const std::optional<double> seconds = duration ? duration : toastSeconds(style);
  if (!seconds) return;
  dismissal_ = scheduler_.after(Seconds(*seconds), [this, message = std::move(message)] {
    if (*toast && (*toast)->message == message) toast = std::nullopt;
  });
}

}  // namespace ostrelon
