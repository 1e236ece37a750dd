#include "platform/user_paths.h"

#include <sstream>

namespace ostrelon {
namespace {

// The convention wants relative paths in these variables to be passed over.
FilePath absoluteOr(const std::string& value, const FilePath& otherwise) {
  return FilePath(value).is_absolute() ? FilePath(value) : otherwise;
}

// The line  XDG_DOCUMENTS_DIR="$HOME/Papers"  of user-dirs.dirs; the value is absolute or below $HOME.
FilePath documentsFolderIn(const std::string& text, const FilePath& home) {
  constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=\"";
  constexpr std::string_view kHome = "$HOME/";
  std::istringstream lines(text);
  FilePath folder;
  for (std::string line; std::getline(lines, line);) {
    line.erase(0, line.find_first_not_of(" \t"));
    if (!line.starts_with(kKey)) continue;
    std::string value = line.substr(kKey.size());
    value = value.substr(0, value.find('"'));
    folder = value.starts_with(kHome) ? home / value.substr(kHome.size()) : absoluteOr(value, {});
  }
  return folder;
}

}  // namespace

UserPaths userPathsBelow(const FilePath& home) {
  const FilePath root = standardizedPath(home);
  return {root / "settings.json", root / "Documents", root / "tmp", root / "state"};
}

UserPaths userPaths(FileSystem& files, const Environment& environment) {
  const FilePath home = absoluteOr(environment("HOME"), "/");
  const FilePath configuration = absoluteOr(environment("XDG_CONFIG_HOME"), home / ".config");
  UserPaths paths;
  paths.settingsFile = standardizedPath(configuration / "ostrelon" / "settings.json");
  FilePath documents;
  try {
    documents = documentsFolderIn(files.readFile(configuration / "user-dirs.dirs"), home);
  } catch (const FileError&) {
    // Few servers and many small systems have no such file.
  }
  paths.documentsFolder = standardizedPath(documents.empty() ? home / "Documents" : documents);
  paths.temporaryFolder = standardizedPath(absoluteOr(environment("TMPDIR"), "/tmp"));
  paths.stateFolder =
      standardizedPath(absoluteOr(environment("XDG_STATE_HOME"), home / ".local" / "state") / "ostrelon");
  return paths;
}

}  // namespace ostrelon
