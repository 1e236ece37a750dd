// The Debian package: made from the build, checked by Debian's own tools, installed into a root of
// its own and run from there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <regex>

#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

struct Outcome {
  int status = -1;
  std::string output;
};

bool isInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

std::string missing(const std::string& program) {
  return "The program " + program + " is missing; ./test installs it from packaging/debian-packages.txt.";
}

class DebianPackage : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new testing::TemporaryFolder;
    if (!isInstalled("dpkg-shlibdeps") || !isInstalled("file")) return;
    const Outcome made = run("timeout 120 cpack --config " OSTRELON_BINARY_DIR "/CPackConfig.cmake -B " +
                             folder_->path().string());
    log_ = made.output;
    if (made.status != 0) return;
    for (const auto& entry : fs::directory_iterator(folder_->path())) {
      if (entry.path().extension() == ".deb") package_ = entry.path();
    }
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }

  void SetUp() override {
    ASSERT_TRUE(isInstalled("dpkg-shlibdeps")) << missing("dpkg-shlibdeps");
    ASSERT_TRUE(isInstalled("file")) << missing("file");
    ASSERT_FALSE(package_.empty()) << log_;
  }

  /// Runs a line of the shell in the folder of the tests.
  static Outcome run(const std::string& line) {
    const std::string log = (*folder_ / "log").string();
    const int status =
        std::system(("cd " + folder_->path().string() + " && { " + line + "; } >" + log + " 2>&1").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, testing::readBytes(log)};
  }

  /// The content of the package, unpacked once.
  static fs::path root() {
    const fs::path unpacked = *folder_ / "root";
    if (!fs::exists(unpacked)) {
      const Outcome outcome = run("dpkg-deb -x " + package_.string() + " root");
      EXPECT_EQ(outcome.status, 0) << outcome.output;
    }
    return unpacked;
  }

  static testing::TemporaryFolder* folder_;
  static fs::path package_;
  static std::string log_;
};
testing::TemporaryFolder* DebianPackage::folder_ = nullptr;
fs::path DebianPackage::package_;
std::string DebianPackage::log_;

TEST_F(DebianPackage, HasNothingForLintianToSay) {
  ASSERT_TRUE(isInstalled("lintian")) << missing("lintian");
  const Outcome outcome =
      run("timeout 120 lintian --allow-root --fail-on error,warning " + package_.string());
  EXPECT_EQ(outcome.status, 0) << outcome.output;
}

TEST_F(DebianPackage, DependsOnWhatTheProgramLoadsAndOnWhatItNames) {
  const Outcome outcome = run("dpkg-deb -f " + package_.string() + " Depends");
  for (const char* needed : {"qt6-qpa-plugins", "fonts-inter", "libqt6widgets6", "libc6"}) {
    EXPECT_THAT(outcome.output, HasSubstr(needed));
  }
}

TEST_F(DebianPackage, EntersTheMenusOfTheDesktop) {
  ASSERT_TRUE(isInstalled("desktop-file-validate")) << missing("desktop-file-validate");
  const fs::path share = root() / "usr/share";
  const Outcome entry =
      run("desktop-file-validate " + (share / "applications/org.ostrelon.Ostrelon.desktop").string());
  EXPECT_EQ(entry.status, 0) << entry.output;
  EXPECT_EQ(entry.output, "");
  EXPECT_TRUE(fs::exists(share / "icons/hicolor/scalable/apps/org.ostrelon.Ostrelon.svg"));
}

TEST_F(DebianPackage, TellsTheSoftwareCentreOfItself) {
  ASSERT_TRUE(isInstalled("appstreamcli")) << missing("appstreamcli");
  const Outcome outcome = run("appstreamcli validate --no-net " +
                              (root() / "usr/share/metainfo/org.ostrelon.Ostrelon.metainfo.xml").string());
  EXPECT_EQ(outcome.status, 0) << outcome.output;
}

TEST_F(DebianPackage, GivesDocumentsAType) {
  ASSERT_TRUE(isInstalled("update-mime-database")) << missing("update-mime-database");
  const fs::path mime = root() / "usr/share/mime";
  const Outcome outcome = run("update-mime-database " + mime.string());
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(testing::readBytes(mime / "globs2"), HasSubstr("50:application/x-ostrelon:*.ostrel"));
  EXPECT_THAT(testing::readBytes(root() / "usr/share/applications/org.ostrelon.Ostrelon.desktop"),
              HasSubstr("MimeType=application/x-ostrelon;"));
}

TEST_F(DebianPackage, HasAManualPageThatCanBeRead) {
  ASSERT_TRUE(isInstalled("man")) << missing("man");
  const Outcome page = run("MANROFFSEQ= LC_ALL=C.UTF-8 MANWIDTH=100 man --warnings -E UTF-8 -l " +
                           (root() / "usr/share/man/man1/ostrelon.1.gz").string());
  EXPECT_EQ(page.status, 0);
  EXPECT_THAT(page.output, HasSubstr("draw building plans"));
  EXPECT_THAT(page.output, ::testing::Not(HasSubstr("warning")));
  // Every option that the program tells of itself stands on the page.
  const Outcome help = run((root() / "usr/bin/ostrelon").string() + " --help");
  const std::regex option("--[a-z-]+");
  for (std::sregex_iterator found(help.output.begin(), help.output.end(), option), end; found != end;
       ++found) {
    EXPECT_THAT(page.output, HasSubstr(found->str()));
  }
}

TEST_F(DebianPackage, InstallsIntoARootOfItsOwnRunsThereAndGoesWithoutATrace) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can install a package";
  ASSERT_EQ(
      run("mkdir -p own/var/lib/dpkg/info own/var/lib/dpkg/updates && touch own/var/lib/dpkg/status").status,
      0);
  // The root is empty but for the package, so what it depends on is not in it.
  const std::string dpkg = "dpkg --root=own --force-depends --force-script-chrootless --log=own/log ";
  const Outcome installed = run(dpkg + "--install " + package_.string());
  ASSERT_EQ(installed.status, 0) << installed.output;
  const Outcome ran =
      run("HOME=$PWD own/usr/bin/ostrelon --console own/usr/share/doc/ostrelon/examples/cottage "
          "--save cottage.ostrel --export cottage.svg --export cottage.dxf");
  EXPECT_EQ(ran.status, 0) << ran.output;
  EXPECT_GT(fs::file_size(*folder_ / "cottage.svg"), 5000U);
  EXPECT_THAT(testing::readBytes(*folder_ / "cottage.dxf"), HasSubstr("W2-EXT"));
  const Outcome removed = run(dpkg + "--purge ostrelon");
  EXPECT_EQ(removed.status, 0) << removed.output;
  EXPECT_FALSE(fs::exists(*folder_ / "own/usr/bin/ostrelon"));
  EXPECT_FALSE(fs::exists(*folder_ / "own/usr/share/doc/ostrelon"));
}

// What a double click in the file manager does: the entry's command, with the document in it.
TEST_F(DebianPackage, OpensTheDocumentThatIsDoubleClicked) {
  ASSERT_TRUE(isInstalled("xvfb-run")) << missing("xvfb-run");
  ASSERT_TRUE(isInstalled("xdotool")) << missing("xdotool");
  const std::string entry =
      testing::readBytes(root() / "usr/share/applications/org.ostrelon.Ostrelon.desktop");
  std::smatch match;
  ASSERT_TRUE(std::regex_search(entry, match, std::regex("\nExec=ostrelon %f\n")));
  fs::copy_file(root() / "usr/share/doc/ostrelon/examples/cottage.ostrel", *folder_ / "My House.ostrel",
                fs::copy_options::overwrite_existing);
  testing::writeBytes(*folder_ / "look.sh",
                      "ostrelon --home home \"$1\" & program=$!\n"
                      "for i in $(seq 100); do\n"
                      "  xdotool search --onlyvisible --name 'My House' >/dev/null 2>&1 && found=1 && break\n"
                      "  kill -0 $program 2>/dev/null || break\n"
                      "  sleep 0.1\n"
                      "done\n"
                      "kill $program; [ -n \"$found\" ]\n");
  const Outcome outcome =
      run("env -u QT_QPA_PLATFORM HOME=$PWD XDG_RUNTIME_DIR=$PWD PATH=" + (root() / "usr/bin").string() +
          ":$PATH timeout 60 xvfb-run -a sh look.sh 'My House.ostrel'");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
}

}  // namespace
}  // namespace ostrelon
