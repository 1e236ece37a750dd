// The release feed: a JSON object that lists the published releases, and what it means for the
// version that is running.
//
//   { "releases": [ { "version": "1.2.0", "build": "57", "publishedAt": "2026-03-01T12:00:00Z",
//                     "downloadUrl": "https://…/Ostrelon-1.2.0.deb", "sha256": "9f86…",
//                     "signature": "MEUCIQ…", "releaseNotesUrl": "https://…", "changes": ["…"] } ] }
//
// `build`, `publishedAt` and `releaseNotesUrl` may be missing or null.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/date.h"

namespace ostrelon {

/// The longest manifest that is read, in bytes.
inline constexpr std::size_t kLargestManifest = std::size_t{4} * 1024 * 1024;

struct AppUpdateRelease {
  std::string version;
  std::optional<std::string> build;
  std::optional<Date> publishedAt;
  std::string downloadURL;  ///< https
  std::string sha256;       ///< of the installer, in hexadecimal of either case
  std::string signature;    ///< base64 of a DER signature over `signedPayload`
  std::optional<std::string> releaseNotesURL;
  std::vector<std::string> changes;

  friend bool operator==(const AppUpdateRelease&, const AppUpdateRelease&) = default;
};

struct AppUpdateManifest {
  std::vector<AppUpdateRelease> releases;

  friend bool operator==(const AppUpdateManifest&, const AppUpdateManifest&) = default;
};

struct AppUpdateAvailability {
  std::string currentVersion;
  AppUpdateRelease latestRelease;
  /// All releases newer than the running one, oldest first, the latest included.
  std::vector<AppUpdateRelease> interveningReleases;

  friend bool operator==(const AppUpdateAvailability&, const AppUpdateAvailability&) = default;
};

/// No release is newer than the running one.
struct UpToDate {
  std::string currentVersion;
  std::optional<std::string> latestVersion;  ///< absent when the feed has no usable release

  friend bool operator==(const UpToDate&, const UpToDate&) = default;
};

using AppUpdateEvaluationResult = std::variant<UpToDate, AppUpdateAvailability>;

/// What changed in one release, for the view.
struct AppUpdateChangeGroup {
  std::string version;
  std::vector<std::string> changes;
  std::optional<std::string> notesURL;

  friend bool operator==(const AppUpdateChangeGroup&, const AppUpdateChangeGroup&) = default;
};

/// Reads a manifest. Throws `AppUpdateError::invalidManifestFormat` that names the place and what is
/// wrong there: not JSON, a missing or mistyped key, an address that is none or not https.
AppUpdateManifest decodeManifest(std::string_view json);
/// The manifest as JSON with two spaces of indentation; keys without a value are left out.
std::string encodeManifest(const AppUpdateManifest& manifest);

/// Compares the running version with the releases. Releases whose version cannot be read are skipped;
/// those that compare equal keep their order. Throws `AppUpdateError::invalidCurrentVersion`.
AppUpdateEvaluationResult evaluateManifest(const std::vector<AppUpdateRelease>& releases,
                                           const std::string& currentVersion);
inline AppUpdateEvaluationResult evaluateManifest(const AppUpdateManifest& manifest,
                                                  const std::string& currentVersion) {
  return evaluateManifest(manifest.releases, currentVersion);
}

/// The intervening releases, oldest first, each with its changes and the address of its notes.
std::vector<AppUpdateChangeGroup> changeGroups(const AppUpdateAvailability& availability);

}  // namespace ostrelon
