// Preferences in one JSON file: an object whose members are the keys. Several running copies of the
// program may share the file; each writes only the keys that it changed, over what the file holds at
// that moment, so that no copy takes back what another has set.
//
// Trouble with the file never stops the program: a setting then lasts as long as the process, and a
// sentence about it waits in `takeNotes`. A file that is not what it should be is set aside whole.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "platform/user_defaults.h"

namespace ostrelon {

class JsonUserDefaults final : public UserDefaults {
 public:
  /// Reads the file if it is there. Its folder is made by the first write. `files` must outlive the
  /// object.
  JsonUserDefaults(FileSystem& files, FilePath path);
  ~JsonUserDefaults() override;

  std::optional<DefaultsValue> value(std::string_view key) const override;
  void set(std::string_view key, DefaultsValue value) override;
  void remove(std::string_view key) override;
  void change(const std::vector<DefaultsChange>& changes) override;

  /// What there is to report to the user about the file since the last call, in whole sentences.
  std::vector<std::string> takeNotes();
  /// Calls back whenever there is something new to take.
  void whenNoted(std::function<void()> noted) { noted_ = std::move(noted); }

 private:
  struct Contents;

  void read();
  void setAside(const std::string& bytes);
  void write();
  void note(std::string sentence);

  FileSystem& files_;
  FilePath path_;
  std::unique_ptr<Contents> contents_;
  std::vector<std::string> notes_;
  std::function<void()> noted_;
  bool isUnreadable_ = false;  // then it is left alone: what is in it cannot be kept
  bool hasToldOfWriting_ = false;
};

}  // namespace ostrelon
