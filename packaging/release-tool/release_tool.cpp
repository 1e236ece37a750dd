#include "release_tool.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/disk_file_system.h"
#include "platform/held_file.h"
#include "platform/user_error.h"
#include "updates/app_version.h"
#include "updates/installer_writer.h"
#include "updates/update_verification.h"
#include "updates/web_address.h"

namespace ostrelon {
namespace {

using nlohmann::ordered_json;

std::string readManifest(const std::filesystem::path& path) {
  std::string text;
  HeldFile::open(path).read([&](std::string_view piece) {
    text += piece;
    if (text.size() > kLargestManifest) throw UserError("The manifest is larger than 4 MiB.");
  });
  return text;
}

void checkFields(const AppUpdateRelease& release) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
  if (!parseVersion(release.version) ||
      std::any_of(release.version.begin(), release.version.end(), isControl)) {
    throw UserError("\"" + release.version + "\" is not a version such as 1.2.0 or 1.2.0-beta.1.");
  }
  if (!isSecureWebAddress(release.downloadURL)) {
    throw UserError("\"" + release.downloadURL + "\" is not an https address.");
  }
  if (release.releaseNotesURL && !isSecureWebAddress(*release.releaseNotesURL)) {
    throw UserError("\"" + *release.releaseNotesURL + "\" is not an https address.");
  }
}

/// The release with this version text, or nothing.
const AppUpdateRelease* findRelease(const AppUpdateManifest& manifest, const std::string& version) {
  const auto found =
      std::find_if(manifest.releases.begin(), manifest.releases.end(),
                   [&](const AppUpdateRelease& release) { return release.version == version; });
  return found == manifest.releases.end() ? nullptr : &*found;
}

}  // namespace

AppUpdateRelease addRelease(const std::filesystem::path& manifest, const std::filesystem::path& installer,
                            AppUpdateRelease release, const SigningKey& key) {
  checkFields(release);
  const HeldFile file = HeldFile::open(installer);
  if (file.size() > kLargestInstaller) throw UserError("The installer is larger than 2 GiB.");
  release.sha256 = sha256OfFile(file);
  release.signature = key.sign(signedPayload(release));

  ordered_json feed{{"releases", ordered_json::array()}};
  if (std::filesystem::exists(manifest)) {
    const std::string old = readManifest(manifest);
    decodeManifest(old);  // throws what is wrong with it
    feed = ordered_json::parse(old);
  }
  ordered_json& releases = feed["releases"];
  ordered_json entry = ordered_json::parse(encodeManifest({{release}}))["releases"][0];
  const auto same = std::find_if(releases.begin(), releases.end(), [&](const ordered_json& other) {
    return other["version"] == release.version;
  });
  if (same == releases.end()) {
    releases.push_back(std::move(entry));
  } else {
    *same = std::move(entry);
  }

  const std::string text = feed.dump(2) + "\n";
  const AppUpdateManifest written = decodeManifest(text);
  const AppUpdateRelease* found = findRelease(written, release.version);
  if (!found) throw UserError("The release could not be added.");
  verifyInstaller(*found, file, key.publicKey());
  DiskFileSystem().writeFile(standardizedPath(manifest), text);  // whole or not at all
  return *found;
}

void checkRelease(const std::filesystem::path& manifest, const std::filesystem::path& installer,
                  const std::string& version, const std::string& publicKey) {
  const AppUpdateManifest decoded = decodeManifest(readManifest(manifest));
  const AppUpdateRelease* release = findRelease(decoded, version);
  if (!release) throw UserError("The manifest has no release " + version + ".");
  verifyInstaller(*release, installer, publicKey);
}

}  // namespace ostrelon
