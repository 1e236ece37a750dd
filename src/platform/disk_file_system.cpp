#include "platform/disk_file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/system_file_error.h"
#include "platform/uuid.h"

namespace ostrelon {
namespace {

constexpr std::string_view kTemporaryStart = ".ostrelon-";
constexpr std::string_view kTemporaryEnd = ".tmp";
constexpr int kMostLinks = 40;  // as many links in a row as the system itself follows
constexpr std::size_t kReadAtOnce = std::size_t{1} << 20;
constexpr std::size_t kSpareCapacity = 64;  // lets parsers that read in blocks work without a copy
constexpr auto kLockPatience = std::chrono::milliseconds(1000);
constexpr auto kLockPause = std::chrono::milliseconds(5);

// An open file that closes itself.
class OpenFile {
 public:
  explicit OpenFile(int file) : file_(file) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (file_ >= 0) ::close(file_);
  }
  int get() const { return file_; }
  int release() { return std::exchange(file_, -1); }

 private:
  int file_;
};

FileInfo infoOf(const struct stat& status) {
  FileInfo info;
  info.isRegularFile = S_ISREG(status.st_mode);
  info.isFolder = S_ISDIR(status.st_mode);
  info.size = static_cast<std::uint64_t>(status.st_size);
  info.device = static_cast<std::uint64_t>(status.st_dev);
  info.inode = static_cast<std::uint64_t>(status.st_ino);
  const std::chrono::nanoseconds time =
      std::chrono::seconds(status.st_mtim.tv_sec) + std::chrono::nanoseconds(status.st_mtim.tv_nsec);
  info.modifiedNanoseconds = time.count();
  info.modifiedAt = Date(std::chrono::floor<std::chrono::microseconds>(time));
  return info;
}

std::string newTemporaryName() {
  return std::string(kTemporaryStart).append(UUID::random().text()).append(kTemporaryEnd);
}

bool isTemporaryName(std::string_view name) {
  if (!name.starts_with(kTemporaryStart) || !name.ends_with(kTemporaryEnd)) return false;
  name.remove_prefix(kTemporaryStart.size());
  name.remove_suffix(kTemporaryEnd.size());
  return UUID::parse(name).has_value();
}

// The file that a path means once links are followed. It need not exist.
FilePath followLinks(FilePath path) {
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code notALink;
    const FilePath target = std::filesystem::read_symlink(path, notALink);
    if (notALink) return path;
    path = path.parent_path() / target;
  }
  throw systemError(ELOOP, FileAttempt::writing, path);
}

// Calls fsync on a folder: a new name survives a power loss only after that. Gives an `errno`, or 0.
int makeNamesLast(const FileSystemCalls& calls, const FilePath& folder) {
  const int file = calls.open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
  // A folder that may be written but not read cannot be opened for fsync.
  if (file < 0) return errno == EACCES ? 0 : errno;
  const OpenFile open(file);
  // Some file systems have no fsync for folders and report EINVAL.
  return calls.fsync(file) != 0 && errno != EINVAL ? errno : 0;
}

NameTakenError nameTaken(const FilePath& path) {
  return NameTakenError("Could not write " + quotedName(path) + ": a file of that name is there.");
}

// Not every file system knows of a rename that replaces nothing; a second link to the file does the same.
int renameToNewName(const char* from, const char* to) {
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
  if (::link(from, to) == 0) {
    ::unlink(from);  // a first name that stays is one that a later save removes
    return 0;
  }
  if (errno != EPERM && errno != EOPNOTSUPP) return -1;
  // Neither is known: what remains is to look first.
  struct stat present {};
  if (::lstat(to, &present) == 0) {
    errno = EEXIST;
    return -1;
  }
  return std::rename(from, to);
}

// The file beside the target while it waits to take its place.
class PendingDiskFile final : public PendingFile {
 public:
  PendingDiskFile(const FileSystemCalls& calls, FilePath target, FilePath temporary)
      : calls_(calls), target_(std::move(target)), temporary_(std::move(temporary)) {}
  PendingDiskFile(const PendingDiskFile&) = delete;
  PendingDiskFile& operator=(const PendingDiskFile&) = delete;
  ~PendingDiskFile() override {
    if (!committed_) calls_.unlink(temporary_.c_str());
  }

  /// What the target was when the file was prepared; absent when nothing was there.
  void setReplaced(const std::optional<FileInfo>& replaced) { replaced_ = replaced; }
  void setInfo(const FileInfo& info) { info_ = info; }
  FileInfo info() const override { return info_; }

  void commit() override {
    if (replaced_) {
      struct stat present {};
      if (::stat(target_.c_str(), &present) == 0 && infoOf(present) != *replaced_) {
        throw FileError(quotedName(target_) +
                        " has been changed by another program and was not overwritten.");
      }
    }
    const auto& rename = replaced_ ? calls_.rename : calls_.renameNew;
    if (rename(temporary_.c_str(), target_.c_str()) != 0) {
      if (errno == EEXIST && !replaced_) throw nameTaken(target_);
      throw systemError(errno, FileAttempt::writing, target_);
    }
    committed_ = true;
    const int error = makeNamesLast(calls_, target_.parent_path());
    if (error != 0) throw systemError(error, FileAttempt::writing, target_);
  }

 private:
  FileSystemCalls calls_;
  FilePath target_;
  FilePath temporary_;
  std::optional<FileInfo> replaced_;
  FileInfo info_;
  bool committed_ = false;
};

// Temporary files that a killed process has left in a folder would stay for ever: no name leads to them.
// One that is a day old belongs to no save that is still under way.
void removeAbandoned(const FilePath& folder) {
  constexpr auto kAbandonedAfter = std::chrono::hours(24);
  const auto oldest = std::filesystem::file_time_type::clock::now() - kAbandonedAfter;
  std::error_code ignored;
  for (std::filesystem::directory_iterator entry(folder, ignored), end; entry != end;
       entry.increment(ignored)) {
    if (ignored) return;
    const std::string name = entry->path().filename().string();
    if (!isTemporaryName(name)) continue;
    const auto writtenAt = entry->last_write_time(ignored);
    if (!ignored && writtenAt < oldest) std::filesystem::remove(entry->path(), ignored);
  }
}

class DiskFileLock final : public FileLock {
 public:
  explicit DiskFileLock(int file) : file_(file) {}

 private:
  OpenFile file_;  // closing it releases the lock
};

class GrowingDiskFile final : public GrowingFile {
 public:
  GrowingDiskFile(const FileSystemCalls& calls, FilePath path, int file)
      : calls_(calls), path_(std::move(path)), file_(file) {}

  void append(std::string_view bytes) override {
    std::size_t written = 0;
    while (written < bytes.size()) {
      const ssize_t count = calls_.write(file_.get(), bytes.data() + written, bytes.size() - written);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) {
        const int error = errno;
        // A part of a record would hide those behind it.
        if (written > 0 && ::ftruncate(file_.get(), size_) == 0) ::lseek(file_.get(), size_, SEEK_SET);
        throw systemError(error, FileAttempt::writing, path_);
      }
      written += static_cast<std::size_t>(count);
    }
    size_ += static_cast<off_t>(written);
  }

  void sync() override {
    if (calls_.fsync(file_.get()) != 0) throw systemError(errno, FileAttempt::writing, path_);
  }

 private:
  FileSystemCalls calls_;
  FilePath path_;
  OpenFile file_;
  off_t size_ = 0;
};

}  // namespace

FileSystemCalls FileSystemCalls::ofTheSystem() {
  return {
      [](const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); },
      ::write,
      ::fchmod,
      ::fsync,
      ::close,
      [](const char* from, const char* to) { return std::rename(from, to); },
      renameToNewName,
      ::unlink,
      ::mkdir,
  };
}

DiskFileSystem::DiskFileSystem(FileSystemCalls calls) : calls_(std::move(calls)) {
  std::signal(SIGXFSZ, SIG_IGN);
}

std::string DiskFileSystem::readFile(const FilePath& path) {
  // Without blocking, so that opening a pipe with no writer cannot hold the program.
  const OpenFile file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.get() < 0) throw systemError(errno, FileAttempt::reading, path);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) throw systemError(errno, FileAttempt::reading, path);
  if (S_ISDIR(status.st_mode)) throw systemError(EISDIR, FileAttempt::reading, path);
  if (!S_ISREG(status.st_mode)) {
    throw FileError("Could not " + attemptText(FileAttempt::reading, path) + ": it is not an ordinary file.");
  }
  std::string bytes;
  const auto expected = static_cast<std::size_t>(status.st_size);
  bytes.reserve(expected + kSpareCapacity);
  std::size_t filled = 0;
  while (true) {
    // The size is a hint: the file may grow or shrink meanwhile, and some report none. A piece at a time
    // stays in the processor's cache between being allocated and being filled.
    const std::size_t wanted =
        filled < expected ? std::min(expected, filled + kReadAtOnce) : filled + kReadAtOnce;
    bytes.resize(wanted);
    const ssize_t count = ::read(file.get(), bytes.data() + filled, wanted - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw systemError(errno, FileAttempt::reading, path);
    filled += static_cast<std::size_t>(count);
    if (count == 0 || (filled == expected && expected > 0)) break;
  }
  bytes.resize(filled);
  return bytes;
}

std::unique_ptr<PendingFile> DiskFileSystem::prepareFile(const FilePath& path, const Producer& produce,
                                                         mode_t newMode) {
  const FilePath target = followLinks(standardizedPath(path));
  struct stat old {};
  const bool replaces = ::stat(target.c_str(), &old) == 0;
  if (replaces) {
    if (S_ISDIR(old.st_mode)) throw systemError(EISDIR, FileAttempt::writing, target);
    if (!S_ISREG(old.st_mode)) {
      throw FileError("Could not " + attemptText(FileAttempt::writing, target) +
                      ": it is not an ordinary file.");
    }
    // The new file would take the place of one that is protected from writing: ask the system whether
    // it may be written, as for a write in place.
    if (::access(target.c_str(), W_OK) != 0) throw systemError(errno, FileAttempt::writing, target);
  }

  // A file that will take over the permissions of an old one is closed to others until it has them.
  const mode_t firstMode = replaces ? 0600 : newMode;
  FilePath temporary;
  int created = -1;
  do {
    temporary = target.parent_path() / newTemporaryName();
    created = calls_.open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, firstMode);
  } while (created < 0 && errno == EEXIST);
  if (created < 0) throw systemError(errno, FileAttempt::writing, target);
  OpenFile file(created);
  auto pending = std::make_unique<PendingDiskFile>(calls_, target, temporary);
  if (replaces) pending->setReplaced(infoOf(old));

  produce([&](std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t count = calls_.write(file.get(), bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) throw systemError(errno, FileAttempt::writing, target);
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
  });

  if (replaces) {
    struct stat made {};
    if (::fstat(file.get(), &made) == 0 && (made.st_uid != old.st_uid || made.st_gid != old.st_gid)) {
      // Only some users may give files away; for all others the new file is their own. Its group may stay
      // where they belong to it.
      if (::fchown(file.get(), old.st_uid, old.st_gid) != 0) {
        [[maybe_unused]] const int grouped = ::fchown(file.get(), static_cast<uid_t>(-1), old.st_gid);
      }
    }
    if (calls_.fchmod(file.get(), old.st_mode & 07777U) != 0) {
      throw systemError(errno, FileAttempt::writing, target);
    }
  }
  if (calls_.fsync(file.get()) != 0) throw systemError(errno, FileAttempt::writing, target);
  struct stat written {};
  if (::fstat(file.get(), &written) != 0) throw systemError(errno, FileAttempt::writing, target);
  pending->setInfo(infoOf(written));
  if (calls_.close(file.release()) != 0) throw systemError(errno, FileAttempt::writing, target);
  removeAbandoned(target.parent_path());
  return pending;
}

std::optional<FileInfo> DiskFileSystem::info(const FilePath& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return infoOf(status);
}

bool DiskFileSystem::isLink(const FilePath& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::vector<std::string> DiskFileSystem::list(const FilePath& folder) {
  std::error_code error;
  std::vector<std::string> names;
  std::filesystem::directory_iterator entry(folder, error);
  if (error) throw systemError(error.value(), FileAttempt::listing, folder);
  while (entry != std::filesystem::directory_iterator()) {
    names.push_back(entry->path().filename().string());
    entry.increment(error);
    if (error) throw systemError(error.value(), FileAttempt::listing, folder);
  }
  return names;
}

void DiskFileSystem::createFolders(const FilePath& folder) { createFolders(folder, 0777); }

void DiskFileSystem::createPrivateFolder(const FilePath& folder) { createFolders(folder, 0700); }

void DiskFileSystem::createFolders(const FilePath& folder, mode_t mode) {
  std::vector<FilePath> missing;
  for (FilePath above = standardizedPath(folder); above.has_relative_path() && !exists(above);
       above = above.parent_path()) {
    missing.push_back(above);
  }
  for (auto path = missing.rbegin(); path != missing.rend(); ++path) {
    if (calls_.mkdir(path->c_str(), mode) != 0) {
      if (errno != EEXIST) throw systemError(errno, FileAttempt::makingFolder, folder);
      continue;  // another copy of the program was faster
    }
    const int error = makeNamesLast(calls_, path->parent_path());
    if (error != 0) throw systemError(error, FileAttempt::makingFolder, folder);
  }
  const auto there = info(folder);
  if (!there || !there->isFolder) throw systemError(ENOTDIR, FileAttempt::makingFolder, folder);
}

void DiskFileSystem::copyFile(const FilePath& from, const FilePath& to) {
  if (isTaken(to)) throw nameTaken(to);
  const std::string bytes = readFile(from);
  writeFile(to, bytes);
}

void DiskFileSystem::removeFile(const FilePath& path) {
  if (calls_.unlink(path.c_str()) != 0 && errno != ENOENT)
    throw systemError(errno, FileAttempt::removing, path);
}

std::unique_ptr<FileLock> DiskFileSystem::lock(const FilePath& folder) {
  const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return std::make_unique<FileLock>();
  auto held = std::make_unique<DiskFileLock>(file);
  const auto end = std::chrono::steady_clock::now() + kLockPatience;
  while (::flock(file, LOCK_EX | LOCK_NB) != 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(kLockPause);
  }
  return held;
}

std::unique_ptr<GrowingFile> DiskFileSystem::createGrowingFile(const FilePath& path) {
  const int file = calls_.open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file < 0) throw systemError(errno, FileAttempt::writing, path);
  return std::make_unique<GrowingDiskFile>(calls_, path, file);
}

void DiskFileSystem::syncFolder(const FilePath& folder) {
  const int error = makeNamesLast(calls_, folder);
  if (error != 0) throw systemError(error, FileAttempt::writing, folder);
}

std::unique_ptr<FileLock> DiskFileSystem::tryLockFile(const FilePath& path) {
  const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file < 0) throw systemError(errno, FileAttempt::writing, path);
  auto held = std::make_unique<DiskFileLock>(file);
  if (::flock(file, LOCK_EX | LOCK_NB) == 0) return held;
  // A file system that knows no locks takes nobody for alive: better offered twice than never.
  return errno == EWOULDBLOCK ? nullptr : std::move(held);
}

}  // namespace ostrelon
