// What lies in a folder after a crash, read as the next start of the program would.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/file_system.h"

namespace ostrelon::testing {

/// States are those that `ProgramSession::draw` makes; -1 is none of them.
struct SavedWorld {
  std::optional<int> plan;           ///< of plan.ostrel; absent when the file is
  std::optional<int> interval;       ///< minutes of auto-save in the settings
  std::string currentBranch;         ///< its identifier; empty without a history
  std::map<std::string, int> heads;  ///< state of each branch's newest checkpoint, by identifier
  bool hasAutoSave = false;          ///< the settings tell of one
  /// What cannot be read, in a sentence; empty when all is whole.
  std::string damage;
};

/// Reads all that the program has written below a home folder. Files that a killed save has left under
/// a temporary name are no documents.
SavedWorld readSavedWorld(const FilePath& home);

}  // namespace ostrelon::testing
