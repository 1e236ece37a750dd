// A file that stays open from its first byte on, so that what was checked is what is used: it is read
// through the same descriptor again, and can check whether its path still leads to it.
//
//   HeldFile file = HeldFile::createPrivate(temporaryFolder, "Ostrelon.deb");
//   file.append(bytes);  …
//   file.seal();                          from here on it is read-only and outlives the object
//   file.read([&](std::string_view piece) { hash(piece); });
//   if (file.isAtPath()) open(file.path());
//
// Failures are thrown as `FileError`.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace ostrelon {

class HeldFile {
 public:
  /// Makes an empty file that only the user may read, in a fresh folder that only the user may enter (mode
  /// 0700) below `temporaryFolder`, which is made if needed. `name` is a plain file name. Folders that
  /// earlier calls have left are removed, unless a living HeldFile still uses them.
  static HeldFile createPrivate(const FilePath& temporaryFolder, const std::string& name);
  /// Opens a regular file for reading alone.
  static HeldFile open(const FilePath& path);

  HeldFile(HeldFile&& other) noexcept;
  HeldFile& operator=(HeldFile&& other) noexcept;
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;
  /// Closes the file. One that was created and not sealed is removed, and its folder with it.
  ~HeldFile();

  const FilePath& path() const { return path_; }
  /// Bytes appended so far, or the size that the file had when it was opened.
  std::uint64_t size() const { return size_; }

  void append(std::string_view bytes);
  /// Everything has been appended: the file becomes read-only, and stays when the object goes.
  void seal();
  /// Hands over the whole content from its start, piece by piece. Safe away from the main thread.
  void read(const std::function<void(std::string_view piece)>& take) const;
  /// Does the path lead to this very file still, and not to another that took its place?
  bool isAtPath() const;

 private:
  HeldFile() = default;
  void release();

  FilePath path_;
  std::uint64_t size_ = 0;
  int descriptor_ = -1;
  int folderLock_ = -1;  // open while the private folder is in use
  bool removesFile_ = false;
};

}  // namespace ostrelon
