// A file system with nothing in it, on which nothing can be written.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace ostrelon::testing {

class NoFileSystem final : public FileSystem {
 public:
  std::string readFile(const FilePath&) override { throw FileError("There is no file."); }
  std::unique_ptr<PendingFile> prepareFile(const FilePath&, const Producer&) override {
    throw FileError("Nothing can be written.");
  }
  std::optional<FileInfo> info(const FilePath&) override { return std::nullopt; }
  bool isLink(const FilePath&) override { return false; }
  std::vector<std::string> list(const FilePath&) override { return {}; }
  void createFolders(const FilePath&) override { throw FileError("Nothing can be written."); }
  void copyFile(const FilePath&, const FilePath&) override { throw FileError("There is no file."); }
  void removeFile(const FilePath&) override {}
};

}  // namespace ostrelon::testing
