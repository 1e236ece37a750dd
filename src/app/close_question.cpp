#include "app/close_question.h"

#include "documents/drawing_loss.h"
#include "documents/kept_question.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

constexpr const char* kSave = "Save";
constexpr const char* kCancel = "Cancel";
constexpr const char* kDontSave = "Don't Save";

}  // namespace

void CloseQuestion::windowShouldClose(const std::function<void(Reply)>& reply,
                                      std::function<void()> closeNow) {
  if (!workspace_.document.isDirty()) {
    reply(Reply::allowed);
    return;
  }
  if (isAsking_) {
    reply(Reply::refused);
    return;
  }
  ask([this, reply, closeNow = std::move(closeNow)](Answer answer) mutable {
    if (answer == Answer::dontSave) {
      DocumentSession& document = workspace_.document;
      runKeepingOrAsking(
          document,
          [&document, reply] {
            document.keepWhatIsLost({.reason = "Closed without saving"});
            reply(Reply::allowed);
          },
          [reply](const std::string&) { reply(Reply::refused); });
      return;
    }
    if (answer == Answer::save) saveThen(std::move(closeNow));
    reply(Reply::refused);
  });
}

void CloseQuestion::beforeReplacing(std::function<void()> proceed) {
  if (!workspace_.document.isDirty()) {
    proceed();
    return;
  }
  if (isAsking_) return;
  ask([this, proceed = std::move(proceed)](Answer answer) mutable {
    switch (answer) {
      case Answer::dontSave:
        proceed();
        break;
      case Answer::save:
        saveThen(std::move(proceed));
        break;
      case Answer::cancel:
        break;
    }
  });
}

void CloseQuestion::ask(std::function<void(Answer)> answered) {
  isAsking_ = true;
  const Alert alert{"Do you want to save changes to " + *workspace_.document.name + " before closing?",
                    "If you do not save, changes will be lost.",
                    {kSave, kCancel, kDontSave},
                    1,
                    2};
  workspace_.host().dialogs.ask(
      alert, [weak = std::weak_ptr(self_), answered = std::move(answered)](DialogAnswer title) {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->isAsking_ = false;
        if (title == kDontSave) {
          answered(Answer::dontSave);
        } else {
          answered(title == kSave ? Answer::save : Answer::cancel);
        }
      });
}

void CloseQuestion::saveThen(std::function<void()> whenClean) {
  if (isClosingAfterSave_) return;
  isClosingAfterSave_ = true;
  workspace_.host().scheduler.soon([weak = std::weak_ptr(self_), whenClean = std::move(whenClean)]() mutable {
    const auto self = weak.lock();
    if (!self) return;
    (*self)->save_([weak, whenClean = std::move(whenClean)] {
      const auto stillThere = weak.lock();
      if (!stillThere) return;
      (*stillThere)->isClosingAfterSave_ = false;
      if (!(*stillThere)->workspace_.document.isDirty()) whenClean();
    });
  });
}

}  // namespace ostrelon
