// The journals on the disk, in a folder of the user's state: those of this process, which a thread brings
// to the disk while they grow, and those that other processes have left.
//
//   ID.session             locked as long as the process lives
//   ID-NUMBER.journal      of several, the one of the highest number that can be read counts
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/journal.h"
#include "platform/file_system.h"

namespace ostrelon {

/// The journal that this process writes. Failures are thrown as `FileError`.
class JournalFile {
 public:
  /// Reads and writes nothing. `files` must outlive the object.
  JournalFile(FileSystem& files, FilePath folder);
  JournalFile(const JournalFile&) = delete;
  JournalFile& operator=(const JournalFile&) = delete;
  /// Brings what was written to the disk. The journal stays.
  ~JournalFile();

  /// Makes a journal of these bytes. An earlier one goes once this one has reached the disk.
  void begin(std::string_view start);
  void append(std::string_view frame);
  /// Everything is in the document's file: the journal goes.
  void remove();
  /// Waits for the disk.
  void sync();

  bool isOpen() const { return isOpen_; }
  /// In bytes.
  std::size_t size() const { return size_; }
  /// Why the thread could not bring the journal to the disk, told once.
  std::optional<std::string> takeFailure();
  const std::string& session() const { return session_; }
  /// Holds the marker of this process, if nobody has done so yet.
  void holdMarker();

 private:
  class Syncing;

  FileSystem& files_;
  FilePath folder_;
  std::string session_;
  std::unique_ptr<FileLock> marker_;
  std::unique_ptr<Syncing> syncing_;
  std::vector<FilePath> paths_;  // the last one is being written
  int number_ = 0;
  bool isOpen_ = false;
  std::size_t size_ = 0;
};

/// What a process that is gone has left. Nobody else deals with it as long as the object lives.
struct LeftJournal {
  std::string session;
  std::unique_ptr<FileLock> marker;
  std::vector<FilePath> paths;
  JournalContent content;
  /// The file that the journal goes out from is there as the journal knows it.
  bool isOnFile = false;
};

/// Those that hold more than their files do, the one changed last first. What holds no more is removed.
std::vector<LeftJournal> leftJournals(FileSystem& files, const FilePath& folder,
                                      const std::string& ownSession);
/// One of them, to be looked at: without its marker, so that it can be dealt with meanwhile. Throws
/// `FileError` where it is gone.
LeftJournal journalToLookAt(FileSystem& files, const FilePath& folder, const std::string& session);
/// Removes the journals of a process that is gone, and its marker.
void removeLeftJournal(FileSystem& files, const FilePath& folder, const LeftJournal& journal);

}  // namespace ostrelon
