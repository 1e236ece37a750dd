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
      keepThen([reply](bool mayLose) { reply(mayLose ? Reply::allowed : Reply::refused); });
      return;
    }
    if (answer == Answer::save) {
      saveThen([closeNow = std::move(closeNow)](bool isClean) {
        if (isClean) closeNow();
      });
    }
    reply(Reply::refused);
  });
}

void CloseQuestion::sessionShouldEnd(std::function<void(bool mayEnd)> answered) {
  if (!workspace_.document.isDirty() || isAsking_) {
    answered(!isAsking_);
    return;
  }
  ask([this, answered = std::move(answered)](Answer answer) mutable {
    switch (answer) {
      case Answer::dontSave:
        keepThen(answered);
        break;
      case Answer::save:
        saveThen(std::move(answered));
        break;
      case Answer::cancel:
        answered(false);
        break;
    }
  });
}

// What closing would destroy is kept, or the user agrees once more.
void CloseQuestion::keepThen(const std::function<void(bool mayLose)>& answered) {
  DocumentSession& document = workspace_.document;
  runKeepingOrAsking(
      document,
      [&document, answered] {
        document.keepWhatIsLost({.reason = "Closed without saving"});
        answered(true);
      },
      [answered](const std::string& /*refusal*/) { answered(false); });
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
        saveThen([proceed = std::move(proceed)](bool isClean) {
          if (isClean) proceed();
        });
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

void CloseQuestion::saveThen(std::function<void(bool isClean)> ended) {
  if (isClosingAfterSave_) {
    ended(false);
    return;
  }
  isClosingAfterSave_ = true;
  workspace_.host().scheduler.soon([weak = std::weak_ptr(self_), ended = std::move(ended)]() mutable {
    const auto self = weak.lock();
    if (!self) return;
    (*self)->save_([weak, ended = std::move(ended)] {
      const auto stillThere = weak.lock();
      if (!stillThere) return;
      (*stillThere)->isClosingAfterSave_ = false;
      ended(!(*stillThere)->workspace_.document.isDirty());
    });
  });
}

}  // namespace ostrelon
