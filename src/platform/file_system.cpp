#include "platform/file_system.h"

namespace ostrelon {

std::unique_ptr<FileLock> FileSystem::lock(const FilePath&) { return std::make_unique<FileLock>(); }

std::unique_ptr<GrowingFile> FileSystem::createGrowingFile(const FilePath& path) {
  throw FileError("Could not write " + quotedName(path) + ": no file can grow here.");
}

void FileSystem::syncFolder(const FilePath&) {}

std::unique_ptr<FileLock> FileSystem::tryLockFile(const FilePath&) { return std::make_unique<FileLock>(); }

FilePath standardizedPath(const FilePath& path) {
  std::error_code ignored;
  FilePath absolute = path.is_absolute() ? path : std::filesystem::absolute(path, ignored);
  if (absolute.empty()) absolute = "/" / path;
  FilePath standard = absolute.lexically_normal();
  // A trailing slash leaves an empty last part; the root keeps its own.
  if (!standard.has_filename() && standard.has_relative_path()) standard = standard.parent_path();
  return standard;
}

std::string quotedName(const FilePath& path) {
  const FilePath name = path.filename();
  return "“" + (name.empty() ? path : name).string() + "”";
}

}  // namespace ostrelon
