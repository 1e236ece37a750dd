#include "app/comparison_choices.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/dialogs.h"

namespace ostrelon {

std::vector<ComparisonChoice> comparisonChoices(Application& application) {
  using Kind = ComparisonChoice::Kind;
  DocumentSession& document = application.workspace().document;
  std::vector<ComparisonChoice> choices;
  if (!document.fileURL->has_value()) return choices;
  choices.push_back({Kind::lastSave, "Last Save", {}, *document.lastSavedAt, {}});
  document.refreshHistory();
  const DocumentHistoryState& history = document.history;
  std::vector<ComparisonChoice> checkpoints;
  for (const DocumentHistoryBranch& branch : history.metadata.branches) {
    const auto found = history.checkpointsByBranch.find(branch.id);
    if (found == history.checkpointsByBranch.end()) continue;
    for (const DocumentCheckpoint& checkpoint : found->second) {
      checkpoints.push_back(
          {Kind::checkpoint, checkpoint.message, "on " + branch.name, checkpoint.createdAt, checkpoint.id});
    }
    if (!branch.headCheckpointID) continue;
    const std::size_t count = found->second.size();
    choices.push_back({Kind::branch, branch.name,
                       fmt::format("{} checkpoint{}", count, count == 1 ? "" : "s"), std::nullopt,
                       branch.name});
  }
  std::stable_sort(
      checkpoints.begin(), checkpoints.end(),
      [](const ComparisonChoice& a, const ComparisonChoice& b) { return a.date.value() > b.date.value(); });
  choices.insert(choices.end(), checkpoints.begin(), checkpoints.end());
  return choices;
}

void compareWith(Application& application, const ComparisonChoice& choice) {
  if (choice.kind == ComparisonChoice::Kind::lastSave) {
    application.comparison().beginWithLastSave();
  } else {
    application.comparison().beginWith(choice.name);
  }
}

void compareWithPanel(Application& application) {
  OpenPanel panel;
  if (const auto& url = *application.workspace().document.fileURL) panel.startingFolder = url->parent_path();
  application.host().dialogs.ask(panel, [&application](const DialogAnswer& answer) {
    if (answer) application.comparison().beginWithFile(standardizedPath(*answer));
  });
}

}  // namespace ostrelon
