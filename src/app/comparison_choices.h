// What the open drawing can be compared with, as a list to choose from.
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
void compareWith(Application& application, const ComparisonChoice& choice);
/// Asks for a document, starting in the folder of the open one, and compares with it.
void compareWithPanel(Application& application);

}  // namespace ostrelon
