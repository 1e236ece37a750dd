#include "updates/update_feed.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/nul_byte.h"
#include "updates/app_update_error.h"
#include "updates/app_version.h"
#include "updates/web_address.h"

namespace ostrelon {
namespace {

using nlohmann::json;

/// Reads the keys of one release, and words what is wrong with them.
class ReleaseReader {
 public:
  ReleaseReader(const json& object, std::size_t index) : object_(object), index_(index) {
    if (!object.is_object()) fail("is not an object");
  }

  std::string text(const char* key) const {
    if (auto value = optionalText(key)) return std::move(*value);
    fail(fmt::format("has no \"{}\"", key));
  }

  std::optional<std::string> optionalText(const char* key) const {
    const json* value = find(key);
    if (!value) return std::nullopt;
    if (!value->is_string()) fail(fmt::format("has a \"{}\" that is not a text", key));
    return value->get<std::string>();
  }

  std::optional<Date> optionalDate(const char* key) const {
    const auto value = optionalText(key);
    if (!value) return std::nullopt;
    const auto date = parseISO8601(*value);
    if (!date) fail(fmt::format("has a \"{}\" that is not an ISO 8601 date", key));
    return date;
  }

  std::string secureAddress(const char* key) const {
    std::string address = text(key);
    if (!isWebAddress(address)) fail(fmt::format("has a \"{}\" that is not a web address", key));
    if (!isSecureWebAddress(address))
      fail(fmt::format("has a \"{}\" that does not begin with https://", key));
    return address;
  }

  /// An address of another scheme than https, which the signature does not vouch for, counts as none.
  std::optional<std::string> optionalSecureAddress(const char* key) const {
    auto address = optionalText(key);
    if (!address) return std::nullopt;
    if (!isWebAddress(*address)) fail(fmt::format("has a \"{}\" that is not a web address", key));
    return isSecureWebAddress(*address) ? std::move(address) : std::nullopt;
  }

  std::vector<std::string> texts(const char* key) const {
    const json* value = find(key);
    if (!value) fail(fmt::format("has no \"{}\"", key));
    const auto isText = [](const json& element) { return element.is_string(); };
    if (!value->is_array() || !std::all_of(value->begin(), value->end(), isText)) {
      fail(fmt::format("has a \"{}\" that is not a list of texts", key));
    }
    return value->get<std::vector<std::string>>();
  }

 private:
  /// The value under the key; null counts as missing.
  const json* find(const char* key) const {
    const auto found = object_.find(key);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
  }

  [[noreturn]] void fail(const std::string& problem) const {
    throw AppUpdateError::invalidManifestFormat(fmt::format("Release {} {}.", index_ + 1, problem));
  }

  const json& object_;
  std::size_t index_;
};

AppUpdateRelease readRelease(const json& object, std::size_t index) {
  const ReleaseReader reader(object, index);
  AppUpdateRelease release;
  release.version = reader.text("version");
  release.build = reader.optionalText("build");
  release.publishedAt = reader.optionalDate("publishedAt");
  release.downloadURL = reader.secureAddress("downloadUrl");
  release.sha256 = reader.text("sha256");
  release.signature = reader.text("signature");
  release.releaseNotesURL = reader.optionalSecureAddress("releaseNotesUrl");
  release.changes = reader.texts("changes");
  return release;
}

using VersionedRelease = std::pair<AppVersion, const AppUpdateRelease*>;

bool isOlder(const VersionedRelease& a, const VersionedRelease& b) { return a.first < b.first; }

}  // namespace

AppUpdateManifest decodeManifest(std::string_view text) {
  if (text.size() > kLargestManifest) {
    throw AppUpdateError::invalidManifestFormat("It is larger than 4 MiB.");
  }
  const auto notJsonAt = [](std::size_t byte) {
    return AppUpdateError::invalidManifestFormat(fmt::format("It is not JSON (at byte {}).", byte));
  };
  if (const auto place = nulByteIn(text)) throw notJsonAt(*place + 1);
  json root;
  try {
    root = json::parse(text);
  } catch (const json::parse_error& error) {
    throw notJsonAt(error.byte);
  } catch (const json::exception&) {  // a number beyond every range
    throw AppUpdateError::invalidManifestFormat("It is not JSON.");
  }
  if (!root.is_object()) throw AppUpdateError::invalidManifestFormat("It is not a JSON object.");
  const auto releases = root.find("releases");
  if (releases == root.end() || !releases->is_array()) {
    throw AppUpdateError::invalidManifestFormat("It has no list of \"releases\".");
  }
  AppUpdateManifest manifest;
  manifest.releases.reserve(releases->size());
  for (const json& release : *releases) {
    manifest.releases.push_back(readRelease(release, manifest.releases.size()));
  }
  return manifest;
}

std::string encodeManifest(const AppUpdateManifest& manifest) {
  nlohmann::ordered_json releases = nlohmann::ordered_json::array();
  for (const AppUpdateRelease& release : manifest.releases) {
    nlohmann::ordered_json object;
    object["version"] = release.version;
    if (release.build) object["build"] = *release.build;
    if (release.publishedAt) object["publishedAt"] = iso8601Text(*release.publishedAt);
    object["downloadUrl"] = release.downloadURL;
    object["sha256"] = release.sha256;
    object["signature"] = release.signature;
    if (release.releaseNotesURL) object["releaseNotesUrl"] = *release.releaseNotesURL;
    object["changes"] = release.changes;
    releases.push_back(std::move(object));
  }
  const nlohmann::ordered_json root{{"releases", std::move(releases)}};
  return root.dump(2) + "\n";
}

AppUpdateEvaluationResult evaluateManifest(const std::vector<AppUpdateRelease>& releases,
                                           const std::string& currentVersion) {
  const auto current = parseVersion(currentVersion);
  if (!current) throw AppUpdateError::invalidCurrentVersion(currentVersion);

  std::vector<VersionedRelease> usable;
  for (const AppUpdateRelease& release : releases) {
    if (auto version = parseVersion(release.version)) usable.emplace_back(std::move(*version), &release);
  }
  std::stable_sort(usable.begin(), usable.end(), isOlder);
  if (usable.empty()) return UpToDate{currentVersion, std::nullopt};

  AppUpdateAvailability availability{currentVersion, {}, {}};
  for (const auto& [version, release] : usable) {
    if (version > *current) availability.interveningReleases.push_back(*release);
  }
  if (availability.interveningReleases.empty()) {
    return UpToDate{currentVersion, usable.back().second->version};
  }
  availability.latestRelease = availability.interveningReleases.back();
  return availability;
}

std::vector<AppUpdateChangeGroup> changeGroups(const AppUpdateAvailability& availability) {
  struct Entry {
    std::optional<AppVersion> version;
    const AppUpdateRelease* release;
  };
  const auto isBelow = [](const Entry& a, const Entry& b) {
    if (a.version && b.version) return *a.version < *b.version;
    return a.release->version < b.release->version;
  };
  std::vector<Entry> entries;
  bool allHaveVersions = true;
  for (const AppUpdateRelease& release : availability.interveningReleases) {
    entries.push_back({parseVersion(release.version), &release});
    allHaveVersions = allHaveVersions && entries.back().version;
  }
  if (allHaveVersions) {
    std::stable_sort(entries.begin(), entries.end(), isBelow);
  } else {
    // Versions and plain texts side by side have no order that is sound for std::sort ("9" < "10" <
    // "a" but "a" may stand between). Inserting one after the other is safe with any comparison.
    for (auto next = entries.begin(); next != entries.end(); ++next) {
      const auto place =
          std::find_if(entries.begin(), next, [&](const Entry& e) { return isBelow(*next, e); });
      std::rotate(place, next, next + 1);
    }
  }

  std::vector<AppUpdateChangeGroup> groups;
  groups.reserve(entries.size());
  for (const Entry& entry : entries) {
    groups.push_back({entry.release->version, entry.release->changes, entry.release->releaseNotesURL});
  }
  return groups;
}

}  // namespace ostrelon
