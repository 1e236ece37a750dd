#include "platform/system_file_error.h"

#include <cerrno>
#include <system_error>

namespace ostrelon {

std::string attemptText(FileAttempt attempt, const FilePath& path) {
  switch (attempt) {
    case FileAttempt::reading:
      return "read " + quotedName(path);
    case FileAttempt::writing:
      return "write " + quotedName(path);
    case FileAttempt::listing:
      return "look into the folder " + quotedName(path);
    case FileAttempt::makingFolder:
      return "make the folder " + quotedName(path);
    case FileAttempt::removing:
      return "remove " + quotedName(path);
  }
  return {};
}

FileError systemError(int number, FileAttempt attempt, const FilePath& path) {
  const std::string action = attemptText(attempt, path);
  switch (number) {
    case ENOENT:
      if (attempt == FileAttempt::makingFolder) {
        return FileError("Could not " + action + ": the folder above it does not exist.");
      }
      if (attempt == FileAttempt::writing) {
        return FileError("The folder " + quotedName(path.parent_path()) + " does not exist.");
      }
      return FileError(attempt == FileAttempt::listing ? "The folder " + quotedName(path) + " does not exist."
                                                       : "The file " + quotedName(path) + " does not exist.");
    case ENOTDIR:
      return FileError("Could not " + action + ": a part of its path is not a folder.");
    case EISDIR:
      return FileError("Could not " + action + ": it is a folder.");
    case EACCES:
    case EPERM:
      return FileError("You do not have permission to " + action + ".");
    case EROFS:
      return FileError("Could not " + action + ": the disk can only be read.");
    case ENOSPC:
      return FileError("Could not " + action + ": the disk is full.");
    case EDQUOT:
      return FileError("Could not " + action + ": your share of the disk is used up.");
    case EFBIG:
      return FileError("Could not " + action + ": the file would be too large.");
    case ENAMETOOLONG:
      return FileError("Could not " + action + ": the name is too long.");
    case ELOOP:
      return FileError("Could not " + action + ": its links lead in a circle.");
    case EMFILE:
    case ENFILE:
      return FileError("Could not " + action + ": too many files are open.");
    case EIO:
      return FileError("Could not " + action + ": the disk reported an error.");
    default:
      return FileError("Could not " + action + ": " + std::generic_category().message(number) + ".");
  }
}

}  // namespace ostrelon
