// The reader of release feeds, and all that is done with a manifest that it accepts.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "require.h"
#include "updates/app_update_error.h"
#include "updates/app_version.h"
#include "updates/update_feed.h"
#include "updates/update_verification.h"
#include "updates/web_address.h"

namespace {

using namespace ostrelon;

void checkRelease(const AppUpdateRelease& release) {
  require(isSecureWebAddress(release.downloadURL), "installers come over https");
  require(signedPayload(release).starts_with("Ostrelon update\nversion:" + release.version +
                                             "\ndownloadURL:" + release.downloadURL + "\nsha256:"),
          "the signature covers version and address");
  const std::string name = installerFileName(release.downloadURL);
  require(!name.empty() && name != "." && name != ".." && name.size() <= 200, "the file name is a plain one");
  require(std::none_of(name.begin(), name.end(),
                       [](char c) { return c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20; }),
          "the file name has no separators");
}

void checkEvaluation(const AppUpdateManifest& manifest, const std::string& currentVersion) {
  const auto result = evaluateManifest(manifest, currentVersion);
  const auto* available = std::get_if<AppUpdateAvailability>(&result);
  if (!available) return;
  const auto& releases = available->interveningReleases;
  require(!releases.empty() && available->latestRelease == releases.back(), "the latest release is the last");
  auto previous = parseVersion(currentVersion);
  for (const AppUpdateRelease& release : releases) {
    const auto version = parseVersion(release.version);
    require(version && *version >= *previous && *version > *parseVersion(currentVersion),
            "offers are newer, and rise");
    previous = version;
  }
  const auto groups = changeGroups(*available);
  require(groups.size() == releases.size(), "each release has its changes");
  for (std::size_t i = 0; i < groups.size(); ++i) {
    require(groups[i].version == releases[i].version, "changes come in the order of the releases");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  AppUpdateManifest manifest;
  try {
    manifest = decodeManifest(text);
  } catch (const AppUpdateError& error) {
    require(error.kind() == AppUpdateError::Kind::invalidManifestFormat,
            "refusals say that the format is wrong");
    return 0;
  }
  for (const AppUpdateRelease& release : manifest.releases) checkRelease(release);
  checkEvaluation(manifest, "1.2.0");
  checkEvaluation(manifest, "0-0");

  // Dates are written in whole seconds, and what is read may be finer or beyond the year 9999.
  for (AppUpdateRelease& release : manifest.releases) release.publishedAt.reset();
  const std::string written = encodeManifest(manifest);
  if (written.size() <= kLargestManifest) require(decodeManifest(written) == manifest, "writing keeps all");
  return 0;
}
