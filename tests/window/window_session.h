// A person at the program in a real window: the fixture of the walks. Pictures of the stages stay in the
// build folder, under window-pictures.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/disk_workspace.h"
#include "window/virtual_screen.h"

namespace ostrelon::testing {

inline constexpr const char* kProgram = OSTRELON_BINARY_DIR "/ostrelon";
inline constexpr int kWidth = 1200;
inline constexpr int kHeight = 840;

struct WindowSession : ::testing::Test {
  TemporaryFolder folder;
  std::unique_ptr<VirtualScreen> screen;
  std::unique_ptr<Process> program;
  std::filesystem::path home = folder / "home";
  std::filesystem::path document = home / "Documents" / "Ostrelon" / "Untitled Project.ostrel";
  std::filesystem::path pictures = std::filesystem::path(OSTRELON_BINARY_DIR) / "window-pictures";

  void SetUp() override {
    for (const char* needed : {"Xvfb", "xdotool", "import"}) {
      if (!isInstalled(needed)) GTEST_SKIP() << needed << " is not installed";
    }
    screen = std::make_unique<VirtualScreen>(kWidth, kHeight, folder.path());
    ASSERT_TRUE(screen->isReady()) << readBytes(folder / "server.log");
    std::filesystem::create_directories(pictures);
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
  std::string log() const { return readBytes(folder / "program.log"); }
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
    const std::string settings = readBytes(home / "settings.json");
    return settings.find('"' + name + '"') == std::string::npos ? std::string() : settings;
  }
  std::size_t savedEntities() const {
    DiskWorkspace reader;
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

}  // namespace ostrelon::testing
