// What the program tells its user: the transcript of the console, and the short message that slides
// over the canvas. Every module may write here.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/console_line.h"
#include "core/document_toast.h"
#include "core/observable.h"
#include "platform/scheduler.h"

namespace ostrelon {

class Messages {
  ChangeTracker& tracker_;
  template <class T>
  using Field = Observable<T, Messages>;

 public:
  /// The transcript begins with two lines of greeting. Both arguments must outlive the object.
  Messages(ChangeTracker& tracker, Scheduler& scheduler);
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  Field<std::vector<ConsoleLine>> lines{tracker_};
  Field<std::optional<DocumentToastState>> toast{tracker_};

  void append(std::string text, bool isError, bool isSystem);
  /// Output of the program rather than a reply.
  void appendSystem(std::string text) { append(std::move(text), false, true); }
  void appendReply(std::string text) { append(std::move(text), false, false); }

  /// `duration`: seconds until it goes; absent takes the style's own, and a `saving` toast then stays.
  void showToast(std::string message, DocumentToastState::Style style,
                 std::optional<double> duration = std::nullopt);
  void clearToast() { toast = std::nullopt; }
  bool willDismissToast() const { return dismissal_.has_value(); }

 private:
  Scheduler& scheduler_;
  std::optional<ScheduledTask> dismissal_;
};

}  // namespace ostrelon
