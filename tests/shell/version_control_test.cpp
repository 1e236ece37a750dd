// git with the program as its diff and its merge of drawings, in a repository of its own, set up by the
// commands that docs/version-control.md gives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class Repository {
 public:
  Repository() {
    EXPECT_EQ(run("git init -q -b main . && git config user.name Someone && git config user.email some@one"),
              "");
    EXPECT_EQ(run("git config diff.ostrelon.textconv '" + program_ + " --describe'"), "");
    EXPECT_EQ(run("git config merge.ostrelon.driver '" + program_ + " --merge %O %A %B --save %A'"), "");
    testing::writeBytes(folder_ / ".gitattributes", "*.ostrel diff=ostrelon merge=ostrelon\n");
  }
  // What a command prints, errors included, with its exit status behind it where that is not 0.
  std::string run(const std::string& command) {
    const std::string line = "cd '" + folder_.path().string() +
                             "' && export HOME=\"$PWD\" GIT_CONFIG_NOSYSTEM=1 LC_ALL=C; { " + command +
                             "; } 2>&1";
    FILE* pipe = ::popen(line.c_str(), "r");
    std::string text;
    std::array<char, 4096> piece{};
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe)) {
      text.append(piece.data(), count);
    }
    const int status = ::pclose(pipe);
    return status == 0 ? text : text + "[" + std::to_string(WEXITSTATUS(status)) + "]";
  }
  std::string draw(const std::string& lines, bool isNew = false) {
    return run("printf '" + lines + "' | " + program_ + (isNew ? "" : " --open plan.ostrel") +
               " --console - --save plan.ostrel");
  }
  std::string commit(const std::string& message) { return run("git add -A && git commit -q -m " + message); }
  std::string compare(const std::string& revision) {
    return run("git show " + revision + ":plan.ostrel > before; " + program_ +
               " --compare before plan.ostrel");
  }

 private:
  testing::TemporaryFolder folder_;
  std::string program_ = OSTRELON_BINARY_DIR "/ostrelon";
};

TEST(VersionControl, GitTellsAndMergesWhatTwoBranchesHaveDrawn) {
  Repository repository;
  repository.draw("wall 0 0 10 0\\nwall 10 0 10 8\\nline 20 0 30 0\\n", true);
  ASSERT_EQ(repository.commit("Shell"), "");
  ASSERT_EQ(repository.run("git checkout -q -b option"), "");
  repository.draw("circle 5 5 1\\nselect 3\\nmove 0 2\\n");
  EXPECT_THAT(repository.run("git diff"),
              AllOf(HasSubstr("\n+circle "), HasSubstr("\n-line "), Not(HasSubstr("\n-wall"))));
  ASSERT_EQ(repository.commit("Option"), "");
  ASSERT_EQ(repository.run("git checkout -q main"), "");
  repository.draw("rect 40 0 4 4\\nselect 1\\nlength 12\\n");
  ASSERT_EQ(repository.commit("Longer"), "");

  EXPECT_THAT(repository.run("git merge -q -m Both option"), Not(HasSubstr("CONFLICT")));
  EXPECT_EQ(repository.run("git status --porcelain --untracked-files=no"), "");
  EXPECT_THAT(repository.compare("option"),
              AllOf(HasSubstr("1 added, 1 changed."), HasSubstr("Wall 1: 2' longer")));

  // Both sides have drawn the same wall to another length.
  ASSERT_EQ(repository.run("git checkout -q option"), "");
  repository.draw("select 1\\nlength 14\\n");
  ASSERT_EQ(repository.commit("Fourteen"), "");
  ASSERT_EQ(repository.run("git checkout -q main"), "");
  EXPECT_THAT(
      repository.run("git merge -m Again option"),
      AllOf(HasSubstr("Wall 1: here 2' longer, there 4' longer"), HasSubstr("CONFLICT"), HasSubstr("[1]")));
  EXPECT_EQ(repository.compare("HEAD"), "No differences.\n") << "our drawing stays in its place";
  EXPECT_THAT(repository.run("git show :1:plan.ostrel > base; git show :2:plan.ostrel > ours;"
                             "git show :3:plan.ostrel > theirs; '" OSTRELON_BINARY_DIR
                             "/ostrelon' --merge base ours theirs --save plan.ostrel --prefer theirs"),
              HasSubstr("Merged: 1 changed."));
  EXPECT_THAT(repository.compare("HEAD"), HasSubstr("Wall 1: 2' longer"));
  ASSERT_EQ(repository.run("git add plan.ostrel && git commit -q -m Settled"), "");
}

}  // namespace
}  // namespace ostrelon
