// Questions to the user, asked through the host: the window shows a panel, automation answers from
// a queue, a test answers itself. The answer arrives through a continuation, at once or later.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace ostrelon {

/// Choose a document to open. The answer is a path.
struct OpenPanel {
  std::filesystem::path startingFolder;  ///< empty: the panel's own default
};

/// Choose where to save a document. The answer is a path.
struct SavePanel {
  std::filesystem::path startingFolder;  ///< empty: the panel's own default
  std::string suggestedName;
};

/// Choose where to write something that is not a document. The answer is a path.
struct ExportPanel {
  std::filesystem::path startingFolder;
  std::string suggestedName;
};

/// Choose a drawing of another program to take in. The answer is a path.
struct ImportPanel {
  std::filesystem::path startingFolder;  ///< empty: the panel's own default
};

/// Choose a folder. The answer is a path.
struct FolderPanel {
  std::string message;
  std::filesystem::path startingFolder;
};

/// Ask for one line of text. The answer is the text.
struct TextPrompt {
  std::string title;
  std::string informativeText;
  std::string initialText;
  std::string confirmButton;
};

/// Ask a question with buttons, the default one first. The answer is the title of a button.
struct Alert {
  std::string message;
  std::string informativeText;
  std::vector<std::string> buttons;
  /// Their positions among the buttons, where there are such: the one that Escape presses, and one that
  /// gives work away.
  std::optional<std::size_t> cancelButton = std::nullopt;
  std::optional<std::size_t> discardingButton = std::nullopt;
};

using DialogRequest =
    std::variant<OpenPanel, SavePanel, ExportPanel, ImportPanel, FolderPanel, TextPrompt, Alert>;

/// A path, a text or a button's title; absent when the user cancelled.
using DialogAnswer = std::optional<std::string>;

class Dialogs {
 public:
  Dialogs() = default;
  Dialogs(const Dialogs&) = delete;
  Dialogs& operator=(const Dialogs&) = delete;
  virtual ~Dialogs() = default;

  /// Asks, and calls `answered` exactly once.
  virtual void ask(const DialogRequest& request, std::function<void(DialogAnswer)> answered) = 0;
  /// Whether a save panel asks by itself before it gives the path of a file that is there. A path that the
  /// program completes has then to be asked about in the same way.
  virtual bool confirmsReplacing() const { return false; }
};

/// Answers from a queue, at once; with nothing queued every dialog is cancelled.
class QueuedDialogs final : public Dialogs {
 public:
  void queue(DialogAnswer answer) { answers_.push_back(std::move(answer)); }
  const std::vector<DialogRequest>& asked() const { return asked_; }
  /// Has the answers to save panels count as those of a panel that confirms. Scripts give paths that they
  /// mean.
  void setConfirmsReplacing(bool confirms) { confirmsReplacing_ = confirms; }
  bool confirmsReplacing() const override { return confirmsReplacing_; }

  void ask(const DialogRequest& request, std::function<void(DialogAnswer)> answered) override {
    asked_.push_back(request);
    DialogAnswer answer;
    if (!answers_.empty()) {
      answer = std::move(answers_.front());
      answers_.pop_front();
    }
    answered(std::move(answer));
  }

 private:
  std::deque<DialogAnswer> answers_;
  std::vector<DialogRequest> asked_;
  bool confirmsReplacing_ = false;
};

}  // namespace ostrelon
