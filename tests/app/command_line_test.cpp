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
  EXPECT_EQ(line.exportOptions.dxfVersion, DxfVersion::r12);
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
}

TEST(ConsoleRun, PrintsTheTranscriptOnceAndNoticesErrors) {
  testing::TestWorkspace test;
  std::vector<std::string> printed;
  TranscriptPrinter transcript(test.workspace, [&](std::string_view text) { printed.emplace_back(text); });
  runConsoleScript(test.workspace, "line 0 0 1 1\r\n\nclear\n", [&] { transcript.printNewLines(); });
  EXPECT_FALSE(transcript.hasSeenError());
  EXPECT_THAT(printed, ::testing::Contains("> line 0 0 1 1"));
  const auto count = printed.size();
  runConsoleScript(test.workspace, "line 1", [&] { transcript.printNewLines(); });
  EXPECT_TRUE(transcript.hasSeenError());
  EXPECT_EQ(printed.size(), count + 2) << "the echo and the reply";
}

}  // namespace
}  // namespace ostrelon
