// A file system in memory, for fuzzers that go through files.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/file_system.h"

namespace ostrelon {

class MemoryFiles final : public FileSystem {
 public:
  std::map<FilePath, std::string> contents;

  std::string readFile(const FilePath& path) override {
    const auto found = contents.find(path);
    if (found == contents.end()) throw FileError("The file does not exist.");
    return found->second;
  }
  std::unique_ptr<PendingFile> prepareFile(const FilePath& path, const Producer& produce) override {
    std::string bytes;
    produce([&](std::string_view piece) { bytes += piece; });
    return std::make_unique<Pending>(*this, path, std::move(bytes));
  }
  std::optional<FileInfo> info(const FilePath& path) override {
    const auto found = contents.find(path);
    if (found == contents.end()) return std::nullopt;
    return infoOf(found->second);
  }
  bool isLink(const FilePath&) override { return false; }
  std::vector<std::string> list(const FilePath&) override { return {}; }
  void createFolders(const FilePath&) override {}
  void copyFile(const FilePath& from, const FilePath& to) override { contents[to] = readFile(from); }
  void removeFile(const FilePath& path) override { contents.erase(path); }

 private:
  class Pending final : public PendingFile {
   public:
    Pending(MemoryFiles& files, FilePath path, std::string bytes)
        : files_(files), path_(std::move(path)), bytes_(std::move(bytes)) {}
    FileInfo info() const override { return infoOf(bytes_); }
    void commit() override { files_.contents[path_] = std::move(bytes_); }

   private:
    MemoryFiles& files_;
    FilePath path_;
    std::string bytes_;
  };

  static FileInfo infoOf(const std::string& bytes) {
    FileInfo info;
    info.isRegularFile = true;
    info.size = bytes.size();
    return info;
  }
};

}  // namespace ostrelon
