// What the open drawing can be compared with or have merged into it, as a list to choose from.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/application.h"

namespace ostrelon {

struct ComparisonChoice {
  enum class Kind { lastSave, branch, checkpoint };

  Kind kind = Kind::lastSave;
  std::string title;         ///< "Last Save", the name of a branch, the message of a checkpoint
  std::string detail;        ///< of a branch or a checkpoint: "3 checkpoints", "on main"
  std::optional<Date> date;  ///< of the last save or the checkpoint
  std::string name;          ///< that of a branch or a checkpoint for `Comparison::beginWith`
};

/// The last save, the branches that have a checkpoint, and the checkpoints, newest first. Reads the history.
std::vector<ComparisonChoice> comparisonChoices(Application& application);
/// The same without the last save, and without the current branch, of which there is nothing to merge.
std::vector<ComparisonChoice> mergeChoices(Application& application);

// --- One of the two is under way at a time: beginning a comparison gives up a merge, and the other way
// round.

void compareWith(Application& application, const ComparisonChoice& choice);
void compareWith(Application& application, DrawingSource other);
/// Asks for a document, starting in the folder of the open one, and compares with it.
void compareWithPanel(Application& application);
void mergeWith(Application& application, const std::string& name);
/// Asks for a document in the same way, and merges it.
void mergeWithPanel(Application& application);

}  // namespace ostrelon
