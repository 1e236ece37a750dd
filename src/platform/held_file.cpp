#include "platform/held_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/system_file_error.h"

namespace ostrelon {
namespace {

constexpr std::string_view kFolderPrefix = "ostrelon-private-";

bool isOwnFolder(const FilePath& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

/// The folder's descriptor with the lock that marks it as used, or -1 if someone else holds it.
int lockFolder(const FilePath& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return -1;
  if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) return descriptor;
  ::close(descriptor);
  return -1;
}

void removeAbandonedFolders(const FilePath& temporaryFolder) {
  std::error_code ignored;
  std::vector<FilePath> candidates;
  for (std::filesystem::directory_iterator entry(temporaryFolder, ignored), end; !ignored && entry != end;
       entry.increment(ignored)) {
    if (entry->path().filename().string().starts_with(kFolderPrefix)) candidates.push_back(entry->path());
  }
  for (const FilePath& folder : candidates) {
    if (!isOwnFolder(folder)) continue;
    const int lock = lockFolder(folder);
    if (lock < 0) continue;
    std::filesystem::remove_all(folder, ignored);
    ::close(lock);
  }
}

FilePath makePrivateFolder(const FilePath& temporaryFolder) {
  std::string pattern = (temporaryFolder / (std::string(kFolderPrefix) + "XXXXXX")).string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw systemError(errno, FileAttempt::makingFolder, temporaryFolder / kFolderPrefix);
  }
  return pattern;
}

}  // namespace

HeldFile HeldFile::createPrivate(const FilePath& temporaryFolder, const std::string& name) {
  std::error_code error;
  std::filesystem::create_directories(temporaryFolder, error);
  if (error) throw systemError(error.value(), FileAttempt::makingFolder, temporaryFolder);
  removeAbandonedFolders(temporaryFolder);

  HeldFile file;
  const FilePath folder = makePrivateFolder(temporaryFolder);
  file.path_ = folder / name;
  file.removesFile_ = true;
  file.folderLock_ = lockFolder(folder);
  file.descriptor_ =
      ::open(file.path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file.descriptor_ < 0) throw systemError(errno, FileAttempt::writing, file.path_);
  return file;
}

HeldFile HeldFile::open(const FilePath& path) {
  HeldFile file;
  file.path_ = path;
  // Without O_NONBLOCK a named pipe would hold the program up for ever.
  file.descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file.descriptor_ < 0) throw systemError(errno, FileAttempt::reading, path);
  struct stat status {};
  if (::fstat(file.descriptor_, &status) != 0) throw systemError(errno, FileAttempt::reading, path);
  if (S_ISDIR(status.st_mode)) throw systemError(EISDIR, FileAttempt::reading, path);
  if (!S_ISREG(status.st_mode)) {
    throw FileError("Could not " + attemptText(FileAttempt::reading, path) + ": it is not an ordinary file.");
  }
  file.size_ = static_cast<std::uint64_t>(status.st_size);
  return file;
}

HeldFile::HeldFile(HeldFile&& other) noexcept
    : path_(std::move(other.path_)),
      size_(other.size_),
      descriptor_(std::exchange(other.descriptor_, -1)),
      folderLock_(std::exchange(other.folderLock_, -1)),
      removesFile_(std::exchange(other.removesFile_, false)) {}

HeldFile& HeldFile::operator=(HeldFile&& other) noexcept {
  if (this != &other) {
    release();
    path_ = std::move(other.path_);
    size_ = other.size_;
    descriptor_ = std::exchange(other.descriptor_, -1);
    folderLock_ = std::exchange(other.folderLock_, -1);
    removesFile_ = std::exchange(other.removesFile_, false);
  }
  return *this;
}

HeldFile::~HeldFile() { release(); }

void HeldFile::release() {
  if (removesFile_) {
    if (isAtPath()) ::unlink(path_.c_str());
    ::rmdir(path_.parent_path().c_str());
  }
  if (descriptor_ >= 0) ::close(descriptor_);
  if (folderLock_ >= 0) ::close(folderLock_);
}

void HeldFile::append(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throw systemError(errno, FileAttempt::writing, path_);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
    size_ += static_cast<std::uint64_t>(written);
  }
}

void HeldFile::seal() {
  if (::fchmod(descriptor_, S_IRUSR) != 0) throw systemError(errno, FileAttempt::writing, path_);
  removesFile_ = false;
}

void HeldFile::read(const std::function<void(std::string_view piece)>& take) const {
  std::vector<char> buffer(std::size_t{1} << 18);
  off_t position = 0;
  while (true) {
    const ssize_t count = ::pread(descriptor_, buffer.data(), buffer.size(), position);
    if (count < 0) {
      if (errno == EINTR) continue;
      throw systemError(errno, FileAttempt::reading, path_);
    }
    if (count == 0) return;
    take({buffer.data(), static_cast<std::size_t>(count)});
    position += count;
  }
}

bool HeldFile::isAtPath() const {
  struct stat atPath {};
  struct stat held {};
  return descriptor_ >= 0 && ::stat(path_.c_str(), &atPath) == 0 && ::fstat(descriptor_, &held) == 0 &&
         atPath.st_dev == held.st_dev && atPath.st_ino == held.st_ino;
}

}  // namespace ostrelon
