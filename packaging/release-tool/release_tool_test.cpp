// A whole release as a maintainer makes it, with the program itself and the `openssl` command beside it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/temporary_folder.h"
#include "updates/update_feed.h"
#include "updates/update_verification.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;
using testing::readBytes;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using testing::writeBytes;

struct Ended {
  int status;
  std::string output;
};

Ended runCommand(const std::string& command) {
  std::FILE* pipe = ::popen((command + " 2>&1 </dev/null").c_str(), "r");
  Ended ended{0, {}};
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
    ended.output.append(buffer.data(), count);
  }
  const int status = ::pclose(pipe);
  ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (!ended.output.empty() && ended.output.back() == '\n') ended.output.pop_back();
  return ended;
}

class ReleaseTool : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return "'" + (folder_ / name).string() + "'"; }
  Ended tool(const std::string& arguments) const { return runCommand(OSTRELON_RELEASE_TOOL " " + arguments); }
  Ended add(const std::string& version, const std::string& more = "",
            const std::string& key = "key.pem") const {
    return tool("add --manifest " + path("releases.json") + " --private-key " + path(key) + " --installer " +
                path("Ostrelon.deb") + " --version '" + version + "' --url https://updates.example/" +
                "o.deb " + more);
  }
  AppUpdateManifest manifest() const { return decodeManifest(readBytes(folder_ / "releases.json")); }

  void SetUp() override {
    writeBytes(folder_ / "Ostrelon.deb", "the installer");
    const Ended made = tool("make-key --private-key " + path("key.pem"));
    ASSERT_EQ(made.status, 0) << made.output;
    publicKey_ = made.output;
  }

  TemporaryFolder folder_;
  std::string publicKey_;
};

TEST_F(ReleaseTool, WritesAReleaseThatTheApplicationAndOpensslBothAccept) {
  const Ended added = add("1.2.0",
                          "--build 57 --published 2026-03-01T12:00:00Z --notes https://example.org/n "
                          "--change 'Faster \"snaps\"' --change Two");
  ASSERT_EQ(added.status, 0) << added.output;
  const AppUpdateRelease release = manifest().releases.at(0);
  EXPECT_EQ(release.build, "57");
  EXPECT_EQ(release.publishedAt, parseISO8601("2026-03-01T12:00:00Z"));
  EXPECT_EQ(release.releaseNotesURL, "https://example.org/n");
  EXPECT_EQ(release.changes, (std::vector<std::string>{"Faster \"snaps\"", "Two"}));
  EXPECT_NO_THROW(verifyInstaller(release, folder_ / "Ostrelon.deb", publicKey_));

  writeBytes(folder_ / "payload", signedPayload(release));
  writeBytes(folder_ / "signature.base64", release.signature);
  runCommand("openssl base64 -d -A -in " + path("signature.base64") + " -out " + path("signature"));
  runCommand("openssl ec -in " + path("key.pem") + " -pubout -out " + path("public.pem"));
  EXPECT_EQ(runCommand("openssl dgst -sha256 -verify " + path("public.pem") + " -signature " +
                       path("signature") + " " + path("payload"))
                .output,
            "Verified OK");
}

TEST_F(ReleaseTool, WorksInTheFolderItIsCalledFrom) {
  const Ended added =
      runCommand("cd '" + folder_.path().string() +
                 "' && " OSTRELON_RELEASE_TOOL
                 " add --manifest r.json --private-key key.pem --installer Ostrelon.deb --version 1 "
                 "--url https://updates.example/o.deb");
  EXPECT_THAT(added.output, StartsWith("Signed 1, SHA-256 "));
  EXPECT_EQ(decodeManifest(readBytes(folder_ / "r.json")).releases.size(), 1U);
}

TEST_F(ReleaseTool, KeepsWhatTheManifestHolds) {
  ASSERT_EQ(add("1.2.0").status, 0);
  std::string text = readBytes(folder_ / "releases.json");
  text.insert(text.find('{') + 1, "\"channel\": \"stable\",");
  writeBytes(folder_ / "releases.json", text);
  ASSERT_EQ(add("1.3.0-beta.1", "--change First").status, 0);
  ASSERT_EQ(add("1.3.0-beta.1", "--change Second").status, 0);
  EXPECT_EQ(manifest().releases.size(), 2U);
  EXPECT_EQ(manifest().releases[1].changes, std::vector<std::string>{"Second"});
  EXPECT_THAT(readBytes(folder_ / "releases.json"), StartsWith("{\n  \"channel\": \"stable\""));
}

TEST_F(ReleaseTool, ChecksReleasesAsTheApplicationDoes) {
  ASSERT_EQ(add("1.2.0").status, 0);
  const auto check = [&](const std::string& version, const std::string& key) {
    return tool("check --manifest " + path("releases.json") + " --installer " + path("Ostrelon.deb") +
                " --version " + version + " --public-key " + key)
        .output;
  };
  EXPECT_EQ(tool("public-key --private-key " + path("key.pem")).output, publicKey_);
  EXPECT_EQ(check("1.2.0", publicKey_), "The release is genuine.");
  EXPECT_EQ(check("1.2.1", publicKey_), "The manifest has no release 1.2.1.");
  EXPECT_EQ(check("1.2.0", tool("make-key --private-key " + path("other.pem")).output),
            "Downloaded update failed signature verification.");
  writeBytes(folder_ / "Ostrelon.deb", "another");
  EXPECT_EQ(check("1.2.0", publicKey_), "Downloaded update failed checksum verification.");
}

TEST_F(ReleaseTool, TheKeyIsPrivateAndNeverOverwritten) {
  EXPECT_EQ(std::filesystem::status(folder_ / "key.pem").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  const std::string before = readBytes(folder_ / "key.pem");
  const Ended again = tool("make-key --private-key " + path("key.pem"));
  EXPECT_EQ(again.status, 1);
  EXPECT_THAT(again.output, HasSubstr("could not be written: File exists."));
  EXPECT_EQ(readBytes(folder_ / "key.pem"), before);
}

TEST_F(ReleaseTool, RefusesWhatCouldNotBePublishedAndLeavesTheManifestAlone) {
  ASSERT_EQ(add("1.2.0").status, 0);
  const std::string before = readBytes(folder_ / "releases.json");
  EXPECT_EQ(add("1.x").output, "\"1.x\" is not a version such as 1.2.0 or 1.2.0-beta.1.");
  EXPECT_THAT(add("1.3.0\nurl").output, HasSubstr("is not a version"));
  EXPECT_EQ(add("1.3.0", "--url http://h.example/a").output, "--url is given twice.");
  EXPECT_EQ(add("1.3.0", "--published today").output,
            "\"today\" is not a date such as 2026-03-01T12:00:00Z.");
  EXPECT_EQ(add("1.3.0", "--notes http://h.example/n").output,
            "\"http://h.example/n\" is not an https address.");
  EXPECT_EQ(add("1.3.0", "--change").output, "--change needs a value behind it.");
  EXPECT_EQ(add("1.3.0", "--changes x").output, "There is no option --changes here.");
  runCommand("openssl ecparam -name secp384r1 -genkey -noout -out " + path("p384.pem"));
  EXPECT_THAT(add("1.3.0", "", "p384.pem").output, HasSubstr("is not on the curve P-256."));
  EXPECT_THAT(add("1.3.0", "", "missing.pem").output,
              HasSubstr("could not be read: No such file or directory."));
  EXPECT_THAT(add("1.3.0", "", "Ostrelon.deb").output, HasSubstr("holds no private key"));
  EXPECT_EQ(readBytes(folder_ / "releases.json"), before);

  writeBytes(folder_ / "releases.json", "{}");
  EXPECT_EQ(add("1.3.0").output, "Update metadata is invalid: It has no list of \"releases\".");
  EXPECT_EQ(readBytes(folder_ / "releases.json"), "{}");
  EXPECT_EQ(tool("publish").status, 2);
}

}  // namespace
}  // namespace ostrelon
