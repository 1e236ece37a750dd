// The named checkpoints of a document on their branches, as they are held in memory.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/date.h"

namespace ostrelon {

struct DocumentCheckpoint {
  std::string id;  ///< "cp-" and a random identifier in lower case
  std::string message;
  Date createdAt;
  std::string fileName;
  std::optional<std::string> sourceCheckpointID;  ///< what a branch's first checkpoint was copied from
  std::vector<std::string> mergedCheckpointIDs;   ///< what was merged into the drawing since the one before
  friend bool operator==(const DocumentCheckpoint&, const DocumentCheckpoint&) = default;
};

struct DocumentHistoryBranch {
  std::string id;    ///< the normalised name; also the folder's
  std::string name;  ///< as the user wrote it
  Date createdAt;
  std::optional<std::string> sourceCheckpointID;
  std::optional<std::string> headCheckpointID;  ///< the newest checkpoint
  friend bool operator==(const DocumentHistoryBranch&, const DocumentHistoryBranch&) = default;
};

struct DocumentHistoryMetadata {
  int v = 1;
  std::optional<std::string> documentFileName;
  std::string currentBranchID = "main";
  std::vector<DocumentHistoryBranch> branches{{"main", "main", Date{}, std::nullopt, std::nullopt}};
  friend bool operator==(const DocumentHistoryMetadata&, const DocumentHistoryMetadata&) = default;
};

/// The default state is that of a document with no store: one empty branch, `main`.
struct DocumentHistoryState {
  DocumentHistoryMetadata metadata;
  /// By branch id, oldest first.
  std::map<std::string, std::vector<DocumentCheckpoint>> checkpointsByBranch{{"main", {}}};

  /// Null when `currentBranchID` names no branch.
  const DocumentHistoryBranch* currentBranch() const;
  /// All checkpoints, branch by branch in their order.
  std::vector<DocumentCheckpoint> allCheckpoints() const;
  /// By `id` or `name`, without regard to case or surrounding white space.
  const DocumentHistoryBranch* findBranch(std::string_view nameOrID) const;
  struct FoundCheckpoint {
    DocumentHistoryBranch branch;
    DocumentCheckpoint checkpoint;
  };
  /// By exact id.
  std::optional<FoundCheckpoint> findCheckpoint(std::string_view id) const;
  /// The checkpoints whose identifiers begin so.
  std::vector<FoundCheckpoint> findCheckpoints(std::string_view beginning) const;
  /// The nearest checkpoint that a drawing, which has come from all of `ours`, and the checkpoint `theirs`
  /// have both come from: along their branches, the checkpoints that these began with, and merges. It may be
  /// one of those given. Of several that are equally near, the one with the fewest steps to both.
  std::optional<std::string> nearestCommonAncestor(const std::vector<std::string>& ours,
                                                   const std::string& theirs) const;

  friend bool operator==(const DocumentHistoryState&, const DocumentHistoryState&) = default;
};

}  // namespace ostrelon
