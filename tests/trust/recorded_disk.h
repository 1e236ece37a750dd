// A disk that remembers in which order it was written, so that a test can tell what is left of it when
// the power fails: file contents and names last once they were synced, and only then.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/disk_file_system.h"

namespace ostrelon::testing {

/// What a crash leaves. Of the unsynced a power loss may leave any part; its two are the extremes.
enum class Survival {
  everything,       ///< as when the program alone was killed
  nothingUnsynced,  ///< names and contents as they were synced
  namesOnly,        ///< every name is there, with the content that was synced: often none
};

class RecordedDisk {
 public:
  /// Notes what happens below `root`, which must be there and empty.
  explicit RecordedDisk(FilePath root) : root_(std::move(root)) {}

  /// The system's steps, done and noted. The object must outlive them.
  FileSystemCalls calls();
  /// How many steps have been noted.
  std::size_t steps() const {
    const std::lock_guard lock(mutex_);
    return events_.size();
  }
  /// Puts into the empty folder `into` what is there after a crash that follows the first `steps`.
  void survivors(std::size_t steps, Survival survival, const FilePath& into) const;

 private:
  struct Node;
  using NodePointer = std::shared_ptr<Node>;
  struct Node {
    bool isFolder = false;
    std::string content;
    std::string syncedContent;
    std::map<std::string, NodePointer> names;
    std::map<std::string, NodePointer> syncedNames;
  };
  struct Event {
    enum class Kind { createFile, write, syncFile, syncFolder, rename, remove, makeFolder };
    Kind kind;
    std::string path;   // below the root; "" is the root
    std::string other;  // the new path of a renamed file, or what was written
    int file = -1;      // of the file that is written or synced, whatever its name by then
  };

  std::string belowRoot(const char* path) const;
  void note(Event event) { events_.push_back(std::move(event)); }
  static Node& nodeAt(Node& root, const std::string& path);
  static void apply(const Event& event, Node& root, std::map<int, NodePointer>& files);
  static void write(const Node& folder, Survival survival, const FilePath& into);

  FilePath root_;
  mutable std::mutex mutex_;  // a journal is synced by a thread
  std::vector<Event> events_;
  std::map<int, int> openFiles_;            // by descriptor: the file's number
  std::map<int, std::string> openFolders_;  // by descriptor
  int fileCount_ = 0;
};

}  // namespace ostrelon::testing
