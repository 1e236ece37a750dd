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
};

/// Below a private home: `settings.json`, `Documents` and `tmp` in it.
UserPaths userPathsBelow(const FilePath& home);

/// Gives the value of an environment variable, empty when it is not set.
using Environment = std::function<std::string(const std::string& name)>;

/// The user's own, by the XDG conventions: settings below $XDG_CONFIG_HOME or ~/.config, the Documents
/// folder as `user-dirs.dirs` there names it, else ~/Documents, temporary files in $TMPDIR or /tmp.
UserPaths userPaths(FileSystem& files, const Environment& environment);

}  // namespace ostrelon
