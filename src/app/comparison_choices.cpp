#include "app/comparison_choices.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/dialogs.h"

namespace ostrelon {
namespace {

void askForDocument(Application& application, std::function<void(const FilePath&)> chosen) {
  OpenPanel panel;
  if (const auto& url = *application.workspace().document.fileURL) panel.startingFolder = url->parent_path();
  application.host().dialogs.ask(panel, [chosen = std::move(chosen)](const DialogAnswer& answer) {
    if (answer) chosen(standardizedPath(*answer));
  });
}

}  // namespace

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

std::vector<ComparisonChoice> mergeChoices(Application& application) {
  std::vector<ComparisonChoice> choices = comparisonChoices(application);
  const DocumentHistoryBranch* current = application.workspace().document.history->currentBranch();
  std::erase_if(choices, [&](const ComparisonChoice& choice) {
    return choice.kind == ComparisonChoice::Kind::lastSave ||
           (choice.kind == ComparisonChoice::Kind::branch && current != nullptr &&
            choice.name == current->name);
  });
  return choices;
}

void compareWith(Application& application, const ComparisonChoice& choice) {
  application.mergeReview().cancel();
  if (choice.kind == ComparisonChoice::Kind::lastSave) {
    application.comparison().beginWithLastSave();
  } else {
    application.comparison().beginWith(choice.name);
  }
}

void compareWith(Application& application, DrawingSource other) {
  application.mergeReview().cancel();
  application.comparison().begin(std::move(other));
}

void compareWithPanel(Application& application) {
  askForDocument(application, [&application](const FilePath& path) {
    application.mergeReview().cancel();
    application.comparison().beginWithFile(path);
  });
}

void mergeWith(Application& application, const std::string& name) {
  application.comparison().end();
  application.mergeReview().begin(name);
}

void mergeWithPanel(Application& application) {
  askForDocument(application, [&application](const FilePath& path) {
    application.comparison().end();
    application.mergeReview().begin(fileDrawingSource(application.host().files, path));
  });
}

}  // namespace ostrelon
