#include "console/command_chain.h"

#include <gtest/gtest.h>

#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TestWorkspace;
using testing::WorkspaceState;

TEST(Chains, JoinSegmentsAndCountWhatTheyDo) {
  TestWorkspace t;
  const std::vector<std::pair<std::string, std::string>> chains{
      {"line 0 0 10 0; line 10 0 20 0", "Chain OK (2 commands): 1 line added, 1 collinear merge."},
      {"line 0 0 10 0; line 10 0 10 10", "Chain OK (2 commands): 2 lines added, 1 corner join."},
      {"line 0 0 10 0; line 10.001 0 20 0", "Chain OK (2 commands): 2 lines added."},
      {"line 0 0 10 0; wall 10 0 20 0", "Chain OK (2 commands): 1 line added, 1 wall added."},
      {"wall 0 0 10 0 W2-INT; wall 10 0 20 0 W2-EXT", "Chain OK (2 commands): 2 walls added."},
      {"line 0 0 10 0; circle 5 5 1; line 10 0 20 0",
       "Chain OK (3 commands): 2 lines added, 1 circle added."},
      {"l 0 0 10 0; L 10 0 0 0", "Chain OK (2 commands): 1 line added, 1 collinear merge."},
      {"line 0 0 0 0; line 0 0 1 0", "Chain OK (2 commands): 2 lines added, 1 corner join."},
      // The tangent of 8° is 0.14054…
      {"line 0 0 10 0; line 10 0 20 1.405", "Chain OK (2 commands): 1 line added, 1 collinear merge."},
      {"line 0 0 10 0; line 10 0 20 1.406", "Chain OK (2 commands): 2 lines added, 1 corner join."},
      // The third turns by 6° against the second, and by 9° against what the merge made of both.
      {"line 0 0 10 0; line 10 0 20 1; line 20 1 30 3.1",
       "Chain OK (3 commands): 2 lines added, 1 collinear merge, 1 corner join."},
      {"spec list; spec list", "Chain OK (2 commands): 2 spec commands."},
      {"select 1; select 2", "Chain OK (2 commands): 2 selections updated."},
      {"spec use CMU-8; wall 0 0 10 0", "Chain OK (2 commands): 1 wall added, 1 spec command."},
      {"rectangle 0 0 1 1; s 1", "Chain OK (2 commands): 1 rectangle added, 1 selection updated."},
      {"wall 0 0 10 0; assign W2-EXT", "Chain OK (2 commands): 1 wall added, 1 wall assignment."}};
  for (const auto& [line, reply] : chains) EXPECT_EQ(t.reply(line), reply);
  EXPECT_EQ(t.sketch.drawing->wallSystemName(t.sketch.entities().back()), "W2-EXT");
}

TEST(Chains, AMergedWallIsSelectedAndKeepsItsPlace) {
  TestWorkspace t;
  t.submit("wall 0 0 10 0; circle 1 1 1; select 2; wall 0 5 4 5; wall 4 5 9 5");
  ASSERT_EQ(t.sketch.entities().size(), 3u);
  EXPECT_EQ(std::get<WallEntity>(t.sketch.entities().back()).to, (SketchPoint{9, 5}));
  EXPECT_EQ(t.sketch.selection->ids, std::unordered_set<UUID>{entityID(t.sketch.entities().back())});
}

TEST(Chains, AreOneUndoStepAndOneNoticeOrNothing) {
  TestWorkspace t;
  t.submit("line 0 0 1 1");
  t.submit("select 1");
  const WorkspaceState before(t);
  const std::vector<std::pair<std::string, std::string>> failures{
      {";", "1: empty command."},
      {"line 0 0 10 0;", "2: empty command."},
      {"select;", "2: empty command."},
      {"line 0 0 1 1; clear", "2: clear cannot be used in a chain; run clear by itself."},
      {"line 0 0 1 1; ?", "2: help cannot be used in a chain."},
      {"tr 1 2 0 0; line 0 0 1 1", "1: trim cannot be used in a chain."},
      {"line 0 0 1 1; line", "2: line tool activation cannot be used in a chain."},
      {"line 0 0 1; line", "1: Usage: line <x1> <y1> <x2> <y2>"},
      {"wall 0 0 1 1 nope;", "1: Unknown wall system \"nope\". Use spec list."},
      {"wall 0 0 1 1; select; assign CMU-8", "3: Usage: assign <system>  (select a wall first)"},
      {"spec list x; line 0 0 1 1", "1: Usage: spec list | spec use <name> | spec show [name]"},
      {"spec show nope;", "1: Unknown wall system."}};
  for (const auto& [line, reply] : failures) {
    EXPECT_EQ(t.reply(line), "Chain error at segment " + reply);
    EXPECT_TRUE(t.lines().back().isError);
    EXPECT_EQ(WorkspaceState(t), before) << line;
  }
  // Only the words that draw, select and choose a system are known, and of their aliases these alone.
  for (const char* word : {"pl", "poly", "copy", "move", "m", "zoom", "type", "history", "more"}) {
    EXPECT_EQ(
        t.reply("select 1; " + std::string(word) + " 0 0 1 1 2 2"),
        "Chain error at segment 2: Unknown command \"" + std::string(word) + "\". Type help for commands.");
  }
  int notices = 0;
  const auto subscription = t.workspace.observe(kAllFields, [&](FieldMask) { ++notices; });
  CommandInterpreter::runChain("wall 0 0 10 0; circle 1 1 1; rect 0 0 2 2; select 2; assign CMU-8",
                               t.workspace.commands());
  EXPECT_EQ(notices, 1);
  EXPECT_EQ(t.undoSteps(), before.undoSteps + 1);
  t.board.undo();
  EXPECT_EQ(t.sketch.entities(), before.drawing.entities);
}

TEST(Chains, ARunThatFailsGoesBackWhole) {
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
  int notices = 0;
  const auto subscription = t.workspace.observe(fieldsOf(t.sketch.drawing, t.board.gesture, t.board.tool),
                                                [&](FieldMask) { ++notices; });
  // The merge makes one wall of two, so the number that was right in checking is not there at the run.
  EXPECT_EQ(t.reply("select; spec use CMU-8; wall 0 0 5 0; wall 5 0 9 0; select 3; assign CMU-8"),
            "Chain error at segment 6: Could not assign system to selection.");
  EXPECT_EQ(WorkspaceState(t), before);
  EXPECT_EQ(t.board.gesture, board.gesture);
  EXPECT_EQ(t.board.lengthEditor, board.lengthEditor);
  EXPECT_EQ(t.board.tracking, board.tracking);
  EXPECT_TRUE(t.board.isDwelling());
  EXPECT_EQ(notices, 1);
}

}  // namespace
}  // namespace ostrelon
