// The program as a person meets it, in a real window: the first start, drawing, saving, closing with
// the question, the next start, and recovery after a crash. Pictures of the stages stay in the build
// folder, under window-pictures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/disk_workspace.h"
#include "window/virtual_screen.h"

namespace ostrelon {
namespace {

namespace fs = std::filesystem;
using testing::eventually;
using testing::Process;

constexpr const char* kProgram = OSTRELON_BINARY_DIR "/ostrelon";
constexpr int kWidth = 1200;
constexpr int kHeight = 840;

struct WholeSession : ::testing::Test {
  testing::TemporaryFolder folder;
  std::unique_ptr<testing::VirtualScreen> screen;
  std::unique_ptr<Process> program;
  fs::path home = folder / "home";
  fs::path document = home / "Documents" / "Ostrelon" / "Untitled Project.ostrel";
  fs::path pictures = fs::path(OSTRELON_BINARY_DIR) / "window-pictures";

  void SetUp() override {
    for (const char* needed : {"Xvfb", "xdotool", "import"}) {
      if (!testing::isInstalled(needed)) GTEST_SKIP() << needed << " is not installed";
    }
    screen = std::make_unique<testing::VirtualScreen>(kWidth, kHeight, folder.path());
    ASSERT_TRUE(screen->isReady()) << testing::readBytes(folder / "server.log");
    fs::create_directories(pictures);
  }

  /// Starts the program and waits for its window, which must have one of the two looks.
  void start(std::vector<std::string> arguments, bool withSheet) {
    std::vector<std::string> line{kProgram, "--home", home.string()};
    line.insert(line.end(), arguments.begin(), arguments.end());
    program = std::make_unique<Process>(
        line,
        std::vector<std::string>{"DISPLAY=" + screen->display(), "QT_QPA_PLATFORM=xcb", "QT_SCALE_FACTOR=1",
                                 "LC_ALL=C.UTF-8", "XDG_RUNTIME_DIR=" + folder.path().string(),
                                 "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"},
        folder / "program.log");
    ASSERT_TRUE(eventually([&] { return !screen->titleOfWindow("Untitled Project").empty(); })) << log();
    ASSERT_TRUE(eventually([&] { return withSheet ? hasSheet() : isClear(); })) << log();
    screen->focus("Untitled Project");
  }
  std::string log() const { return testing::readBytes(folder / "program.log"); }
  std::string title() const { return screen->titleOfWindow("Untitled Project"); }
  void shoot(const char* name) const { screen->shoot(pictures / (std::string(name) + ".png")); }

  /// The lightness of the navigation where nothing stands. A sheet's scrim dims it.
  int paperLightness() const { return screen->pixel(4, 600).lightness(); }
  bool hasSheet() const { return paperLightness() > 120 && paperLightness() < 235; }
  bool isClear() const { return paperLightness() >= 250; }

  /// Presses Return until what it leads to has come: the key is lost while a sheet is still opening,
  /// and an empty console line takes it without a trace.
  void pressReturnUntil(const std::function<bool()>& done) {
    ASSERT_TRUE(eventually([&] {
      screen->key("Return");
      return eventually(done, std::chrono::seconds(1));
    })) << log();
  }
  void console(const std::string& line) {
    screen->type(line);
    screen->key("Return");
  }
  std::string setting(const std::string& name) const {
    const std::string settings = testing::readBytes(home / "settings.json");
    return settings.find('"' + name + '"') == std::string::npos ? std::string() : settings;
  }
  std::size_t savedEntities() const {
    testing::DiskWorkspace reader;
    reader.document.open(document);
    return reader.sketch.entities().size();
  }
  /// Ends the program by its own menu command, with nothing to ask about.
  void quit() {
    screen->key("ctrl+q");
    ASSERT_TRUE(eventually([&] { return program->hasEnded(); })) << log();
    EXPECT_EQ(program->status(), 0) << log();
  }
};

TEST_F(WholeSession, FromTheFirstStartToRecoveryAfterACrash) {
  // The first start asks for a folder.
  ASSERT_NO_FATAL_FAILURE(start({}, true));
  shoot("1-first-run");
  EXPECT_EQ(setting("ostrel.projectsFolderPath"), "");
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  EXPECT_TRUE(fs::is_directory(document.parent_path()));

  // Drawing, by words and by hand.
  console("wall 0 0 40 0");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  screen->click(90, 259);  // Rectangle
  screen->drag(420, 160, 540, 240);
  screen->click(90, 163);  // Line
  screen->drag(620, 160, 760, 240);
  shoot("2-drawn");

  // Saving.
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project" && fs::exists(document); })) << title();
  EXPECT_EQ(savedEntities(), 3U);
  shoot("3-saved");

  // Closing with changes asks; Cancel keeps the window, Save ends it.
  screen->key("Escape");
  console("circle 10 -20 6");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  screen->key("ctrl+q");
  ASSERT_TRUE(eventually([&] { return hasSheet(); }));
  shoot("4-question");
  screen->key("Escape");
  ASSERT_TRUE(eventually([&] { return isClear(); }));
  EXPECT_FALSE(program->hasEnded());
  EXPECT_EQ(savedEntities(), 3U);
  screen->key("ctrl+q");
  ASSERT_TRUE(eventually([&] { return hasSheet(); }));
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return program->hasEnded(); }));
  EXPECT_EQ(program->status(), 0) << log();
  EXPECT_EQ(savedEntities(), 4U);

  // The next start asks nothing, and opens what it is given.
  ASSERT_NO_FATAL_FAILURE(start({document.string()}, false));
  console("line 0 30 40 30");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project"; })) << title();
  EXPECT_EQ(savedEntities(), 5U);
  shoot("5-started-again");
  ASSERT_NO_FATAL_FAILURE(quit());

  // An auto-save, minutes long in a moment, and then a crash.
  const fs::path script = folder / "script";
  testing::writeBytes(script, R"({"op":"call","name":"openDocument","args":[")" + document.string() + R"("]}
{"op":"submit","text":"line 0 40 40 40"}
{"op":"time.advance","seconds":301}
)");
  const std::string automation = std::string(kProgram) + " --automation --home '" + home.string() + "' <'" +
                                 script.string() + "' >>'" + (folder / "program.log").string() + "'";
  ASSERT_EQ(std::system(automation.c_str()), 0) << log();
  EXPECT_EQ(savedEntities(), 6U);
  ASSERT_NO_FATAL_FAILURE(start({}, false));
  program->kill();

  ASSERT_NO_FATAL_FAILURE(start({}, true));
  shoot("6-recovery");
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  screen->key("ctrl+0");  // zoom to fit
  console("line 0 50 40 50");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  shoot("7-restored");
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project"; })) << title();
  EXPECT_EQ(savedEntities(), 7U) << "it went on from what was saved last";
  ASSERT_NO_FATAL_FAILURE(quit());

  // It ended well, so nothing is offered.
  ASSERT_NO_FATAL_FAILURE(start({}, false));
  ASSERT_NO_FATAL_FAILURE(quit());
}

TEST(WithoutAWindow, NeitherJournalNorKeptDrawingIsLeft) {
  testing::TemporaryFolder folder;
  testing::writeBytes(folder / "script", "line 0 0 1 1\n");
  const std::string program = std::string(kProgram) + " --home '" + folder.path().string() + "' --console '" +
                              (folder / "script").string() + "' --save '" + (folder / "A.ostrel").string() +
                              "'";
  ASSERT_EQ(std::system((program + " >/dev/null").c_str()), 0);
  testing::writeBytes(folder / "script", "line 0 0 2 2\nline 0 0 3 3\n");
  ASSERT_EQ(std::system((program + " >/dev/null").c_str()), 0) << "the file is replaced";
  EXPECT_THAT(testing::readBytes(folder / "A.ostrel"), ::testing::HasSubstr("0,0,3,3"));
  EXPECT_FALSE(fs::exists(folder / "state"));
}

}  // namespace
}  // namespace ostrelon
