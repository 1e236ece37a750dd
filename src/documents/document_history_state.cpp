#include "documents/document_history_state.h"

#include <deque>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

using Parents = std::unordered_map<std::string, std::vector<std::string>>;

Parents parentsOf(const DocumentHistoryState& state) {
  Parents parents;
  for (const auto& [branch, checkpoints] : state.checkpointsByBranch) {
    const std::string* previous = nullptr;
    for (const DocumentCheckpoint& checkpoint : checkpoints) {
      std::vector<std::string>& own = parents[checkpoint.id];
      if (previous != nullptr) own.push_back(*previous);
      if (checkpoint.sourceCheckpointID) own.push_back(*checkpoint.sourceCheckpointID);
      own.insert(own.end(), checkpoint.mergedCheckpointIDs.begin(), checkpoint.mergedCheckpointIDs.end());
      previous = &checkpoint.id;
    }
  }
  return parents;
}

// The steps from the given checkpoints to each that they have come from; 0 for themselves. What the history
// does not hold is passed over.
std::unordered_map<std::string, int> stepsTo(const Parents& parents, const std::vector<std::string>& from) {
  std::unordered_map<std::string, int> steps;
  std::deque<std::string> next;
  const auto reach = [&](const std::string& id, int distance) {
    if (parents.contains(id) && steps.emplace(id, distance).second) next.push_back(id);
  };
  for (const std::string& id : from) reach(id, 0);
  for (; !next.empty(); next.pop_front()) {
    const int distance = steps.at(next.front()) + 1;
    for (const std::string& parent : parents.at(next.front())) reach(parent, distance);
  }
  return steps;
}

}  // namespace

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

std::vector<DocumentHistoryState::FoundCheckpoint> DocumentHistoryState::findCheckpoints(
    std::string_view beginning) const {
  std::vector<FoundCheckpoint> all;
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    const auto found = checkpointsByBranch.find(branch.id);
    if (found == checkpointsByBranch.end()) continue;
    for (const DocumentCheckpoint& checkpoint : found->second) {
      if (checkpoint.id.starts_with(beginning)) all.push_back({branch, checkpoint});
    }
  }
  return all;
}

std::optional<std::string> DocumentHistoryState::nearestCommonAncestor(const std::vector<std::string>& ours,
                                                                       const std::string& theirs) const {
  const Parents parents = parentsOf(*this);
  const auto fromOurs = stepsTo(parents, ours);
  const auto fromTheirs = stepsTo(parents, {theirs});
  // What another common ancestor has come from is farther than that one.
  std::unordered_set<std::string> farther;
  for (const auto& [id, steps] : fromOurs) {
    if (!fromTheirs.contains(id)) continue;
    farther.insert(parents.at(id).begin(), parents.at(id).end());
  }
  std::optional<std::string> nearest;
  int fewest = 0;
  for (const auto& [id, steps] : fromOurs) {
    const auto other = fromTheirs.find(id);
    if (other == fromTheirs.end() || farther.contains(id)) continue;
    const int both = steps + other->second;
    if (nearest && std::tie(fewest, *nearest) <= std::tie(both, id)) continue;
    nearest = id;
    fewest = both;
  }
  return nearest;
}

}  // namespace ostrelon
