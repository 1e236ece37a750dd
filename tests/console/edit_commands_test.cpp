#include <gtest/gtest.h>

#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TestWorkspace;

// Runs the lines and expects each to answer as told, as an error exactly where the wording says so.
void expectReplies(TestWorkspace& t, const std::vector<std::pair<std::string, std::string>>& lines) {
  for (const auto& [line, reply] : lines) {
    EXPECT_EQ(t.reply(line), reply) << line;
    EXPECT_EQ(t.lines().back().isError, reply.starts_with("Usage: ") || reply.starts_with("Unknown"));
  }
}

TEST(EditCommands, SelectAndSayWhat) {
  TestWorkspace t;
  t.submit("line 0 0 10 0; circle 5 5 1; rect 0 0 4 4");
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
  EXPECT_EQ(t.board.tool, SketchTool::trim);
  EXPECT_TRUE(t.sketch.selection->empty()) << "the trim tool starts with nothing selected";
}

TEST(EditCommands, EditTheSelection) {
  TestWorkspace t;
  t.submit("line 0 0 10 0");
  t.submit("line 20 -5 20 5");
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
  TestWorkspace t;
  t.submit("line 0 0 10 0; line 4 -5 4 5; circle 0 50 1");
  t.submit("poly 0 0 1 0 1 1");
  expectReplies(t, {{"trim 1 2", "Usage: trim [<n> <edge> <keep-x> <keep-y>]"},
                    {"trim 1 2 a 0", "Usage: trim [<n> <edge> <keep-x> <keep-y>]"},
                    {"trim 0 1 0 0", "Trim target not found."},
                    {"trim 1 -9223372036854775808 0 0", "Cutting edge not found."},
                    {"trim 1 1 0 0", "Trim target and cutting edge must be different entities."},
                    {"trim 1 4 0 0", "Entity type cannot be trimmed."},
                    {"trim 1 3 0 0", "Segments do not intersect."},
                    {"trim 1 2 9 0", "Entity 1 trimmed at intersection with Entity 2."}});
}

}  // namespace
}  // namespace ostrelon
