// What no transcript can show of the console: that each word is one command's, and how often a chain is
// reported. What the commands do is in tests/automation/transcripts.
#include <gtest/gtest.h>

#include "console/command_chain.h"
#include "console/command_interpreter.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using namespace CommandInterpreter;  // NOLINT(google-build-using-namespace)
using testing::TestWorkspace;
using testing::WorkspaceState;

TEST(CommandTable, EachWordIsOneCommandsAndIsTellableByHelpOrMore) {
  TestWorkspace t;
  std::size_t words = 0;
  for (const Command& command : commandTable()) {
    words += 1 + command.spellings.size() + command.aliases.size();
    if (!command.help.empty()) continue;
    EXPECT_FALSE(command.summary.empty()) << command.word;
    EXPECT_NE(executeCommandLine(command.example, t.workspace.commands()).kind, ReplyKind::error)
        << command.example;
  }
  EXPECT_EQ(words - 1, commandWords().size()) << "\"poly\" alone is a word and its own alias";
  EXPECT_NE(t.reply("MORE").find("\nmore "), std::string::npos);
  EXPECT_TRUE(t.lines().back().isSystem);
  EXPECT_EQ(helpText().find("\nmore"), std::string::npos);
}

TEST(Chains, AreOneNotificationAndKnowTheWordsThatDrawAndSelectAlone) {
  TestWorkspace t;
  int notifications = 0;
  const auto subscription = t.workspace.observe(kAllFields, [&](FieldMask) { ++notifications; });
  runChain("wall 0 0 10 0; circle 1 1 1; rect 0 0 2 2; select 1; assign CMU-8", t.workspace.commands());
  EXPECT_EQ(notifications, 1);
  for (const std::string word : {"pl", "poly", "copy", "move", "m", "zoom", "type", "history", "more"}) {
    EXPECT_EQ(t.reply("select 1; " + word + " 0 0 1 1 2 2"),
              "Chain error at segment 2: Unknown command \"" + word + "\". Type help for commands.");
  }
}

TEST(Chains, ARunThatFailsGoesBackWholeAndIsOneNotification) {
  TestWorkspace t;
  t.submit("circle 0 0 1");
  t.submit("select 1");
  t.sketch.setInspected(true);
  t.board.activateTool(SketchTool::polygon);
  t.board.addPolygonVertex({1, 1});
  const EntitySnapTarget target{{3, 4}, EntitySnapKind::endpoint, UUID::random(), "Line 1"};
  t.board.startTrackingDwell(target, t.scheduler.now());
  t.board.beginLengthEdit("7'");
  const WorkspaceState before(t);
  const BoardState board = t.board.state();
  int notifications = 0;
  const auto subscription = t.workspace.observe(fieldsOf(t.sketch.drawing, t.board.gesture, t.board.tool),
                                                [&](FieldMask) { ++notifications; });
  EXPECT_EQ(t.reply("select; spec use CMU-8; wall 0 0 5 0; wall 5 0 9 0; select 3; assign CMU-8"),
            "Chain error at segment 6: Could not assign system to selection.");
  EXPECT_EQ(WorkspaceState(t), before);
  EXPECT_EQ(t.board.gesture, board.gesture);
  EXPECT_EQ(t.board.lengthEditor, board.lengthEditor);
  EXPECT_EQ(t.board.tracking, board.tracking);
  EXPECT_TRUE(t.board.isDwelling());
  EXPECT_EQ(notifications, 1);
}

}  // namespace
}  // namespace ostrelon
