// Drawings that were about to be replaced and exist nowhere else, in a folder of the user's state:
//
//   ID.ostrel   the drawing, a document like any other
//   ID.json     its record: name, file, time, reason, number of entities
//
// The drawing is on the disk before its record is, and the record goes before the drawing does, so that what
// is listed is there. Both are readable by the user alone. Failures are thrown as `UserError`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/date.h"
#include "platform/file_system.h"
#include "platform/user_defaults.h"

namespace ostrelon {

struct KeptDrawing {
  std::string id;
  std::string name;
  std::optional<FilePath> path;  ///< the file that it was in or belonged to; absent if it was never saved
  Date keptAt;
  std::string reason;  ///< what took its place, as a person reads it: "Switched to branch option-a"
  std::uint64_t entities = 0;
  friend bool operator==(const KeptDrawing&, const KeptDrawing&) = default;
};

/// Optional keys of the settings.
namespace SettingsKey {
inline constexpr const char* keptDrawings = "ostrel.keptDrawings";
inline constexpr const char* keptDays = "ostrel.keptDays";
inline constexpr const char* keptMegabytes = "ostrel.keptMegabytes";
}  // namespace SettingsKey

/// The newest `count` stay, whatever their size. Of the others, those that are younger than `age` stay as
/// long as they and all newer ones together have at most `bytes`.
struct KeptLimits {
  std::size_t count = 100;
  Seconds age{30.0 * 24 * 60 * 60};
  std::uint64_t bytes = 1'000'000'000;

  /// What is missing or below 1 is as above.
  static KeptLimits ofSettings(const UserDefaults& defaults);
};

class KeptDrawings {
 public:
  /// Reads and writes nothing. `files` must outlive the object.
  KeptDrawings(FileSystem& files, FilePath folder, KeptLimits limits = {})
      : files_(&files), folder_(std::move(folder)), limits_(limits) {}

  /// Writes a drawing and drops what is beyond the limits. `about` has no identifier yet; its time may be
  /// moved behind that of the newest one there is. Where it throws, nothing has been kept.
  KeptDrawing keep(KeptDrawing about, const FileSystem::Producer& document) const;
  /// The newest first. Reads their records alone; one that cannot be read is left out.
  std::vector<KeptDrawing> list() const;
  KeptDrawing find(const std::string& id) const;
  /// The bytes of its document.
  std::string read(const std::string& id) const;
  void remove(const std::string& id) const;

 private:
  FilePath documentPath(const std::string& id) const;
  FilePath recordPath(const std::string& id) const;
  std::vector<KeptDrawing> records() const;
  void dropOld(Date now) const;

  FileSystem* files_;
  FilePath folder_;
  KeptLimits limits_;
};

}  // namespace ostrelon
