#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/random_drawing.h"
#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using testing::DocumentState;
using testing::TestSketch;

// Runs the lines and expects each to answer as told.
void expectReplies(TestSketch& t, const std::vector<std::pair<std::string, std::string>>& lines) {
  for (const auto& [line, reply] : lines) EXPECT_EQ(t.reply(line), reply) << line;
}

TEST(EditCommands, SelectAndSayWhat) {
  TestSketch t;
  t.run("line 0 0 10 0; circle 5 5 1; rect 0 0 4 4");
  expectReplies(t, {{"select 2", "Selected entity (circle)."},
                    {"s 1 3 3", "Selected 2 entities."},
                    {"select 2 2", "Selected entity (circle)."},
                    {"select 999", "Selected 0 entities."},
                    {"SELECT +1", "Selected entity (line)."},
                    {"select 1 x", "Usage: select [<n>…]  (1-based entity numbers)"},
                    {"select 0", "Usage: select [<n>…]  (1-based entity numbers)"},
                    {"select", "Select tool active."},
                    {"line", "Line tool active."},
                    {"pl", "Polygon tool active."},
                    {"tr", "Trim tool active. Select cutting edge, then click entities to trim."}});
  EXPECT_EQ(t.sketch.selectedTool, SketchTool::trim);
  EXPECT_TRUE(t.sketch.selectedEntityIDs->empty()) << "the trim tool starts with nothing selected";
}

TEST(EditCommands, EditTheSelection) {
  TestSketch t;
  t.run("line 0 0 10 0");
  t.run("line 20 -5 20 5");
  expectReplies(t, {{"co", "Select an entity to copy."},
                    {"paste", "Clipboard is empty."},
                    {"move 1 1", "Select a line before moving."},
                    {"length 5", "Select an entity first."},
                    {"nudge 0 0", "No change."},
                    {"nudge nan 1", "Invalid nudge values."},
                    {"center h", "Select at least 2 entities."},
                    {"extend 2", "Select a line first or use extend <line> <boundary>."},
                    {"select 1", "Selected entity (line)."},
                    {"length 12.50", "Length set to 12.50."},
                    {"length 12.5", "No change."},
                    {"length 0", "Usage: length <value>  (select an entity first)"},
                    {"m -2.5 0", "Line moved."},
                    {"nudge 0 1", "Selection nudged."},
                    {"nudge 0 -1", "Selection nudged."},
                    {"ex 2", "Line 1 extended to boundary 2."},
                    {"extend 1 2", "Line 1 could not be extended to boundary 2."},
                    {"extend 7 7", "Line and boundary must be different entities."},
                    {"extend 7 8", "No entity at index 7."},
                    {"copy x", "Usage: copy"},
                    {"cp", "1 entity copied."},
                    {"paste", "1 entity pasted."},
                    {"convert wall nope", "Unknown wall system."},
                    {"type WALL cmu-8", "Selection converted to wall."},
                    {"convert wall w2-ext", "No change."},
                    {"move 1 1", "Move currently supports selected lines only."},
                    {"extend 1", "Entity 3 is not a line."},
                    {"assign W2-EXT", "Wall assigned to W2-EXT."},
                    {"assign", "Usage: assign <system>  (select a wall first)"},
                    {"convert line x", "Selection converted to line."},
                    {"convert circle", "Usage: convert line|wall [system]"},
                    {"assign W2-EXT", "Usage: assign <system>  (select a wall first)"},
                    {"select 1 2", "Selected 2 entities."},
                    {"center H", "Selection already aligned horizontally."},
                    {"center v", "Aligned 2 entities vertically."},
                    {"center x", "Usage: center h|v  (align selected entities; need ≥2 selected)"}});
}

TEST(EditCommands, TrimByNumbers) {
  TestSketch t;
  t.run("line 0 0 10 0; line 4 -5 4 5; circle 0 50 1");
  t.run("poly 0 0 1 0 1 1");
  expectReplies(t, {{"trim 1 2", "Usage: trim [<n> <edge> <keep-x> <keep-y>]"},
                    {"trim 1 2 a 0", "Usage: trim [<n> <edge> <keep-x> <keep-y>]"},
                    {"trim 0 1 0 0", "Trim target not found."},
                    {"trim 1 -9223372036854775808 0 0", "Cutting edge not found."},
                    {"trim 1 1 0 0", "Trim target and cutting edge must be different entities."},
                    {"trim 1 4 0 0", "Entity type cannot be trimmed."},
                    {"trim 1 3 0 0", "Segments do not intersect."},
                    {"trim 1 2 9 0", "Entity 1 trimmed at intersection with Entity 2."}});
}

TEST(Chains, JoinSegmentsAndCountWhatTheyDo) {
  TestSketch t;
  expectReplies(
      t, {{"line 0 0 10 0; line 10 0 20 0", "Chain OK (2 commands): 1 line added, 1 collinear merge."},
          {"line 0 0 10 0; line 10 0 10 10", "Chain OK (2 commands): 2 lines added, 1 corner join."},
          {"line 0 0 10 0; line 10.001 0 20 0", "Chain OK (2 commands): 2 lines added."},
          {"line 0 0 10 0; wall 10 0 20 0", "Chain OK (2 commands): 1 line added, 1 wall added."},
          {"wall 0 0 10 0 W2-INT; wall 10 0 20 0 W2-EXT", "Chain OK (2 commands): 2 walls added."},
          {"line 0 0 10 0; circle 5 5 1; line 10 0 20 0",
           "Chain OK (3 commands): 2 lines added, 1 circle added."},
          {"l 0 0 10 0; L 10 0 0 0", "Chain OK (2 commands): 1 line added, 1 collinear merge."},
          {"line 0 0 0 0; line 0 0 1 0", "Chain OK (2 commands): 2 lines added, 1 corner join."},
          {"spec list; spec list", "Chain OK (2 commands): 2 spec commands."},
          {"select 1; select 2", "Chain OK (2 commands): 2 selections updated."},
          {"spec use CMU-8; wall 0 0 10 0", "Chain OK (2 commands): 1 wall added, 1 spec command."},
          {"wall 0 0 10 0; assign W2-EXT", "Chain OK (2 commands): 1 wall added, 1 wall assignment."}});
  EXPECT_EQ(t.sketch.wallSystemName(t.sketch.entities->back()), "W2-EXT");
}

TEST(Chains, AreOneUndoStepOrNothing) {
  TestSketch t;
  t.run("line 0 0 1 1");
  t.run("select 1");
  const DocumentState before(t.sketch);
  const std::vector<std::pair<std::string, std::string>> failures{
      {";", "Chain error at segment 1: empty command."},
      {"line 0 0 10 0;", "Chain error at segment 2: empty command."},
      {"line 0 0 1 1; clear",
       "Chain error at segment 2: clear cannot be used in a chain; run clear by itself."},
      {"select 1; pl 0 0 1 1 2 2",
       "Chain error at segment 2: Unknown command \"pl\". Type help for commands."},
      {"line 0 0 1 1; line", "Chain error at segment 2: line tool activation cannot be used in a chain."},
      {"select;", "Chain error at segment 2: empty command."},
      {"wall 0 0 1 1; select; assign CMU-8",
       "Chain error at segment 3: Usage: assign <system>  (select a wall first)"},
      {"spec list x; line 0 0 1 1",
       "Chain error at segment 1: Usage: spec list | spec use <name> | spec show [name]"},
      {"spec show nope;", "Chain error at segment 1: Unknown wall system."}};
  for (const auto& [line, reply] : failures) {
    EXPECT_EQ(t.reply(line), reply);
    EXPECT_TRUE(t.sketch.consoleLines->back().isError);
    EXPECT_EQ(DocumentState(t.sketch), before) << line;
  }
  t.run("wall 0 0 10 0; circle 1 1 1; rect 0 0 2 2; select 2; assign CMU-8");
  EXPECT_EQ(t.sketch.undoStack().undoSnapshots().size(), before.undoSteps + 1);
  t.sketch.undo();
  EXPECT_EQ(*t.sketch.entities, before.entities);
}

TEST(Chains, ARunThatFailsGoesBackWhole) {
  TestSketch t;
  // The merge makes one wall of two, so the number that was right in checking is not there at the run.
  const DocumentState before(t.sketch);
  EXPECT_EQ(t.reply("wall 0 0 5 0; wall 5 0 9 0; select 2; assign CMU-8"),
            "Chain error at segment 4: Could not assign system to selection.");
  EXPECT_EQ(DocumentState(t.sketch), before);
}

}  // namespace
}  // namespace ostrelon
