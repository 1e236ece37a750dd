// The question before unsaved changes would be lost: when the window closes, and before another
// document takes the place of this one.
#pragma once

#include <functional>
#include <memory>

#include "app/workspace.h"

namespace ostrelon {

class CloseQuestion {
 public:
  /// Saves the current document as the Save command does, and calls back when that has ended, well or
  /// not.
  using Save = std::function<void(std::function<void()> ended)>;
  enum class Reply { allowed, refused };

  /// `sketch` must outlive the object.
  CloseQuestion(Workspace& workspace, Save save) : workspace_(workspace), save_(std::move(save)) {}

  /// The window is asked to close. A clean document is allowed at once; with changes the user is asked,
  /// and the reply comes with the answer. "Save" refuses for now: the document is saved by a task of its
  /// own, and `closeNow` runs once it is clean. While the question is open, another request is refused. With
  /// "Don't Save" the drawing is kept, as before it is replaced.
  void windowShouldClose(const std::function<void(Reply)>& reply, std::function<void()> closeNow);

  /// Something is about to replace the document: `proceed` runs when there are no unsaved changes, or once
  /// the user has agreed to lose them.
  void beforeReplacing(std::function<void()> proceed);

  /// The desktop's session is about to end, and waits: `answered` receives whether it may, once unsaved
  /// changes are saved or the user has agreed to lose them.
  void sessionShouldEnd(std::function<void(bool mayEnd)> answered);

  bool isClosingAfterSave() const { return isClosingAfterSave_; }

 private:
  enum class Answer { save, cancel, dontSave };
  void ask(std::function<void(Answer)> answered);
  void saveThen(std::function<void(bool isClean)> ended);
  void keepThen(const std::function<void(bool mayLose)>& answered);

  Workspace& workspace_;
  Save save_;
  bool isAsking_ = false;
  bool isClosingAfterSave_ = false;
  // Answers that come after the object's end find this gone.
  std::shared_ptr<CloseQuestion*> self_ = std::make_shared<CloseQuestion*>(this);
};

}  // namespace ostrelon
