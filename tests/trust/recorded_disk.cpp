#include "trust/recorded_disk.h"

#include <fcntl.h>

#include <cerrno>
#include <fstream>
#include <stdexcept>

namespace ostrelon::testing {

FileSystemCalls RecordedDisk::calls() {
  using Kind = Event::Kind;
  const FileSystemCalls real = FileSystemCalls::ofTheSystem();
  FileSystemCalls calls = real;
  calls.open = [this, real](const char* path, int flags, mode_t mode) {
    const std::lock_guard lock(mutex_);
    const int file = real.open(path, flags, mode);
    if (file < 0) return file;
    openFiles_.erase(file);
    if ((flags & O_DIRECTORY) != 0) {
      openFolders_[file] = belowRoot(path);
    } else if ((flags & O_CREAT) != 0) {
      openFiles_[file] = fileCount_;
      note({Kind::createFile, belowRoot(path), "", fileCount_++});
    }
    return file;
  };
  calls.write = [this, real](int file, const void* bytes, std::size_t count) {
    const std::lock_guard lock(mutex_);
    const ssize_t written = real.write(file, bytes, count);
    if (written > 0) {
      note({Kind::write, "", std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(written)),
            openFiles_.at(file)});
    }
    return written;
  };
  // Noting it is all that syncing does: the real disk need not be waited for.
  calls.fsync = [this](int file) {
    const std::lock_guard lock(mutex_);
    // Descriptors come again; a folder is closed without a call that is noted.
    if (const auto open = openFiles_.find(file); open != openFiles_.end()) {
      note({Kind::syncFile, "", "", open->second});
    } else {
      note({Kind::syncFolder, openFolders_.at(file), "", -1});
    }
    return 0;
  };
  calls.close = [this, real](int file) {
    const std::lock_guard lock(mutex_);
    openFiles_.erase(file);
    return real.close(file);
  };
  const auto noted = [this](auto rename) {
    return [this, rename](const char* from, const char* to) {
      const std::lock_guard lock(mutex_);
      const int result = rename(from, to);
      if (result == 0) note({Kind::rename, belowRoot(from), belowRoot(to), -1});
      return result;
    };
  };
  calls.rename = noted(real.rename);
  calls.renameNew = noted(real.renameNew);
  calls.unlink = [this, real](const char* path) {
    const std::lock_guard lock(mutex_);
    const int result = real.unlink(path);
    if (result == 0) note({Kind::remove, belowRoot(path), "", -1});
    return result;
  };
  calls.mkdir = [this, real](const char* path, mode_t mode) {
    const std::lock_guard lock(mutex_);
    const int result = real.mkdir(path, mode);
    if (result == 0) note({Kind::makeFolder, belowRoot(path), "", -1});
    return result;
  };
  return calls;
}

std::string RecordedDisk::belowRoot(const char* path) const {
  const std::string relative = FilePath(path).lexically_relative(root_).string();
  if (relative.empty() || relative.starts_with("..")) throw std::logic_error("written outside the disk");
  return relative == "." ? "" : relative;
}

RecordedDisk::Node& RecordedDisk::nodeAt(Node& root, const std::string& path) {
  Node* node = &root;
  for (const FilePath& part : FilePath(path)) node = node->names.at(part.string()).get();
  return *node;
}

void RecordedDisk::apply(const Event& event, Node& root, std::map<int, NodePointer>& files) {
  const auto folderOf = [&](const std::string& path) -> Node& {
    return nodeAt(root, FilePath(path).parent_path().string());
  };
  const auto nameOf = [](const std::string& path) { return FilePath(path).filename().string(); };
  switch (event.kind) {
    case Event::Kind::createFile:
      files[event.file] = std::make_shared<Node>();
      folderOf(event.path).names[nameOf(event.path)] = files[event.file];
      return;
    case Event::Kind::write:
      files.at(event.file)->content += event.other;
      return;
    case Event::Kind::syncFile:
      files.at(event.file)->syncedContent = files.at(event.file)->content;
      return;
    case Event::Kind::syncFolder: {
      Node& folder = nodeAt(root, event.path);
      folder.syncedNames = folder.names;
      return;
    }
    case Event::Kind::rename: {
      auto moved = folderOf(event.path).names.extract(nameOf(event.path));
      folderOf(event.other).names[nameOf(event.other)] = moved.mapped();
      return;
    }
    case Event::Kind::remove:
      folderOf(event.path).names.erase(nameOf(event.path));
      return;
    case Event::Kind::makeFolder: {
      auto folder = std::make_shared<Node>();
      folder->isFolder = true;
      folderOf(event.path).names[nameOf(event.path)] = folder;
      return;
    }
  }
}

void RecordedDisk::write(const Node& folder, Survival survival, const FilePath& into) {
  const auto& names = survival == Survival::nothingUnsynced ? folder.syncedNames : folder.names;
  for (const auto& [name, node] : names) {
    if (node->isFolder) {
      std::filesystem::create_directory(into / name);
      write(*node, survival, into / name);
    } else {
      std::ofstream(into / name, std::ios::binary)
          << (survival == Survival::everything ? node->content : node->syncedContent);
    }
  }
}

void RecordedDisk::survivors(std::size_t steps, Survival survival, const FilePath& into) const {
  Node root;
  root.isFolder = true;
  std::map<int, NodePointer> files;
  for (std::size_t step = 0; step < steps; ++step) apply(events_[step], root, files);
  write(root, survival, into);
}

}  // namespace ostrelon::testing
