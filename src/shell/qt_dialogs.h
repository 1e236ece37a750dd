// Questions to the user, as Qt shows them: the desktop's own panels for files and folders, and the program's
// sheets over the main window for prompts and alerts.
#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

#include "platform/dialogs.h"
#include "shell/theme.h"

namespace ostrelon {

class QtDialogs final : public Dialogs {
 public:
  /// File panels start in `folder` at first, where nothing else is asked for, and then in the last one.
  explicit QtDialogs(Theme& theme, QString folder = {}) : theme_(theme), lastFolder_(std::move(folder)) {}
  /// The window over which questions are asked. Without one they are cancelled.
  void setWindow(QWidget* window) { window_ = window; }
  /// Another one, over which they are asked while it is the active one.
  void addWindow(QWidget* window) { otherWindows_.emplace_back(window); }

  void ask(const DialogRequest& request, std::function<void(DialogAnswer)> answered) override;
  bool confirmsReplacing() const override { return true; }

 private:
  void askForFile(QWidget& window, const DialogRequest& request, std::function<void(DialogAnswer)> answered);
  void askForText(QWidget& window, const TextPrompt& prompt, std::function<void(DialogAnswer)> answered);
  void askAlert(QWidget& window, const Alert& alert, std::function<void(DialogAnswer)> answered);

  Theme& theme_;
  QString lastFolder_;
  QPointer<QWidget> window_;
  std::vector<QPointer<QWidget>> otherWindows_;
};

}  // namespace ostrelon
