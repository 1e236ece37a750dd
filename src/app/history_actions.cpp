#include "app/history_actions.h"

#include <algorithm>
#include <utility>

#include "app/application.h"
#include "documents/history_prompts.h"

namespace ostrelon {
namespace {

std::string nameOf(const HistoryRow& row) { return "“" + row.title + "”"; }

void report(Application& application, const std::string& text) {
  Messages& messages = application.workspace().messages;
  messages.appendSystem(text);
  messages.showToast(text, DocumentToastState::Style::success);
}

// Undo knows entities alone: systems are added where they are missing, and stay as they are where not.
// Gives whether walls look different now.
bool addMissingSystems(const Drawing& then, Drawing& now) {
  bool differs = false;
  for (const WallSystemSpec& system : then.wallSystemSpecs) {
    const bool isUsed =
        std::any_of(then.entities.begin(), then.entities.end(), [&](const SketchEntity& entity) {
          const auto* wall = std::get_if<WallEntity>(&entity);
          return wall != nullptr && wall->systemSpecID == system.id;
        });
    if (!isUsed) continue;
    const WallSystemSpec* present = now.wallSystem(system.id);
    if (present == nullptr) {
      now.wallSystemSpecs.push_back(system);
    } else if (*present != system) {
      differs = true;
    }
  }
  return differs;
}

}  // namespace

HistoryActions historyActions(const HistoryGroup& group, const HistoryRow& row) {
  return {row.checkpoint() != nullptr, group.branchID.has_value() && !group.isCurrentBranch};
}

void restoreFromHistory(Application& application, const HistoryRow& row, const Drawing& drawing) {
  Sketch& sketch = application.workspace().sketch;
  if (sketch.entities() == drawing.entities) {
    report(application, "The drawing is already that of " + nameOf(row) + ".");
    return;
  }
  const auto scope = application.workspace().change();
  bool systemsDiffer = false;
  sketch.edit([&](Drawing& open) {
    systemsDiffer = addMissingSystems(drawing, open);
    open.entities = drawing.entities;
  });
  sketch.keepSelectionOfEntities();
  report(application, "Restored " + nameOf(row) + ".");
  if (systemsDiffer) {
    application.workspace().messages.appendSystem(
        "Wall systems have changed since; the walls take their present sizes.");
  }
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
    switchBranchFromMenu(application.workspace().document, checkpoint->branchID);
  }
}

}  // namespace ostrelon
