#include "app/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/console_run.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Mode = CommandLine::Mode;

std::string refusal(const std::vector<std::string>& arguments) {
  try {
    parseCommandLine(arguments);
  } catch (const CommandLineError& error) {
    return error.what();
  }
  return "";
}

TEST(CommandLineTest, OpensTheWindowUnlessThereIsWorkWithoutOne) {
  EXPECT_EQ(parseCommandLine({}).mode, Mode::window);
  const CommandLine withDocument = parseCommandLine({"house.ostrel", "--home", "/h"});
  EXPECT_EQ(withDocument.mode, Mode::window);
  EXPECT_EQ(withDocument.document, "house.ostrel");
  EXPECT_EQ(withDocument.home, "/h");
  EXPECT_TRUE(parseCommandLine({"-uiTestingResetProjectsFolder"}).isUITesting);
  const auto asksByVariable = [](const std::string& name) {
    return name == "UI_TESTING_RESET_PROJECTS" ? "1" : "";
  };
  EXPECT_TRUE(parseCommandLine({}, asksByVariable).isUITesting);
  EXPECT_FALSE(parseCommandLine({}, [](const std::string&) { return ""; }).isUITesting);
  EXPECT_EQ(parseCommandLine({"--automation", "--clock", "2026-01-01T00:00:00Z"}).mode, Mode::automation);
  EXPECT_EQ(parseCommandLine({"--open", "x.ostrel"}).mode, Mode::withoutWindow);
  EXPECT_EQ(parseCommandLine({"--console", "a", "--version"}).mode, Mode::version);
  EXPECT_EQ(parseCommandLine({"--help"}).mode, Mode::help);
  const CommandLine unfed = parseCommandLine({"--update-feed=", "--automation", "--update-key", ""});
  EXPECT_EQ(unfed.mode, Mode::automation) << "an empty address takes nothing that follows it";
  EXPECT_EQ(unfed.updateFeed, "");
  EXPECT_EQ(unfed.updateKey, "");
}

TEST(CommandLineTest, ReadsWhatToDoWithoutAWindow) {
  const CommandLine line = parseCommandLine({"--console", "a.txt", "--console", "-", "--open", "in.ostrel",
                                             "--save=out.OSTREL", "--export", "a.png", "--export", "b.SVG",
                                             "--size", "640x480", "--theme", "tansy", "--grid"});
  EXPECT_EQ(line.mode, Mode::withoutWindow);
  EXPECT_THAT(line.consoleFiles, ElementsAre("a.txt", "-"));
  EXPECT_EQ(line.document, "in.ostrel");
  EXPECT_EQ(line.saveAs, "out.OSTREL");
  ASSERT_EQ(line.exports.size(), 2u);
  EXPECT_EQ(line.exports[1], "b.SVG");
  EXPECT_EQ(line.exportOptions.size, (SketchSize{640, 480}));
  EXPECT_EQ(line.exportOptions.theme, ExportTheme::tansy);
  EXPECT_TRUE(line.exportOptions.showGrid);
}

TEST(CommandLineTest, ReadsHowToExportAndWhatToImport) {
  const CommandLine line =
      parseCommandLine({"--import", "a.dxf", "--to-feet", "--unit", "mm", "--layers", "A-WALL, A-DOOR",
                        "--to-origin", "--salvage", "--export", "b.pdf", "--paper", "ARCH D", "--scale",
                        "1/4in=1ft", "--landscape", "--dxf", "r12"});
  EXPECT_EQ(line.mode, Mode::withoutWindow);
  EXPECT_THAT(line.imports, ElementsAre("a.dxf"));
  EXPECT_EQ(line.importOptions.unit->name, "millimeters");
  EXPECT_THAT(*line.importOptions.layers, ElementsAre("A-WALL", "A-DOOR"));
  EXPECT_TRUE(line.importOptions.toOrigin);
  EXPECT_EQ(line.importOptions.damage, DxfDamage::salvage);
  EXPECT_EQ(line.exportOptions.paper->name, "ARCH D");
  EXPECT_EQ(line.exportOptions.scale->ratio, 48);
  EXPECT_EQ(line.exportOptions.orientation, PageOrientation::landscape);
  EXPECT_EQ(line.exportOptions.dxf.version, DxfVersion::r12);
  EXPECT_THAT(refusal({"--export", "a.png", "--scale", "48"}), HasSubstr("not a scale"));
  EXPECT_THAT(refusal({"--paper", "A4"}), HasSubstr("--paper needs --export"));
  EXPECT_THAT(refusal({"--to-feet"}), HasSubstr("needs --import"));
  EXPECT_THAT(refusal({"--import", "a.dxf", "--unit", "yd"}), HasSubstr("takes mm, cm, m, in or ft"));
}

TEST(CommandLineTest, RefusesWhatItDoesNotUnderstandInOneSentence) {
  EXPECT_THAT(refusal({"--frobnicate"}), HasSubstr("--frobnicate"));
  EXPECT_THAT(refusal({"-g"}), HasSubstr("Unknown option"));
  EXPECT_THAT(refusal({"--"}), HasSubstr("Unknown option"));
  EXPECT_THAT(refusal({"--grid=on", "--export", "a.png"}), HasSubstr("Unknown option \"--grid=on\""));
  EXPECT_THAT(refusal({"--console"}), HasSubstr("--console needs a value"));
  EXPECT_THAT(refusal({"--console=", "a"}), HasSubstr("--console needs a value"));
  EXPECT_THAT(refusal({"--export", "a.bmp"}), HasSubstr(".png, .svg, .pdf or .dxf"));
  EXPECT_THAT(refusal({"--open", "a.txt"}), HasSubstr(".ostrel"));
  EXPECT_THAT(refusal({"--theme", "blue", "--export", "a.png"}), HasSubstr("light, dark and tansy"));
  for (const char* size :
       {"", "640", "640x", "x480", "0x10", "10x-1", "1e3x10", "99999x10", "1x2x3", " 1x2"}) {
    EXPECT_NE(refusal({"--export", "a.png", "--size", size}), "") << size;
  }
  EXPECT_THAT(refusal({"--grid"}), HasSubstr("needs --export"));
  EXPECT_THAT(refusal({"--clock", "x"}), HasSubstr("belongs to --automation"));
  EXPECT_NE(refusal({"--automation", "--console", "a"}), "");
  EXPECT_NE(refusal({"a.ostrel", "b.ostrel"}), "");
  EXPECT_NE(refusal({"a.ostrel", "--open", "b.ostrel"}), "");
  EXPECT_NE(refusal({"a.txt"}), "");
  EXPECT_EQ(parseCommandLine({"a.DXF"}).mode, Mode::window);
  EXPECT_THAT(parseCommandLine({"a.DXF"}).imports, ElementsAre("a.DXF"));
  EXPECT_THAT(refusal({"a.dxf", "--save", "a.ostrel"}), HasSubstr("by --import a.dxf"));
  EXPECT_THAT(refusal({"--strict"}), HasSubstr("needs --console"));
}

TEST(ConsoleRun, PrintsTheTranscriptOnceAndNoticesErrors) {
  testing::TestWorkspace test;
  std::vector<std::string> printed;
  TranscriptPrinter transcript(test.workspace, [&](std::string_view text) { printed.emplace_back(text); });
  ConsoleScript script(test.workspace, "plan.txt", ConsoleScript::Rigor::lenient,
                       [&] { transcript.printNewLines(); });
  EXPECT_TRUE(script.run("\xEF\xBB\xBFline 0 0 1 1\r\n\n# a note\nclear\n"));
  EXPECT_FALSE(transcript.hasSeenError() || script.hasRefusal());
  EXPECT_THAT(printed, ::testing::Contains("> line 0 0 1 1"));
  EXPECT_THAT(printed, ::testing::Not(::testing::Contains(HasSubstr("a note"))));
  const auto count = printed.size();
  EXPECT_TRUE(script.run("line 1"));
  EXPECT_TRUE(transcript.hasSeenError() && script.hasRefusal());
  EXPECT_EQ(printed.size(), count + 2) << "the echo and the reply";
}

TEST(ConsoleRun, AStrictScriptEndsAtTheFirstRefusalOfAnyKind) {
  const auto ending = [](const char* lines) {
    testing::TestWorkspace test;
    ConsoleScript script(test.workspace, "plan.txt", ConsoleScript::Rigor::strict, [] {});
    const bool isAtEnd = script.run(lines);
    EXPECT_EQ(isAtEnd, !script.ending().has_value());
    EXPECT_EQ(test.sketch.entities().size(), 1U) << lines << ": what comes behind it is not run";
    return script.ending().value_or("");
  };
  EXPECT_EQ(ending("line 0 0 1 1\n# no line\nmove 1 1\nline 0 0 2 2\n"),
            "plan.txt:3: Select a line before moving.");
  EXPECT_EQ(ending("line 0 0 1 1\nfrobnicate\nline 0 0 2 2\n"),
            "plan.txt:2: Unknown command \"frobnicate\". Type help for commands.");
  EXPECT_EQ(ending("line 0 0 1 1\nline 0 0 1e39 2\n"), "plan.txt:2: 1e39 cannot be written into a file.");
  EXPECT_EQ(ending("line 0 0 1 1\nline 0 0 inf 2\n"), "plan.txt:2: inf cannot be written into a file.");
  EXPECT_EQ(ending("line 0 0 1 1\nhistory\nbranch list\n"), "") << "nothing to list is no refusal";
  // Without it the script goes on, and knows of a plain refusal too.
  testing::TestWorkspace test;
  ConsoleScript lenient(test.workspace, "plan.txt", ConsoleScript::Rigor::lenient, [] {});
  EXPECT_TRUE(lenient.run("move 1 1\nline 0 0 1 1\n"));
  EXPECT_TRUE(lenient.hasRefusal());
  EXPECT_EQ(test.sketch.entities().size(), 1U);
}

}  // namespace
}  // namespace ostrelon
