#include "documents/journal_file.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "documents/content_hash.h"
#include "platform/uuid.h"

namespace ostrelon {
namespace {

constexpr std::string_view kMarkerEnd = ".session";
constexpr std::string_view kJournalEnd = ".journal";
constexpr std::size_t kIDLength = 36;
constexpr auto kSyncPause = std::chrono::milliseconds(500);

FilePath markerPath(const FilePath& folder, const std::string& session) {
  return folder / (session + std::string(kMarkerEnd));
}

// The number in the name of a journal, or of what is none, absent.
std::optional<int> numberOf(std::string_view name) {
  if (!name.ends_with(kJournalEnd) || name.size() <= kIDLength + 1 + kJournalEnd.size()) return std::nullopt;
  if (!UUID::parse(name.substr(0, kIDLength)) || name[kIDLength] != '-') return std::nullopt;
  int number = 0;
  for (const char digit : name.substr(kIDLength + 1, name.size() - kIDLength - 1 - kJournalEnd.size())) {
    if (digit < '0' || digit > '9' || number > 100'000'000) return std::nullopt;
    number = number * 10 + (digit - '0');
  }
  return number;
}

}  // namespace

// The thread, and what it shares with the main one.
class JournalFile::Syncing {
 public:
  Syncing(FileSystem& files, FilePath folder) : files_(files), folder_(std::move(folder)) {
    thread_ = std::thread([this] { run(); });
  }
  Syncing(const Syncing&) = delete;
  Syncing& operator=(const Syncing&) = delete;
  ~Syncing() {
    {
      const std::lock_guard lock(mutex_);
      ends_ = true;
    }
    wake_.notify_all();
    thread_.join();
  }

  GrowingFile* file() const { return file_.get(); }  // for the main thread alone

  // From now on this file; what is obsolete goes once the file has reached the disk.
  void setFile(std::shared_ptr<GrowingFile> file, std::vector<FilePath> obsolete) {
    const std::lock_guard lock(mutex_);
    file_ = std::move(file);
    obsolete_ = std::move(obsolete);
    isNew_ = file_ != nullptr;
    failure_.reset();
  }
  void grown() {
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(hasGrown_, true)) return;
    }
    wake_.notify_all();
  }
  void syncNow() {
    std::unique_lock lock(mutex_);
    syncOnce(lock);
    if (failure_) throw FileError(*std::exchange(failure_, std::nullopt));
  }
  std::optional<std::string> takeFailure() {
    const std::lock_guard lock(mutex_);
    return std::exchange(failure_, std::nullopt);
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    while (!ends_) {
      wake_.wait(lock, [this] { return ends_ || hasGrown_; });
      // Several edits reach the disk together.
      if (!ends_) wake_.wait_for(lock, kSyncPause, [this] { return ends_; });
      syncOnce(lock);
    }
  }

  void syncOnce(std::unique_lock<std::mutex>& lock) {
    if (!file_ || !std::exchange(hasGrown_, false)) return;
    const std::shared_ptr<GrowingFile> file = file_;
    const bool isNew = std::exchange(isNew_, false);
    const std::vector<FilePath> obsolete = std::exchange(obsolete_, {});
    lock.unlock();
    std::optional<std::string> failure;
    try {
      file->sync();
      if (isNew) files_.syncFolder(folder_);
      for (const FilePath& path : obsolete) files_.removeFile(path);
    } catch (const FileError& error) {
      failure = error.what();
    }
    lock.lock();
    if (failure && file == file_) failure_ = std::move(failure);
  }

  FileSystem& files_;
  FilePath folder_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::shared_ptr<GrowingFile> file_;
  std::vector<FilePath> obsolete_;
  std::optional<std::string> failure_;
  bool isNew_ = false;
  bool hasGrown_ = false;
  bool ends_ = false;
  std::thread thread_;
};

JournalFile::JournalFile(FileSystem& files, FilePath folder)
    : files_(files), folder_(std::move(folder)), session_(UUID::random().text()) {}

JournalFile::~JournalFile() {
  syncing_.reset();
  if (!marker_ || isOpen_) return;
  try {
    files_.removeFile(markerPath(folder_, session_));
  } catch (const FileError&) {
    // A marker without a journal is removed by the next start.
  }
}

void JournalFile::holdMarker() {
  if (marker_) return;
  files_.createPrivateFolder(folder_);
  marker_ = files_.tryLockFile(markerPath(folder_, session_));
}

void JournalFile::begin(std::string_view start) {
  holdMarker();
  FilePath path = folder_ / (session_ + "-" + std::to_string(++number_) + std::string(kJournalEnd));
  std::shared_ptr<GrowingFile> file = files_.createGrowingFile(path);
  try {
    file->append(start);
  } catch (const FileError&) {
    files_.removeFile(path);
    throw;
  }
  if (!syncing_) syncing_ = std::make_unique<Syncing>(files_, folder_);
  syncing_->setFile(std::move(file), paths_);
  paths_.push_back(std::move(path));
  isOpen_ = true;
  size_ = start.size();
  syncing_->grown();
}

void JournalFile::append(std::string_view frame) {
  syncing_->file()->append(frame);
  size_ += frame.size();
  syncing_->grown();
}

void JournalFile::remove() {
  if (syncing_) syncing_->setFile(nullptr, {});
  isOpen_ = false;
  size_ = 0;
  // Each goes even if another cannot.
  std::optional<FileError> failure;
  for (const FilePath& path : std::exchange(paths_, {})) {
    try {
      files_.removeFile(path);
    } catch (const FileError& error) {
      failure = error;
    }
  }
  if (failure) throw FileError(*failure);
}

void JournalFile::sync() {
  if (!isOpen_) return;
  syncing_->grown();
  syncing_->syncNow();
}

std::optional<std::string> JournalFile::takeFailure() {
  return syncing_ ? syncing_->takeFailure() : std::nullopt;
}

// --- Those of others

namespace {

// The journals of each session by their numbers.
std::map<std::string, std::map<int, FilePath>> sessionsIn(FileSystem& files, const FilePath& folder) {
  std::map<std::string, std::map<int, FilePath>> sessions;
  if (!files.exists(folder)) return sessions;
  for (const std::string& name : files.list(folder)) {
    const std::string session = name.substr(0, std::min(name.size(), kIDLength));
    if (!UUID::parse(session)) continue;
    if (name == session + std::string(kMarkerEnd)) {
      sessions[session];
    } else if (const auto number = numberOf(name)) {
      sessions[session].emplace(*number, folder / name);
    }
  }
  return sessions;
}

struct NewestJournal {
  std::optional<JournalContent> content;  // of the highest number that can be read, settled on its file
  bool isForeign = false;                 // there is one of another version
  bool isOnFile = false;
};

NewestJournal readNewest(FileSystem& files, const std::map<int, FilePath>& journals) {
  NewestJournal newest;
  for (auto one = journals.rbegin(); one != journals.rend() && !newest.content; ++one) {
    const std::string bytes = files.readFile(one->second);
    newest.content = readJournal(bytes);
    newest.isForeign = newest.isForeign || (!newest.content && isJournalOfAnotherVersion(bytes));
  }
  if (!newest.content) return newest;
  const auto hashOfFile = [&](const FilePath& path) -> std::optional<std::uint64_t> {
    const auto info = files.info(path);
    if (!info || !info->isRegularFile) return std::nullopt;
    return contentHash(files.readFile(path));
  };
  newest.isOnFile = settleOnFile(*newest.content, hashOfFile);
  return newest;
}

}  // namespace

std::vector<LeftJournal> leftJournals(FileSystem& files, const FilePath& folder,
                                      const std::string& ownSession) {
  std::vector<LeftJournal> left;
  for (const auto& [session, journals] : sessionsIn(files, folder)) {
    if (session == ownSession) continue;
    LeftJournal journal;
    journal.session = session;
    try {
      journal.marker = files.tryLockFile(markerPath(folder, session));
      if (!journal.marker) continue;  // its process lives
      for (auto one = journals.rbegin(); one != journals.rend(); ++one) journal.paths.push_back(one->second);
      NewestJournal newest = readNewest(files, journals);
      if (newest.isForeign) continue;  // what another version can read is not for us to remove
      if (newest.content && newest.content->changes() > 0) {
        journal.isOnFile = newest.isOnFile;
        journal.content = *std::move(newest.content);
        left.push_back(std::move(journal));
      } else {
        removeLeftJournal(files, folder, journal);
      }
    } catch (const FileError&) {
      // What cannot be read now may be read by another start.
    }
  }
  std::stable_sort(left.begin(), left.end(), [](const LeftJournal& a, const LeftJournal& b) {
    return a.content.changedAt() > b.content.changedAt();
  });
  return left;
}

LeftJournal journalToLookAt(FileSystem& files, const FilePath& folder, const std::string& session) {
  LeftJournal journal;
  journal.session = session;
  NewestJournal newest = readNewest(files, sessionsIn(files, folder)[session]);
  if (!newest.content) throw FileError("There is no journal " + session + " to recover.");
  journal.isOnFile = newest.isOnFile;
  journal.content = *std::move(newest.content);
  return journal;
}

void removeLeftJournal(FileSystem& files, const FilePath& folder, const LeftJournal& journal) {
  for (const FilePath& path : journal.paths) files.removeFile(path);
  files.removeFile(markerPath(folder, journal.session));
}

}  // namespace ostrelon
