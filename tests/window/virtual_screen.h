// A screen that nobody sees, programs that run on it, and hands for them: the X server's own
// keyboard and mouse.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ostrelon::testing {

/// Waits until the condition holds; false when it never did. Nothing here waits for a time alone.
bool eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds patience = std::chrono::seconds(30));

/// Whether a program of this name can be started.
bool isInstalled(const std::string& program);

/// A process of this test's own; killed at the end when it still runs.
class Process {
 public:
  /// `environment` holds NAME=VALUE entries that replace those of the test. Output goes to `log`.
  Process(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
          const std::filesystem::path& log);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() { kill(); }

  bool hasEnded();
  /// The exit status; -1 when a signal ended it. Only after its end.
  int status() const { return status_; }
  /// Ends it as a crash would, with no word to it.
  void kill();

 private:
  pid_t pid_ = -1;
  int status_ = -1;
};

/// Red, green and blue, each 0 to 255.
struct Pixel {
  int red = 0;
  int green = 0;
  int blue = 0;
  int lightness() const { return (red + green + blue) / 3; }
};

class VirtualScreen {
 public:
  VirtualScreen(int width, int height, const std::filesystem::path& folder);

  bool isReady() const { return !display_.empty(); }
  const std::string& display() const { return display_; }

  /// The title of a window that shows; empty when none begins so.
  std::string titleOfWindow(const std::string& beginning) const;
  /// Gives the window the keyboard. There is no window manager that would.
  void focus(const std::string& beginning) const;

  void type(const std::string& text) const;
  /// A key by its X name, with its modifiers: "Return", "ctrl+s".
  void key(const std::string& name) const;
  void click(int x, int y) const;
  void drag(int fromX, int fromY, int toX, int toY) const;

  Pixel pixel(int x, int y) const;
  /// A picture of the screen, for people.
  void shoot(const std::filesystem::path& file) const;

 private:
  std::string run(const std::string& line) const;

  std::filesystem::path folder_;
  std::string display_;  // ":7"
  std::unique_ptr<Process> server_;
};

}  // namespace ostrelon::testing
