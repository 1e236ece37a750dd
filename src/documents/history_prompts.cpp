#include "documents/history_prompts.h"

#include "documents/kept_question.h"
#include "documents/overwrite_question.h"
#include "platform/dialogs.h"
#include "platform/unicode.h"
#include "platform/user_error.h"

namespace ostrelon {
namespace {

using Style = DocumentToastState::Style;

void report(DocumentSession& document, const std::string& text) {
  document.messages().append(text, false, true);
  document.messages().showToast(text, Style::success);
}

void reportFailure(DocumentSession& document, const std::string& text) {
  document.messages().append(text, true, false);
  document.messages().showToast(text, Style::error);
}

// The name of the current branch, or that of the one that every store begins with.
std::string currentBranchName(const DocumentSession& document) {
  const DocumentHistoryBranch* current = document.history->currentBranch();
  return current == nullptr ? "main" : current->name;
}

void saveCheckpointWithReport(DocumentSession& document, const std::string& message) {
  askBeforeOverwriting(document, [&document, message](const std::optional<std::string>& refusal) {
    if (refusal) {
      reportFailure(document, "Checkpoint failed: " + *refusal);
      return;
    }
    runKeepingOrAsking(
        document,
        [&document, message] {
          const DocumentCheckpoint checkpoint = document.saveCheckpoint(message);
          report(document, "Checkpoint saved on " + currentBranchName(document) + ": " + checkpoint.message);
        },
        [&document](const std::string& why) { reportFailure(document, "Checkpoint failed: " + why); });
  });
}

void askForBranch(DocumentSession& document, const std::string& text,
                  const std::optional<std::string>& sourceCheckpointID) {
  TextPrompt prompt;
  prompt.title = "Create Branch";
  prompt.informativeText = text;
  prompt.initialText = "option-" + std::to_string(document.history->metadata.branches.size());
  prompt.confirmButton = "Create Branch";
  document.host().dialogs.ask(prompt, [&document, sourceCheckpointID](const DialogAnswer& answer) {
    if (!answer) return;
    try {
      report(document, "Branch created: " + document.createBranch(*answer, sourceCheckpointID).name);
    } catch (const UserError& error) {
      reportFailure(document, std::string("Branch failed: ") + error.what());
    }
  });
}

}  // namespace

void promptForCheckpoint(DocumentSession& document) {
  document.refreshHistory();
  TextPrompt prompt;
  prompt.title = "Save Checkpoint";
  prompt.informativeText = "Name this design milestone.";
  prompt.initialText = "Checkpoint " + std::to_string(document.history->allCheckpoints().size() + 1);
  prompt.confirmButton = "Save Checkpoint";
  document.host().dialogs.ask(prompt, [&document](const DialogAnswer& answer) {
    if (answer) saveCheckpointWithReport(document, std::string(trimmed(*answer)));
  });
}

void promptForBranch(DocumentSession& document) {
  document.refreshHistory();
  const DocumentHistoryBranch* current = document.history->currentBranch();
  if (current == nullptr || !current->headCheckpointID) {
    reportFailure(document, "Create a checkpoint before branching.");
    return;
  }
  askForBranch(document, "Create a branch from the current branch head.", std::nullopt);
}

void promptForBranchFrom(DocumentSession& document, const std::string& checkpointID,
                         const std::string& message) {
  document.refreshHistory();
  askForBranch(document, "Create a branch from “" + message + "”.", checkpointID);
}

void switchBranchFromMenu(DocumentSession& document, const std::string& nameOrID) {
  askBeforeSwitching(document, nameOrID, [&document, nameOrID](const std::optional<std::string>& refusal) {
    if (refusal) {
      reportFailure(document, "Switch branch failed: " + *refusal);
      return;
    }
    runKeepingOrAsking(
        document,
        [&document, nameOrID] {
          report(document, "Switched to branch " + document.switchBranch(nameOrID).name + ".");
        },
        [&document](const std::string& why) { reportFailure(document, "Switch branch failed: " + why); });
  });
}

}  // namespace ostrelon
