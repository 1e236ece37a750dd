// Where a user's files lie.
#pragma once

#include <functional>
#include <string>

#include "platform/file_system.h"

namespace ostrelon {

struct UserPaths {
  FilePath settingsFile;
  FilePath documentsFolder;
  FilePath temporaryFolder;
  FilePath stateFolder;  ///< journals and kept drawings
};

/// Below a private home: `settings.json`, `Documents`, `tmp` and `state` in it.
UserPaths userPathsBelow(const FilePath& home);

/// Gives the value of an environment variable, empty when it is not set.
using Environment = std::function<std::string(const std::string& name)>;

/// The user's own, by the XDG conventions: settings below $XDG_CONFIG_HOME or ~/.config, the Documents
/// folder as `user-dirs.dirs` there names it, else ~/Documents, temporary files in $TMPDIR or /tmp, state
/// below $XDG_STATE_HOME or ~/.local/state.
UserPaths userPaths(FileSystem& files, const Environment& environment);

}  // namespace ostrelon
