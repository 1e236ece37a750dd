#include "app/history_actions.h"

#include <utility>

#include "app/application.h"
#include "app/comparison_choices.h"
#include "documents/drawing_loss.h"
#include "documents/history_prompts.h"
#include "documents/restore_drawing.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

constexpr const char* kDelete = "Delete";

std::string nameOf(const HistoryRow& row) { return "“" + row.title + "”"; }

void report(Application& application, const std::string& text) {
  Messages& messages = application.workspace().messages;
  messages.appendSystem(text);
  messages.showToast(text, DocumentToastState::Style::success);
}

}  // namespace

HistoryActions historyActions(const HistoryGroup& group, const HistoryRow& row) {
  return {row.checkpoint() != nullptr, group.branchID.has_value() && !group.isCurrentBranch,
          row.kept() != nullptr};
}

void restoreFromHistory(Application& application, const HistoryRow& row, const Drawing& drawing) {
  Sketch& sketch = application.workspace().sketch;
  if (isSameDrawing(drawing, sketch.drawing)) {
    report(application, "The drawing is already that of " + nameOf(row) + ".");
    return;
  }
  restoreDrawing(sketch, drawing);
  report(application, "Restored " + nameOf(row) + ".");
}

void compareFromHistory(Application& application, const HistoryRow& row, const Drawing& drawing) {
  compareWith(application, {nameOf(row), std::nullopt, false, [drawing] { return drawing; }});
}

void openFromHistory(Application& application, const HistoryRow& row, OpenedDocument document) {
  application.openAsNewDocument(std::move(document), "Opened " + nameOf(row) + " as a new document.");
}

void branchFromHistory(Application& application, const HistoryRow& row) {
  if (const HistoryCheckpoint* checkpoint = row.checkpoint()) {
    promptForBranchFrom(application.workspace().document, checkpoint->id, row.title);
  }
}

void switchFromHistory(Application& application, const HistoryRow& row) {
  if (const HistoryCheckpoint* checkpoint = row.checkpoint()) {
    application.switchBranch(checkpoint->branchID);
  }
}

void deleteFromHistory(Application& application, const HistoryRow& row, std::function<void()> deleted) {
  const HistoryKept* kept = row.kept();
  if (kept == nullptr) return;
  const Alert question{"Do you want to delete the kept drawing " + nameOf(row) + "?",
                       "It cannot be brought back.",
                       {"Cancel", kDelete},
                       0,
                       1};
  application.host().dialogs.ask(
      question, [&application, id = kept->id, deleted = std::move(deleted)](const DialogAnswer& answer) {
        if (answer != kDelete) return;
        try {
          application.deleteKeptDrawing(id);
        } catch (const UserError& error) {
          application.workspace().messages.showToast(error.what(), DocumentToastState::Style::error);
        }
        deleted();
      });
}

}  // namespace ostrelon
