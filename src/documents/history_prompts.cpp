#include "documents/history_prompts.h"

#include "documents/overwrite_question.h"
#include "platform/dialogs.h"
#include "platform/unicode.h"
#include "platform/user_error.h"

namespace ostrelon {
namespace {

using Style = DocumentToastState::Style;

void report(SketchViewModel& sketch, const std::string& text) {
  sketch.appendConsoleLine(text, false, true);
  sketch.showDocumentToast(text, Style::success);
}

void reportFailure(SketchViewModel& sketch, const std::string& text) {
  sketch.appendConsoleLine(text, true, false);
  sketch.showDocumentToast(text, Style::error);
}

// The name of the current branch, or that of the one that every store begins with.
std::string currentBranchName(const SketchViewModel& sketch) {
  const DocumentHistoryBranch* current = sketch.documentHistoryState->currentBranch();
  return current == nullptr ? "main" : current->name;
}

void saveCheckpointWithReport(SketchViewModel& sketch, const std::string& message) {
  askBeforeOverwriting(sketch, [&sketch, message](const std::optional<std::string>& refusal) {
    if (refusal) {
      reportFailure(sketch, "Checkpoint failed: " + *refusal);
      return;
    }
    try {
      const DocumentCheckpoint checkpoint = sketch.saveCheckpoint(message);
      report(sketch, "Checkpoint saved on " + currentBranchName(sketch) + ": " + checkpoint.message);
    } catch (const UserError& error) {
      reportFailure(sketch, std::string("Checkpoint failed: ") + error.what());
    }
  });
}

}  // namespace

void promptForCheckpoint(SketchViewModel& sketch) {
  sketch.refreshDocumentHistory();
  TextPrompt prompt;
  prompt.title = "Save Checkpoint";
  prompt.informativeText = "Name this design milestone.";
  prompt.initialText =
      "Checkpoint " + std::to_string(sketch.documentHistoryState->allCheckpoints().size() + 1);
  prompt.confirmButton = "Save Checkpoint";
  sketch.host().dialogs.ask(prompt, [&sketch](const DialogAnswer& answer) {
    if (answer) saveCheckpointWithReport(sketch, std::string(trimmed(*answer)));
  });
}

void promptForBranch(SketchViewModel& sketch) {
  sketch.refreshDocumentHistory();
  const DocumentHistoryBranch* current = sketch.documentHistoryState->currentBranch();
  if (current == nullptr || !current->headCheckpointID) {
    reportFailure(sketch, "Create a checkpoint before branching.");
    return;
  }
  TextPrompt prompt;
  prompt.title = "Create Branch";
  prompt.informativeText = "Create a branch from the current branch head.";
  prompt.initialText = "option-" + std::to_string(sketch.documentHistoryState->metadata.branches.size());
  prompt.confirmButton = "Create Branch";
  sketch.host().dialogs.ask(prompt, [&sketch](const DialogAnswer& answer) {
    if (!answer) return;
    try {
      report(sketch, "Branch created: " + sketch.createHistoryBranch(*answer).name);
    } catch (const UserError& error) {
      reportFailure(sketch, std::string("Branch failed: ") + error.what());
    }
  });
}

void switchBranchFromMenu(SketchViewModel& sketch, const std::string& nameOrID) {
  askBeforeSwitching(sketch, nameOrID, [&sketch, nameOrID](const std::optional<std::string>& refusal) {
    if (refusal) {
      reportFailure(sketch, "Switch branch failed: " + *refusal);
      return;
    }
    try {
      report(sketch, "Switched to branch " + sketch.switchBranch(nameOrID).name + ".");
    } catch (const UserError& error) {
      reportFailure(sketch, std::string("Switch branch failed: ") + error.what());
    }
  });
}

}  // namespace ostrelon
