#include "documents/kept_question.h"

#include <utility>

#include "platform/dialogs.h"

namespace ostrelon {
namespace {

constexpr const char* kContinue = "Continue Without Keeping";

}  // namespace

void runKeepingOrAsking(DocumentSession& document, std::function<void()> work,
                        std::function<void(const std::string& refusal)> refused) {
  std::string why;
  try {
    work();
    return;
  } catch (const DrawingNotKeptError& error) {
    why = error.what();
  } catch (const UserError& error) {
    refused(error.what());
    return;
  }
  const Alert alert{why, "If you continue, it is lost for good.", {"Cancel", kContinue}, 0, 1};
  document.host().dialogs.ask(alert, [&document, why, work = std::move(work),
                                      refused = std::move(refused)](const DialogAnswer& answer) {
    if (answer != kContinue) {
      refused(why);
      return;
    }
    try {
      document.withoutKeeping(work);
    } catch (const UserError& error) {
      refused(error.what());
    }
  });
}

}  // namespace ostrelon
