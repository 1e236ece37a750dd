// Comparing, merging and describing files by their content, as version control asks for it.
#include "app/drawing_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "documents/opened_document.h"
#include "documents/sketch_document_io.h"
#include "platform/disk_file_system.h"
#include "support/dxf.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::readBytes;
using testing::TemporaryFolder;
using testing::writeBytes;

struct DrawingFilesTest : ::testing::Test {
  TemporaryFolder folder;
  DiskFileSystem files;
  std::vector<std::string> printed;
  Drawing base;
  UUID wall = *UUID::parse("00000000-0000-4000-8000-000000000001");
  UUID line = *UUID::parse("00000000-0000-4000-8000-000000000002");
  const UUID system = *UUID::parse("00000000-0000-4000-8000-00000000000A");

  DrawingFilesTest() {
    base.wallSystemSpecs = {{system, "W2 \"EXT\"", 4.5, 96, "2×4\nstud"}};
    base.entities = {WallEntity{wall, {0, 0}, {9.6, -0.0}, system}, LineEntity{line, {1, 2}, {3, 4}}};
  }
  std::string file(const std::string& name, const Drawing& drawing) {
    const std::string path = (folder / name).string();
    writeBytes(path, SketchDocumentIO::encodeDocument(documentOf("Plan", drawing, {})));
    return path;
  }
  // The exit status, or -1 with what was thrown printed.
  int run(const std::vector<std::string>& arguments) {
    printed.clear();
    const PrintLine print = [&](std::string_view text) { printed.emplace_back(text); };
    try {
      const CommandLine line = parseCommandLine(arguments);
      if (line.mode == CommandLine::Mode::compare) return compareFiles(line, files, print);
      if (line.mode == CommandLine::Mode::merge) return mergeFiles(line, files, print);
      return describeFile(line, files, print);
    } catch (const UserError& error) {
      printed = {error.what()};
      return -1;
    }
  }
};

TEST_F(DrawingFilesTest, ADrawingIsDescribedAnEntityALine) {
  base.entities.append(PolygonEntity{line, {{0, 0}, {1, 0}, {0.1, 1}}});
  base.entities.append(WallEntity{wall, {0, 0}, {1, 1}, UUID::random()});
  std::vector<std::string> lines;
  describeDrawing(base, [&](std::string_view text) { lines.emplace_back(text); });
  EXPECT_THAT(
      lines,
      ElementsAre(
          "wall-system 00000000-0000-4000-8000-00000000000A \"W2 \\\"EXT\\\"\" thickness 4.5 height 96 "
          "notes \"2×4\\nstud\"",
          "wall 00000000-0000-4000-8000-000000000001 0 0 9.6 0 \"W2 \\\"EXT\\\"\"",
          "line 00000000-0000-4000-8000-000000000002 1 2 3 4",
          "polygon 00000000-0000-4000-8000-000000000002 0 0 1 0 0.1 1",
          "wall 00000000-0000-4000-8000-000000000001 0 0 1 1 unknown"));
}

TEST_F(DrawingFilesTest, FilesAreReadByTheirContentWhateverTheirNames) {
  const std::string before = file("before", base);
  Drawing changed = base;
  changed.entities.replace(1, LineEntity{line, {1, 2}, {3, 4.5}});
  const std::string after = file("after.tmp", changed);
  EXPECT_EQ(run({"--compare", before, before}), 0);
  EXPECT_THAT(printed, ElementsAre("No differences."));
  EXPECT_EQ(run({"--compare", before, after}), 1);
  EXPECT_THAT(printed, ElementsAre("1 changed.", HasSubstr("Line 2: ")));
  // A document that was added or removed, as version control says it.
  EXPECT_EQ(run({"--compare", "/dev/null", after}), 1);
  EXPECT_THAT(printed.front(), "2 added; wall systems: 1 added.");
  EXPECT_EQ(run({"--describe", after}), 0);
  EXPECT_EQ(printed.size(), 3U);
  const std::string nothing = (folder / "nothing").string();
  EXPECT_EQ(run({"--compare", before, nothing}), -1);
  EXPECT_THAT(printed, ElementsAre(HasSubstr("nothing")));
  writeBytes(nothing, "<svg/>");
  EXPECT_EQ(run({"--describe", nothing}), -1);
  EXPECT_THAT(printed, ElementsAre(HasSubstr("Could not read “nothing”: ")));
}

TEST_F(DrawingFilesTest, AMergeWritesOurDocumentOrNothing) {
  Drawing ours = base;
  ours.entities.replace(0, WallEntity{wall, {-2, 0}, {9.6, 0}, system});
  Drawing theirs = base;
  theirs.entities.replace(0, WallEntity{wall, {0, 0}, {12, 0}, system});
  const std::string b = file("b", base);
  const std::string o = file("o", ours);
  const std::string out = (folder / "out").string();
  EXPECT_EQ(run({"--merge", b, o, file("t", theirs), "--save", out}), 0);
  const OpenedDocument merged = openedDocument(SketchDocumentIO::decodeDocument(readBytes(out)), Drawing());
  EXPECT_EQ(merged.name, "Plan");
  EXPECT_EQ(std::get<WallEntity>(merged.drawing.entities[0]).from, (SketchPoint{-2, 0}));
  EXPECT_EQ(std::get<WallEntity>(merged.drawing.entities[0]).to, (SketchPoint{12, 0}));
  ASSERT_EQ(merged.undo.size(), 1U);
  EXPECT_EQ(std::get<WallEntity>(merged.undo[0].entities[0]).from, (SketchPoint{-2, 0}));

  theirs.entities.remove(0);
  const std::string t = file("t", theirs);
  const std::string before = readBytes(o);
  EXPECT_EQ(run({"--merge", b, o, t, "--save", o}), 1);
  EXPECT_THAT(printed, ElementsAre("1 conflict:", "Wall 1: here 2' longer, there removed"));
  EXPECT_EQ(readBytes(o), before);
  EXPECT_EQ(run({"--merge", b, o, t, "--save", out, "--prefer", "theirs"}), 0);
  EXPECT_EQ(run({"--compare", out, t}), 0);
  // An empty base is none.
  writeBytes(out, "");
  EXPECT_EQ(run({"--merge", out, o, o, "--save", out}), 0);
  EXPECT_EQ(run({"--merge", "/dev/null", o, t, "--save", out}), 1);
  EXPECT_EQ(run({"--merge", b, o, t, "--save", (folder / "no" / "out").string(), "--prefer", "ours"}), -1);
}

TEST_F(DrawingFilesTest, ADifferenceIsDrawnAsWell) {
  Drawing other = base;
  other.entities = {WallEntity{wall, {0, 1}, {9.6, 1}, system}, CircleEntity{UUID::random(), {30, 0}, 2}};
  const std::string o = file("old", base);
  const std::string n = file("new", other);
  const std::string dxf = (folder / "out.dxf").string();
  const std::string pdf = (folder / "out.pdf").string();
  EXPECT_EQ(run({"--compare", o, n, "--export", dxf, "--export", pdf, "--paper", "Letter"}), 1);
  EXPECT_EQ(printed.front(), "1 added, 1 removed, 1 changed.");
  EXPECT_TRUE(readBytes(pdf).starts_with("%PDF"));
  const std::string bytes = readBytes(dxf);
  const std::string text = bytes.substr(bytes.find("ENTITIES"));
  for (const char* layer : {"CHANGED-BEFORE", "REMOVED", "CHANGED-AFTER", "ADDED", "CLOUDS"}) {
    EXPECT_THAT(text, HasSubstr(layer));
  }
  EXPECT_THAT(text, Not(HasSubstr("UNCHANGED")));
  EXPECT_EQ(testing::readDxf(bytes).entities.size(), 8U)
      << "two walls of two parts, a line, a circle and two clouds";
  EXPECT_EQ(run({"--compare", o, n, "--export", (folder / "out.png").string()}), -1)
      << "nothing to draw it with";
}

TEST_F(DrawingFilesTest, OptionsThatDoNotGoTogetherAreRefused) {
  const auto refusal = [&](const std::vector<std::string>& arguments) {
    EXPECT_EQ(run(arguments), -1);
    return printed.front();
  };
  EXPECT_EQ(refusal({"--compare", "a"}), "The option --compare needs two files, the old and the new one.");
  EXPECT_EQ(refusal({"--merge", "a", "b", "c"}), "The option --merge needs --save.");
  EXPECT_EQ(refusal({"--merge", "a", "b", "--save", "c"}),
            "The option --merge needs three files: base, ours and theirs.");
  EXPECT_THAT(refusal({"--merge", "a", "b", "c", "--save", "d", "--prefer", "mine"}), HasSubstr("\"mine\""));
  EXPECT_THAT(refusal({"--describe", "a", "--prefer", "ours"}), HasSubstr("--prefer needs --merge"));
  EXPECT_THAT(refusal({"--describe", "a", "--compare", "a", "b"}), HasSubstr("do not go together"));
  EXPECT_THAT(refusal({"--compare", "a", "b", "--console", "c"}), HasSubstr("no other work"));
  EXPECT_THAT(refusal({"--compare", "a", "b", "--save", "c.ostrel"}), HasSubstr("no other work"));
  EXPECT_THAT(refusal({"--compare", "a", "b", "--grid"}), HasSubstr("--grid needs --export"));
  EXPECT_THAT(refusal({"--describe", "a", "--export", "b.pdf"}), HasSubstr("no other work"));
}

}  // namespace
}  // namespace ostrelon
