#include "documents/kept_drawings.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>

#include "documents/document_paths.h"
#include "platform/user_error.h"
#include "platform/uuid.h"

namespace ostrelon {
namespace {

using nlohmann::json;

constexpr std::string_view kRecordExtension = ".json";
// A drawing of this age without a record is none that is being kept at the moment.
constexpr Seconds kAbandonedAfter(24.0 * 60 * 60);

std::string recordText(const KeptDrawing& kept) {
  json record{{"v", 1},
              {"name", kept.name},
              {"keptAt", secondsSince1970(kept.keptAt)},
              {"reason", kept.reason},
              {"entities", kept.entities}};
  if (kept.path) record["path"] = kept.path->string();
  // A path need not be text.
  return record.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

std::optional<KeptDrawing> recordOf(const std::string& id, const std::string& text) {
  try {
    const json record = json::parse(text);
    KeptDrawing kept{id,
                     record.at("name").get<std::string>(),
                     std::nullopt,
                     dateFromSeconds(record.at("keptAt").get<double>()),
                     record.at("reason").get<std::string>(),
                     record.at("entities").get<std::uint64_t>()};
    if (record.contains("path")) kept.path = record.at("path").get<std::string>();
    return kept;
  } catch (const json::exception&) {
    return std::nullopt;
  }
}

// The identifier in the name of a file; nothing for files of other names.
std::optional<std::string> idOf(const std::string& name, std::string_view extension) {
  if (!name.ends_with(extension)) return std::nullopt;
  std::string id = name.substr(0, name.size() - extension.size());
  if (!UUID::parse(id)) return std::nullopt;
  return id;
}

}  // namespace

KeptLimits KeptLimits::ofSettings(const UserDefaults& defaults) {
  constexpr std::int64_t kMost = 1'000'000'000;
  const auto number = [&](const char* key, double factor, double otherwise) {
    const auto value = defaults.integer(key);
    return value && *value >= 1 ? static_cast<double>(std::min(*value, kMost)) * factor : otherwise;
  };
  KeptLimits limits;
  constexpr double kDay = 24.0 * 60 * 60;
  constexpr double kMegabyte = 1'000'000;
  limits.count =
      static_cast<std::size_t>(number(SettingsKey::keptDrawings, 1, static_cast<double>(limits.count)));
  limits.age = Seconds(number(SettingsKey::keptDays, kDay, limits.age.count()));
  limits.bytes = static_cast<std::uint64_t>(
      number(SettingsKey::keptMegabytes, kMegabyte, static_cast<double>(limits.bytes)));
  return limits;
}

FilePath KeptDrawings::documentPath(const std::string& id) const {
  return folder_ / (id + kDocumentExtension);
}

FilePath KeptDrawings::recordPath(const std::string& id) const {
  return folder_ / (id + std::string(kRecordExtension));
}

KeptDrawing KeptDrawings::keep(KeptDrawing about, const FileSystem::Producer& document) const {
  files_->createPrivateFolder(folder_);
  const std::vector<KeptDrawing> before = records();
  about.id = UUID::random().text();
  const Date now = about.keptAt;
  // The order is that in which they were kept, also within one moment of the clock.
  if (!before.empty()) {
    about.keptAt = std::max(about.keptAt, before.front().keptAt + std::chrono::microseconds(1));
  }
  const FilePath path = documentPath(about.id);
  try {
    files_->preparePrivateFile(path, document)->commit();
    const std::string text = recordText(about);
    files_->preparePrivateFile(recordPath(about.id), [&](const auto& write) { write(text); })->commit();
  } catch (...) {
    try {
      files_->removeFile(recordPath(about.id));
      files_->removeFile(path);
    } catch (const FileError&) {
      // A drawing without a record goes when it has been there for a day.
    }
    throw;
  }
  try {
    dropOld(now);
  } catch (const FileError&) {
    // What cannot be dropped now is dropped another time.
  }
  return about;
}

std::vector<KeptDrawing> KeptDrawings::records() const {
  std::vector<KeptDrawing> found;
  if (!files_->exists(folder_)) return found;
  for (const std::string& name : files_->list(folder_)) {
    const auto id = idOf(name, kRecordExtension);
    if (!id) continue;
    try {
      if (auto kept = recordOf(*id, files_->readFile(folder_ / name))) found.push_back(*std::move(kept));
    } catch (const FileError&) {
      // One that cannot be read does not hide the others.
    }
  }
  std::sort(found.begin(), found.end(), [](const KeptDrawing& a, const KeptDrawing& b) {
    return a.keptAt != b.keptAt ? a.keptAt > b.keptAt : a.id < b.id;
  });
  return found;
}

std::vector<KeptDrawing> KeptDrawings::list() const {
  std::vector<KeptDrawing> found = records();
  std::erase_if(found, [&](const KeptDrawing& kept) { return !files_->exists(documentPath(kept.id)); });
  return found;
}

KeptDrawing KeptDrawings::find(const std::string& id) const {
  // Only what is an identifier becomes part of a path.
  if (UUID::parse(id) && files_->exists(recordPath(id)) && files_->exists(documentPath(id))) {
    if (auto kept = recordOf(id, files_->readFile(recordPath(id)))) return *std::move(kept);
  }
  throw UserError("There is no kept drawing " + id + ".");
}

std::string KeptDrawings::read(const std::string& id) const {
  return files_->readFile(documentPath(find(id).id));
}

void KeptDrawings::remove(const std::string& id) const {
  const KeptDrawing kept = find(id);
  files_->removeFile(recordPath(kept.id));
  files_->removeFile(documentPath(kept.id));
  files_->syncFolder(folder_);
}

void KeptDrawings::dropOld(Date now) const {
  std::uint64_t bytes = 0;
  std::size_t number = 0;
  const std::vector<KeptDrawing> all = records();
  for (const KeptDrawing& kept : all) {
    const auto info = files_->info(documentPath(kept.id));
    if (info) bytes += info->size;
    const bool isYoung = secondsBetween(kept.keptAt, now) <= limits_.age.count();
    if (number++ < limits_.count || (isYoung && bytes <= limits_.bytes)) continue;
    files_->removeFile(recordPath(kept.id));
    files_->removeFile(documentPath(kept.id));
  }
  for (const std::string& name : files_->list(folder_)) {
    const auto id = idOf(name, kDocumentExtension);
    const auto info = id ? files_->info(folder_ / name) : std::nullopt;
    if (!info || files_->exists(recordPath(*id)) || !info->modifiedAt) continue;
    // Files have the time of the machine, which the program's own clock need not follow.
    const Date clock = std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
    if (secondsBetween(*info->modifiedAt, clock) > kAbandonedAfter.count())
      files_->removeFile(folder_ / name);
  }
}

}  // namespace ostrelon
