#include "platform/json_user_defaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "platform/disk_file_system.h"
#include "platform/user_paths.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct JsonUserDefaultsTest : ::testing::Test {
  testing::TemporaryFolder folder;
  DiskFileSystem files;
  FilePath path = folder.path() / "config" / "settings.json";

  JsonUserDefaults open() { return JsonUserDefaults(files, path); }
  std::string text() { return files.readFile(path); }
};

TEST_F(JsonUserDefaultsTest, KeepsEveryTypeAcrossStarts) {
  {
    JsonUserDefaults defaults(files, path);
    EXPECT_FALSE(files.exists(path)) << "looking at settings writes nothing";
    defaults.set("a.flag", false);
    defaults.set("a.count", std::int64_t{-7});
    defaults.set("a.ratio", 0.1);
    defaults.set("a.name", std::string("Küche \"1\""));
    defaults.set("a.paths", DefaultsMap{{"/x", "/y"}});
    defaults.setDate("a.date", dateFromSeconds(1'767'225'600.25));
    defaults.set("a.gone", true);
    defaults.remove("a.gone");
  }
  JsonUserDefaults defaults(files, path);
  EXPECT_EQ(defaults.boolean("a.flag"), false);
  EXPECT_EQ(defaults.integer("a.count"), -7);
  EXPECT_EQ(defaults.value("a.ratio"), DefaultsValue(0.1));
  EXPECT_EQ(defaults.text("a.name"), "Küche \"1\"");
  EXPECT_EQ(defaults.map("a.paths"), (DefaultsMap{{"/x", "/y"}}));
  EXPECT_EQ(defaults.date("a.date"), dateFromSeconds(1'767'225'600.25));
  EXPECT_FALSE(defaults.has("a.gone"));
  EXPECT_EQ(defaults.integer("a.flag"), std::nullopt) << "another type counts as missing";
  EXPECT_THAT(defaults.takeNotes(), IsEmpty());
}

TEST_F(JsonUserDefaultsTest, CopiesThatRunAtTheSameTimeKeepEachOthersChanges) {
  JsonUserDefaults first(files, path);
  JsonUserDefaults second(files, path);
  first.set("one", std::int64_t{1});
  second.set("two", std::int64_t{2});
  second.set("one", std::int64_t{10});
  first.set("three", std::int64_t{3});
  // A value that this copy holds already, but the file by now does not, is written.
  first.set("one", std::int64_t{1});
  second.remove("two");
  JsonUserDefaults third(files, path);
  EXPECT_EQ(third.integer("one"), 1);
  EXPECT_FALSE(third.has("two"));
  EXPECT_EQ(third.integer("three"), 3);
}

TEST_F(JsonUserDefaultsTest, KeepsWhatItDoesNotUnderstand) {
  files.createFolders(path.parent_path());
  files.writeFile(path, R"({"list":[1,{"x":null}],"big":18446744073709551615})");
  JsonUserDefaults defaults(files, path);
  EXPECT_FALSE(defaults.has("list"));
  EXPECT_FALSE(defaults.has("big"));
  defaults.set("mine", true);
  EXPECT_THAT(text(), HasSubstr("18446744073709551615"));
  EXPECT_THAT(text(), HasSubstr("\"x\": null"));
}

TEST_F(JsonUserDefaultsTest, SetsADamagedFileAsideAndSaysSo) {
  files.createFolders(path.parent_path());
  for (const std::string& damaged :
       std::vector<std::string>{"{\"a\":", "[1]", "", "\xFF", std::string("{}\0{}", 5)}) {
    files.writeFile(path, damaged);
    const std::size_t before = files.list(path.parent_path()).size();
    JsonUserDefaults defaults(files, path);
    EXPECT_THAT(defaults.takeNotes(), ElementsAre(HasSubstr("settings-damaged-")));
    EXPECT_THAT(defaults.takeNotes(), IsEmpty());
    EXPECT_EQ(files.list(path.parent_path()).size(), before) << "the file has moved";
    defaults.set("new", true);
  }
  EXPECT_EQ(files.readFile(path.parent_path() / "settings-damaged-1.json"), "{\"a\":");
  // Damaged while the program runs: what the program holds is written anew.
  JsonUserDefaults defaults(files, path);
  files.writeFile(path, "oops");
  defaults.set("more", true);
  EXPECT_EQ(JsonUserDefaults(files, path).boolean("new"), true);
  EXPECT_EQ(JsonUserDefaults(files, path).boolean("more"), true);
}

TEST_F(JsonUserDefaultsTest, GoesOnWhenTheFileCannotBeWrittenAndTellsOnce) {
  FileSystemCalls calls = FileSystemCalls::ofTheSystem();
  bool fails = true;
  calls.renameNew = [&](const char* from, const char* to) {
    if (!fails) return std::rename(from, to);
    errno = ENOSPC;
    return -1;
  };
  DiskFileSystem failing(calls);
  JsonUserDefaults defaults(failing, path);
  defaults.set("one", true);
  defaults.set("two", true);
  EXPECT_EQ(defaults.boolean("one"), true);
  EXPECT_THAT(defaults.takeNotes(), ElementsAre(HasSubstr("the disk is full")));
  fails = false;
  defaults.set("three", true);
  EXPECT_EQ(open().boolean("one"), true) << "what could not be written is written later";
}

TEST(UserPaths, FollowTheConventions) {
  testing::TemporaryFolder home;
  DiskFileSystem files;
  std::map<std::string, std::string> variables{{"HOME", home.path().string()}};
  const auto paths = [&] {
    return userPaths(files, [&](const std::string& name) { return variables[name]; });
  };
  EXPECT_EQ(paths().settingsFile, home.path() / ".config/ostrelon/settings.json");
  EXPECT_EQ(paths().documentsFolder, home.path() / "Documents");
  EXPECT_EQ(paths().temporaryFolder, "/tmp");
  variables["XDG_CONFIG_HOME"] = (home / "conf").string();
  variables["TMPDIR"] = "relative";
  files.createFolders(home / "conf");
  testing::writeBytes(home / "conf/user-dirs.dirs",
                      "# XDG_DOCUMENTS_DIR=\"/no\"\nXDG_DOCUMENTS_DIR=\"$HOME/My Papers\"\n");
  EXPECT_EQ(paths().settingsFile, home.path() / "conf/ostrelon/settings.json");
  EXPECT_EQ(paths().documentsFolder, home.path() / "My Papers");
  EXPECT_EQ(paths().temporaryFolder, "/tmp");
  EXPECT_EQ(userPathsBelow("/private/home/").settingsFile, "/private/home/settings.json");
}

}  // namespace
}  // namespace ostrelon
