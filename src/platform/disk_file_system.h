// Files of a POSIX system. A write goes into a temporary file beside its target, which is brought to disk by
// fsync and takes the target's place in one step, so that a crash at any moment leaves the old file or the
// new one. Errors are sentences that name the file.
#pragma once

#include <sys/types.h>

#include <functional>

#include "platform/file_system.h"

namespace ostrelon {

/// The steps of a write, and of the making of folders, as the system offers them: each returns -1 and sets
/// `errno` on failure. Tests replace one at a time to see that every failure is reported and leaves nothing
/// half done.
struct FileSystemCalls {
  std::function<int(const char* path, int flags, mode_t mode)> open;
  std::function<ssize_t(int file, const void* bytes, std::size_t count)> write;
  std::function<int(int file, mode_t mode)> fchmod;
  std::function<int(int file)> fsync;
  std::function<int(int file)> close;
  std::function<int(const char* from, const char* to)> rename;
  std::function<int(const char* from, const char* to)> renameNew;  ///< fails where `to` is there
  std::function<int(const char* path)> unlink;
  std::function<int(const char* path, mode_t mode)> mkdir;

  static FileSystemCalls ofTheSystem();
};

class DiskFileSystem final : public FileSystem {
 public:
  /// Also has writes beyond the process's file size limit come back as errors, where the system would
  /// end the process by a signal.
  explicit DiskFileSystem(FileSystemCalls calls = FileSystemCalls::ofTheSystem());

  std::string readFile(const FilePath& path) override;
  std::unique_ptr<PendingFile> prepareFile(const FilePath& path, const Producer& produce) override {
    return prepareFile(path, produce, 0666);
  }
  std::unique_ptr<PendingFile> preparePrivateFile(const FilePath& path, const Producer& produce) override {
    return prepareFile(path, produce, 0600);
  }
  std::optional<FileInfo> info(const FilePath& path) override;
  bool isLink(const FilePath& path) override;
  std::vector<std::string> list(const FilePath& folder) override;
  void createFolders(const FilePath& folder) override;
  void copyFile(const FilePath& from, const FilePath& to) override;
  void removeFile(const FilePath& path) override;
  std::unique_ptr<FileLock> lock(const FilePath& folder) override;
  void createPrivateFolder(const FilePath& folder) override;
  std::unique_ptr<GrowingFile> createGrowingFile(const FilePath& path) override;
  void syncFolder(const FilePath& folder) override;
  std::unique_ptr<FileLock> tryLockFile(const FilePath& path) override;

 private:
  std::unique_ptr<PendingFile> prepareFile(const FilePath& path, const Producer& produce, mode_t newMode);
  void createFolders(const FilePath& folder, mode_t mode);

  FileSystemCalls calls_;
};

}  // namespace ostrelon
