#include <gtest/gtest.h>

#include "console/command_interpreter.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TestWorkspace;

TEST(Console, EchoesRunsAndReplies) {
  TestWorkspace t;
  const auto before = t.lines().size();
  t.submit("  \t ");
  EXPECT_EQ(t.lines().size(), before) << "blanks leave no trace";
  EXPECT_EQ(*t.console.input, "");

  t.console.setInput("  L 0 0 10 10");
  t.console.submit();
  const auto& lines = t.lines();
  EXPECT_EQ(lines[before].text, ">   L 0 0 10 10");
  EXPECT_FALSE(lines[before].isSystem);
  EXPECT_EQ(lines[before + 1].text, "Line added.");
  EXPECT_FALSE(lines[before + 1].isError);
}

TEST(Console, DrawsWhatTheCommandsSay) {
  TestWorkspace t;
  EXPECT_EQ(t.reply("line 0 0 1e1 10"), "Line added.");
  EXPECT_EQ(t.reply("wall 0 0 10 0 w2-ext"), "Wall added (W2-EXT).");
  EXPECT_EQ(t.reply("WALL 0 0 10 0"), "Wall added (W2-INT).");
  EXPECT_EQ(t.reply("circle 1 2 3"), "Circle added.");
  EXPECT_EQ(t.reply("RECTANGLE 0 0 4 4"), "Rectangle added.");
  EXPECT_EQ(t.reply("pl 0 0 1 0 1 1"), "Polygon added.");
  ASSERT_EQ(t.sketch.entities().size(), 6u);
  const auto& entities = t.sketch.entities();
  EXPECT_EQ(std::get<LineEntity>(entities[0]).to, (SketchPoint{10, 10}));
  EXPECT_EQ(t.sketch.drawing->wallSystemName(entities[1]), "W2-EXT");
  EXPECT_EQ(std::get<PolygonEntity>(entities[5]).vertices.size(), 3u);
  EXPECT_EQ(t.undoSteps(), 6u);
  EXPECT_EQ(t.sketch.selection->primary, std::optional(entityID(entities[2])))
      << "a wall becomes the selection, others leave it";
  EXPECT_EQ(t.reply("clear"), "Sketch cleared.");
  EXPECT_TRUE(t.sketch.entities().empty());
  EXPECT_EQ(t.undoSteps(), 7u);
}

TEST(Console, RefusedDrawingChangesNothing) {
  TestWorkspace t;
  t.submit("wall 0 0 10 0");
  const testing::WorkspaceState before(t);
  const std::vector<std::pair<std::string, std::string>> refusals{
      {"line 0 0 10", "Usage: line [<x1> <y1> <x2> <y2>]"},
      {"line 0 0 10 3'", "Usage: line [<x1> <y1> <x2> <y2>]"},
      {"wall 0 0 10", "Usage: wall <x1> <y1> <x2> <y2> [system]"},
      {"wall 0 0 x 0 Nope", "Usage: wall <x1> <y1> <x2> <y2> [system]"},
      {"wall 0 0 10 0 Nope", "Unknown wall system \"Nope\". Use spec list."},
      {"circle 0 0 -1", "Usage: circle <cx> <cy> <r>"},
      {"circle 0 0 nan", "Usage: circle <cx> <cy> <r>"},
      {"rect 0 0 0 5", "Usage: rect <x> <y> <w> <h>"},
      {"poly 0 0 1", "Usage: poly [<x1> <y1> <x2> <y2> ...]  (≥3 vertices)"},
      {"poly 0 0 1 x", "Usage: poly [<x1> <y1> <x2> <y2> ...]  (≥3 vertices)"},
      {"poly 0 0 1 1", "Polygon requires at least 3 vertices."},
      {"FOO bar", "Unknown command \"foo\". Type help for commands."},
      {"more or less", "Usage: more"},
      {"spec show nothing", "Unknown wall system."},
      {"spec", "Usage: spec list | spec use <name> | spec show [name]"},
      {"spec use", "Usage: spec use <name>"},
      {"spec use a b", "Usage: spec use <name>"},
  };
  for (const auto& [line, reply] : refusals) {
    EXPECT_EQ(t.reply(line), reply);
    EXPECT_EQ(t.lines().back().isError, !reply.starts_with("Polygon")) << reply;
  }
  EXPECT_EQ(testing::WorkspaceState(t), before);
}

TEST(Console, WallSystemsAreListedChosenAndShown) {
  TestWorkspace t;
  EXPECT_EQ(t.reply("spec list extra"),
            "  W2-INT *  t=4.5  h=96.0\n  W2-EXT  t=6.5  h=96.0\n  CMU-8  t=8.0  h=96.0");
  const auto change = t.submit("spec use cmu-8");
  ASSERT_EQ(change.size(), 2u);
  EXPECT_EQ(change[0].text, "Active wall system: CMU-8");
  EXPECT_EQ(change[1].text, "Active wall system: CMU-8.");
  EXPECT_EQ(t.submit("spec use CMU-8").size(), 1u);
  EXPECT_FALSE(t.sketch.isDirty) << "the choice of a system is no change of the document";
  t.submit("wall 0 0 5 0 W2-EXT");
  EXPECT_EQ(t.reply("spec show"), "W2-EXT\n  thickness: 6.5\n  height: 96.0\n  2×6 stud wall, exterior");
  t.sketch.clearSelection();
  EXPECT_EQ(t.reply("spec show").substr(0, 5), "CMU-8");
  EXPECT_EQ(t.reply("spec show w2-int more").substr(0, 6), "W2-INT");
}

TEST(Console, HelpIsOneSystemLineWithTheAliasesAtItsEnd) {
  TestWorkspace t;
  for (const char* word : {"help", "HELP me", "?"}) {
    const auto lines = t.submit(word);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].isSystem);
    EXPECT_TRUE(
        lines[0].text.starts_with("line [<x1> <y1> <x2> <y2>]     draw a line or activate line tool\n"));
    EXPECT_TRUE(lines[0].text.ends_with(
        "show this message\n\naliases:\n    rectangle -> rect\n    polygon -> poly\n    poly -> poly\n"
        "    ex -> extend\n    pl -> poly\n    ? -> help\n    l -> line\n    m -> move\n    z -> zoom"));
  }
}

TEST(Console, EachWordIsOneCommandsAndIsTellableByHelpOrMore) {
  using namespace CommandInterpreter;  // NOLINT(google-build-using-namespace)
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
  EXPECT_EQ(t.reply("MORE").substr(0, 4), "more");
  EXPECT_TRUE(t.lines().back().isSystem);
  EXPECT_EQ(helpText().find("\nmore"), std::string::npos);
}

}  // namespace
}  // namespace ostrelon
