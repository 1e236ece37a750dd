#include "documents/document_history_state.h"

#include "platform/unicode.h"

namespace ostrelon {

const DocumentHistoryBranch* DocumentHistoryState::currentBranch() const {
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    if (branch.id == metadata.currentBranchID) return &branch;
  }
  return nullptr;
}

std::vector<DocumentCheckpoint> DocumentHistoryState::allCheckpoints() const {
  std::vector<DocumentCheckpoint> all;
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    const auto found = checkpointsByBranch.find(branch.id);
    if (found != checkpointsByBranch.end()) all.insert(all.end(), found->second.begin(), found->second.end());
  }
  return all;
}

const DocumentHistoryBranch* DocumentHistoryState::findBranch(std::string_view nameOrID) const {
  const std::string wanted = lowerCased(trimmed(nameOrID));
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    if (lowerCased(branch.id) == wanted || lowerCased(branch.name) == wanted) return &branch;
  }
  return nullptr;
}

std::optional<DocumentHistoryState::FoundCheckpoint> DocumentHistoryState::findCheckpoint(
    std::string_view id) const {
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    const auto found = checkpointsByBranch.find(branch.id);
    if (found == checkpointsByBranch.end()) continue;
    for (const DocumentCheckpoint& checkpoint : found->second) {
      if (checkpoint.id == id) return FoundCheckpoint{branch, checkpoint};
    }
  }
  return std::nullopt;
}

}  // namespace ostrelon
