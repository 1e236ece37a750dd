#include "updates/update_feed.h"

#include <gtest/gtest.h>

#include "updates/app_update_error.h"
#include "updates/web_address.h"

namespace ostrelon {
namespace {

AppUpdateRelease releaseOf(const std::string& version) {
  return {version, {},   {}, "https://updates.example/" + version + ".deb",
          "ab",    "cd", {}, {"Change in " + version}};
}

std::vector<AppUpdateRelease> releasesOf(const std::vector<std::string>& versions) {
  std::vector<AppUpdateRelease> releases;
  for (const std::string& version : versions) releases.push_back(releaseOf(version));
  return releases;
}

std::vector<std::string> versionsOf(const std::vector<AppUpdateRelease>& releases) {
  std::vector<std::string> versions;
  for (const AppUpdateRelease& release : releases) versions.push_back(release.version);
  return versions;
}

std::string manifestError(std::string_view json) {
  try {
    decodeManifest(json);
  } catch (const AppUpdateError& error) {
    EXPECT_EQ(error.kind(), AppUpdateError::Kind::invalidManifestFormat);
    return error.what();
  }
  return "no error";
}

constexpr std::string_view kFullManifest = R"({
  "releases": [
    { "version": "1.2.0", "build": "57", "publishedAt": "2026-03-01T13:00:00+01:00",
      "downloadUrl": "https://updates.example/a%20b.deb?x=1", "sha256": "AB", "signature": "c2ln",
      "releaseNotesUrl": "https://example.org/notes", "changes": ["One", "Two"], "later": {"key": [1]} },
    { "version": "1.3.0", "build": null, "downloadUrl": "HTTPS://updates.example/b", "sha256": "",
      "signature": "", "changes": [] }
  ], "other": 3 })";

TEST(UpdateFeed, ReadsEveryKeyAndOverlooksUnknownOnes) {
  const AppUpdateManifest manifest = decodeManifest(kFullManifest);
  ASSERT_EQ(manifest.releases.size(), 2U);
  const AppUpdateRelease& first = manifest.releases[0];
  EXPECT_EQ(first.version, "1.2.0");
  EXPECT_EQ(first.build, "57");
  EXPECT_EQ(first.publishedAt, parseISO8601("2026-03-01T12:00:00Z"));
  EXPECT_EQ(first.downloadURL, "https://updates.example/a%20b.deb?x=1");
  EXPECT_EQ(first.sha256, "AB");
  EXPECT_EQ(first.signature, "c2ln");
  EXPECT_EQ(first.releaseNotesURL, "https://example.org/notes");
  EXPECT_EQ(first.changes, (std::vector<std::string>{"One", "Two"}));
  EXPECT_EQ(manifest.releases[1].build, std::nullopt);
  EXPECT_TRUE(manifest.releases[1].changes.empty());

  EXPECT_EQ(decodeManifest(encodeManifest(manifest)), manifest);
  EXPECT_TRUE(decodeManifest(R"({"releases":[]})").releases.empty());
}

TEST(UpdateFeed, SaysWhatIsWrongWithAManifest) {
  EXPECT_EQ(manifestError(""), "Update metadata is invalid: It is not JSON (at byte 1).");
  EXPECT_EQ(manifestError("{\"releases\": [\"\xff\"]}"),
            "Update metadata is invalid: It is not JSON (at byte 16).");
  EXPECT_EQ(manifestError(std::string("{\"releases\": []}\0x", 18)),
            "Update metadata is invalid: It is not JSON (at byte 17).");
  EXPECT_EQ(manifestError("[]"), "Update metadata is invalid: It is not a JSON object.");
  EXPECT_EQ(manifestError("{}"), "Update metadata is invalid: It has no list of \"releases\".");
  EXPECT_EQ(manifestError(R"({"releases": {}})"),
            "Update metadata is invalid: It has no list of \"releases\".");
  EXPECT_EQ(manifestError(R"({"releases": [1]})"), "Update metadata is invalid: Release 1 is not an object.");
  EXPECT_EQ(manifestError(std::string(std::size_t{5} << 20, ' ')),
            "Update metadata is invalid: It is larger than 4 MiB.");
  EXPECT_EQ(manifestError(std::string(100'000, '[')),
            "Update metadata is invalid: It is not JSON (at byte 100001).");
}

TEST(UpdateFeed, OneBadReleaseFailsTheWholeManifest) {
  const auto errorWith = [](std::string_view from, std::string_view to) {
    std::string text(kFullManifest);
    text.replace(text.find(from), from.size(), to);
    return manifestError(text);
  };
  const std::string start = "Update metadata is invalid: ";
  EXPECT_EQ(errorWith(R"("changes": ["One", "Two"],)", ""), start + "Release 1 has no \"changes\".");
  EXPECT_EQ(errorWith(R"("Two")", "2"), start + "Release 1 has a \"changes\" that is not a list of texts.");
  EXPECT_EQ(errorWith("downloadUrl", "downloadURL"), start + "Release 1 has no \"downloadUrl\".");
  EXPECT_EQ(errorWith("HTTPS:", "http:"),
            start + "Release 2 has a \"downloadUrl\" that does not begin with https://.");
  EXPECT_EQ(errorWith("HTTPS://updates.example/b", "file:///etc/passwd"),
            start + "Release 2 has a \"downloadUrl\" that does not begin with https://.");
  EXPECT_EQ(errorWith("a%20b", "a b"), start + "Release 1 has a \"downloadUrl\" that is not a web address.");
  EXPECT_EQ(errorWith("\"AB\"", "null"), start + "Release 1 has no \"sha256\".");
  EXPECT_EQ(errorWith("\"57\"", "57"), start + "Release 1 has a \"build\" that is not a text.");
  EXPECT_EQ(errorWith("2026-03-01", "1 March"),
            start + "Release 1 has a \"publishedAt\" that is not an ISO 8601 date.");
  EXPECT_EQ(errorWith("https://example.org/notes", ""),
            start + "Release 1 has a \"releaseNotesUrl\" that is not a web address.");
}

TEST(UpdateFeed, HasNoReleaseNotesThatWouldNotOpenBySecureTransfer) {
  for (const std::string address : {"http://example.org/notes", "file:///usr/bin/x", "smb://host/share",
                                    "javascript:alert(1)", "https:///notes"}) {
    std::string text(kFullManifest);
    text.replace(text.find("https://example.org/notes"), 25, address);
    const AppUpdateManifest manifest = decodeManifest(text);
    EXPECT_EQ(manifest.releases.front().releaseNotesURL, std::nullopt) << address;
    EXPECT_EQ(manifest.releases.front().changes.size(), 2U);
  }
}

TEST(UpdateFeed, OffersWhatIsNewerOldestFirst) {
  const auto result =
      evaluateManifest(releasesOf({"2.0.0", "nonsense", "1.2.0", "1.10.0", "1.10.0-rc.1"}), "1.3.0");
  const auto& available = std::get<AppUpdateAvailability>(result);
  EXPECT_EQ(available.currentVersion, "1.3.0");
  EXPECT_EQ(available.latestRelease.version, "2.0.0");
  EXPECT_EQ(versionsOf(available.interveningReleases),
            (std::vector<std::string>{"1.10.0-rc.1", "1.10.0", "2.0.0"}));

  const auto fromBeta = evaluateManifest(releasesOf({"1.3.0"}), "1.3.0-beta.1");
  EXPECT_EQ(std::get<AppUpdateAvailability>(fromBeta).latestRelease.version, "1.3.0");
}

TEST(UpdateFeed, IsUpToDateWithTheNewestKnownVersion) {
  EXPECT_EQ(std::get<UpToDate>(evaluateManifest(releasesOf({"v1.3", "1.2.0"}), "1.3.0")).latestVersion,
            "v1.3");
  EXPECT_EQ(std::get<UpToDate>(evaluateManifest(releasesOf({}), "1.3.0")).latestVersion, std::nullopt);
  EXPECT_EQ(std::get<UpToDate>(evaluateManifest(releasesOf({"?"}), "1.3.0")).latestVersion, std::nullopt);
  try {
    evaluateManifest(releasesOf({"1.0"}), "dev");
    FAIL();
  } catch (const AppUpdateError& error) {
    EXPECT_STREQ(error.what(), "Installed version dev cannot be compared.");
  }
}

TEST(UpdateFeed, ReleasesThatCompareEqualKeepTheirOrder) {
  // Enough of them that an unstable sort would show.
  std::vector<std::string> versions{"2.1", "1.5"};
  std::vector<std::string> expected{"1.5"};
  for (int i = 50; i > 0; --i) {
    versions.push_back("2.0.0+" + std::to_string(i));
    expected.push_back(versions.back());
  }
  expected.push_back("2.1");
  const auto result = evaluateManifest(releasesOf(versions), "1.0.0");
  EXPECT_EQ(versionsOf(std::get<AppUpdateAvailability>(result).interveningReleases), expected);
  EXPECT_EQ(std::get<UpToDate>(evaluateManifest(releasesOf({"2", "v2.0"}), "2.0.0")).latestVersion, "v2.0");
}

TEST(UpdateFeed, GroupsTheChangesByRelease) {
  AppUpdateAvailability available{"1.0.0", {}, releasesOf({"1.10.0", "1.9.0"})};
  available.interveningReleases[0].releaseNotesURL = "https://example.org/1.10.0";
  const auto groups = changeGroups(available);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0], (AppUpdateChangeGroup{"1.9.0", {"Change in 1.9.0"}, std::nullopt}));
  EXPECT_EQ(groups[1].notesURL, "https://example.org/1.10.0");

  // A version that cannot be read falls back to the order of the texts.
  available.interveningReleases = releasesOf({"b", "10", "9", "a"});
  std::vector<std::string> versions;
  for (const auto& group : changeGroups(available)) versions.push_back(group.version);
  EXPECT_EQ(versions, (std::vector<std::string>{"9", "10", "a", "b"}));
}

TEST(UpdateFeed, InstallerNamesCannotLeadOutOfTheirFolder) {
  EXPECT_EQ(installerFileName("https://h.example/d/Ostrelon-1.2.0.deb?x=/y#z/q"), "Ostrelon-1.2.0.deb");
  EXPECT_EQ(installerFileName("https://h.example/a%20%C3%A9.deb/"), "a \u00e9.deb");
  EXPECT_EQ(installerFileName("https://h.example/a%2F..%2Fevil.deb"), "evil.deb");
  EXPECT_EQ(installerFileName("https://h.example/a%5Cevil%00%0A.deb"), "evil.deb");
  EXPECT_EQ(installerFileName("https://h.example/%FF.deb"), "\uFFFD.deb");
  for (const char* address :
       {"https://h.example", "https://h.example/", "https://h.example/?a", "https://h.example/.",
        "https://h.example/a/%2e%2E", "https://h.example/a%2F", "https://h.example/%20%00"}) {
    EXPECT_EQ(installerFileName(address), "OstrelonUpdate.pkg") << address;
  }
  const std::string longName = installerFileName("https://h.example/" + std::string(5000, 'a') + ".deb");
  EXPECT_EQ(longName, std::string(196, 'a') + ".deb");
}

TEST(UpdateFeed, TellsWebAddressesApart) {
  for (const char* good : {"https://h.example", "HTTPS://u@h.example:8443/a?b#c", "https://[::1]/"}) {
    EXPECT_TRUE(isSecureWebAddress(good)) << good;
  }
  for (const char* bad :
       {"", "https", "https:", "https://", "https:///a", "https://:80/", "http://h.example",
        "https://h.example/a b", "https://h.example/%zz", "https://h.example/\n", " https://h.example"}) {
    EXPECT_FALSE(isSecureWebAddress(bad)) << bad;
  }
}

}  // namespace
}  // namespace ostrelon
