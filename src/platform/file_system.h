// Files, as the host gives them. Everything that the program keeps goes through this interface, so
// that tests can make any step fail. Errors are thrown as `FileError` with a sentence for a person.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/user_error.h"

namespace ostrelon {

using FilePath = std::filesystem::path;

class FileError : public UserError {
 public:
  using UserError::UserError;
};

/// A file was to get a name that was free, and something else has come to have it meanwhile.
class NameTakenError : public FileError {
 public:
  using FileError::FileError;
};

/// What the system reports of one file. Two reads of the same unchanged file give equal values.
struct FileInfo {
  bool isRegularFile = false;
  bool isFolder = false;
  std::uint64_t size = 0;
  std::optional<Date> modifiedAt;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t modifiedNanoseconds = 0;  ///< since 1970, as fine as the file system keeps it

  friend bool operator==(const FileInfo&, const FileInfo&) = default;
};

/// A new content of a file in a temporary file beside its target, complete and synchronized by fsync, but not
/// yet in its place. Dropping it leaves the target as it was.
class PendingFile {
 public:
  PendingFile() = default;
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  virtual ~PendingFile() = default;

  /// What the system will report of the target once this has taken its place.
  virtual FileInfo info() const = 0;
  /// Moves the content over the target, in one step that lasts. Called at most once. What the target has
  /// become since this was prepared is not replaced: throws `NameTakenError` where nothing was there and
  /// something is now, and `FileError` where another program has written the file.
  virtual void commit() = 0;
};

/// Held while one of several running copies of the program works on the files of a folder; released when
/// destroyed.
class FileLock {
 public:
  FileLock() = default;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  virtual ~FileLock() = default;
};

/// A file of the user alone that grows piece by piece. What was appended outlives the program at once, and
/// the machine once it has been synced.
class GrowingFile {
 public:
  GrowingFile() = default;
  GrowingFile(const GrowingFile&) = delete;
  GrowingFile& operator=(const GrowingFile&) = delete;
  virtual ~GrowingFile() = default;

  /// Appends by one write. Throws `FileError` where not all of it could be written; the file ends then as
  /// it did before, where the system allows that.
  virtual void append(std::string_view bytes) = 0;
  /// Makes what was appended last. Waits for the disk; any thread may call it.
  virtual void sync() = 0;
};

/// Holds no state, so that a thread of its own may read or prepare a file.
class FileSystem {
 public:
  /// Takes the next piece of a file that is being written.
  using Writer = std::function<void(std::string_view bytes)>;
  /// Hands the content of a file to the writer, piece by piece.
  using Producer = std::function<void(const Writer& write)>;

  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  /// The whole content of a regular file.
  virtual std::string readFile(const FilePath& path) = 0;
  /// Writes what `produce` hands out into a temporary file beside the target, and calls fsync. Permissions of
  /// an old file are kept; a symbolic link is followed to its target. Missing folders are not made. If
  /// `produce` throws, the temporary file is removed and the exception passes on.
  virtual std::unique_ptr<PendingFile> prepareFile(const FilePath& path, const Producer& produce) = 0;
  /// The same, with mode 0600 where no file is there yet.
  virtual std::unique_ptr<PendingFile> preparePrivateFile(const FilePath& path, const Producer& produce) {
    return prepareFile(path, produce);
  }
  /// Absent when nothing is there or it cannot be looked at. Links are followed.
  virtual std::optional<FileInfo> info(const FilePath& path) = 0;
  /// Whether the path itself is a symbolic link, wherever it leads.
  virtual bool isLink(const FilePath& path) = 0;
  /// The names in a folder, hidden ones included, in no order.
  virtual std::vector<std::string> list(const FilePath& folder) = 0;
  /// Makes the folder and those above it; no error when it is there already.
  virtual void createFolders(const FilePath& folder) = 0;
  /// Copies a file to a place where nothing is yet, as durably as `writeFile`.
  virtual void copyFile(const FilePath& from, const FilePath& to) = 0;
  /// Removes a file; no error when nothing is there.
  virtual void removeFile(const FilePath& path) = 0;

  /// Waits a short while for the lock of a folder, and goes on without it when it does not come: the
  /// lock orders the writes of two copies and is never a reason to lose one.
  virtual std::unique_ptr<FileLock> lock(const FilePath& folder);

  /// Makes the folder and those above it, closed to other users where it is new.
  virtual void createPrivateFolder(const FilePath& folder) { createFolders(folder); }
  /// Makes a file of mode 0600 where none may be yet.
  virtual std::unique_ptr<GrowingFile> createGrowingFile(const FilePath& path);
  /// Brings the names in a folder to the disk. Any thread may call it.
  virtual void syncFolder(const FilePath& folder);
  /// The lock of a file, which is made if it is not there. Null where another holder has it.
  virtual std::unique_ptr<FileLock> tryLockFile(const FilePath& path);

  bool exists(const FilePath& path) { return info(path).has_value(); }
  /// Whether a new file cannot have this name. A link that leads nowhere takes it too.
  bool isTaken(const FilePath& path) { return exists(path) || isLink(path); }
  /// Writes the file and moves it over the target: after a crash the old file is there or the new
  /// one, never a part.
  void writeFile(const FilePath& path, const Producer& produce) { prepareFile(path, produce)->commit(); }
  void writeFile(const FilePath& path, std::string_view bytes) {
    writeFile(path, [bytes](const Writer& write) { write(bytes); });
  }
};

/// An absolute path with "." and ".." taken out, and no trailing slash.
FilePath standardizedPath(const FilePath& path);
/// The last part of a path in quotation marks, as messages name it.
std::string quotedName(const FilePath& path);

}  // namespace ostrelon
