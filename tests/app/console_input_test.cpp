#include "app/console_input.h"

#include <gmock/gmock.h>

#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ConsoleRecall, GoesBackThroughTheLinesAndReturnsToWhatWasBeingTyped) {
  ConsoleRecall recall;
  EXPECT_EQ(recall.previous("half"), std::nullopt);
  recall.record("line 0 0 1 1");
  recall.record("help");
  EXPECT_EQ(recall.previous("half"), "help");
  EXPECT_EQ(recall.previous("help"), "line 0 0 1 1");
  EXPECT_EQ(recall.previous("line 0 0 1 1"), std::nullopt);
  EXPECT_EQ(recall.next(), "help");
  EXPECT_EQ(recall.next(), "half");
  EXPECT_EQ(recall.next(), std::nullopt);
}

TEST(ConsoleRecall, KeepsNeitherBlankLinesNorALineTwiceInARow) {
  ConsoleRecall recall;
  recall.record("undo me");
  recall.record("  ");
  recall.record("undo me");
  EXPECT_EQ(recall.previous(""), "undo me");
  EXPECT_EQ(recall.previous("undo me"), std::nullopt);
}

struct ConsoleCompletionTest : ::testing::Test {
  testing::TestWorkspace test;

  ConsoleCompletion complete(std::string_view line) {
    return completeConsoleLine(line, line.size(), test.workspace.commands());
  }
};

TEST_F(ConsoleCompletionTest, ASingleCandidateIsCompletedWithABlank) {
  const ConsoleCompletion completion = complete("cir");
  EXPECT_EQ(completion.text, "circle ");
  EXPECT_EQ(completion.cursor, 7U);
}

TEST_F(ConsoleCompletionTest, SeveralCandidatesAreCompletedAsFarAsTheyAgree) {
  const ConsoleCompletion completion = complete("po");
  EXPECT_EQ(completion.text, "poly");
  EXPECT_THAT(completion.candidates, ElementsAre("poly", "polygon"));
  EXPECT_THAT(complete("xyz").candidates, IsEmpty());
  EXPECT_EQ(complete("xyz").text, "xyz");
}

TEST_F(ConsoleCompletionTest, SubCommandsAndWallSystemsAreKnownByTheirPlace) {
  EXPECT_THAT(complete("spec ").candidates, ElementsAre("list", "show", "use"));
  EXPECT_EQ(complete("SPEC us").text, "SPEC use ");
  EXPECT_EQ(complete("spec use w2-e").text, "spec use W2-EXT ");
  EXPECT_EQ(complete("wall 0 0 10 0 c").text, "wall 0 0 10 0 CMU-8 ");
  EXPECT_THAT(complete("wall 0 0 c").candidates, IsEmpty());
  EXPECT_THAT(complete("spec list w").candidates, IsEmpty());
  EXPECT_EQ(complete("convert wall cm").text, "convert wall CMU-8 ");
  EXPECT_THAT(complete("convert line cm").candidates, IsEmpty());
  EXPECT_EQ(complete("type w").text, "type wall ");
  EXPECT_THAT(complete("s ").candidates, IsEmpty());
}

TEST_F(ConsoleCompletionTest, InAChainTheCommandOfTheCursorCounts) {
  EXPECT_EQ(complete("line 0 0 1 1; spec u").text, "line 0 0 1 1; spec use ");
  const ConsoleCompletion middle = completeConsoleLine("cir 0 0 4", 3, test.workspace.commands());
  EXPECT_EQ(middle.text, "circle 0 0 4");
  EXPECT_EQ(middle.cursor, 6U);
}

}  // namespace
}  // namespace ostrelon
