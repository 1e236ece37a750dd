#include "window/virtual_screen.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "support/temporary_folder.h"

namespace ostrelon::testing {

namespace fs = std::filesystem;

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
  }
  return true;
}

bool isInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

// --- Processes

Process::Process(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
                 const fs::path& log) {
  pid_ = ::fork();
  if (pid_ != 0) return;
  // The child: nothing but what leads to its own program.
  for (const std::string& entry : environment) ::putenv(const_cast<char*>(entry.c_str()));
  const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (output < 0 || ::dup2(output, 1) < 0 || ::dup2(output, 2) < 0) ::_exit(126);
  std::vector<char*> words;
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  ::execvp(words.front(), words.data());
  ::_exit(127);
}

bool Process::hasEnded() {
  if (pid_ <= 0) return true;
  int state = 0;
  if (::waitpid(pid_, &state, WNOHANG) != pid_) return false;
  status_ = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
  pid_ = -1;
  return true;
}

void Process::kill() {
  if (hasEnded()) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

// --- The screen

VirtualScreen::VirtualScreen(int width, int height, const fs::path& folder) : folder_(folder) {
  // The server chooses a free number and writes it to the descriptor it is given.
  const fs::path number = folder / "display";
  const std::string size = std::to_string(width) + "x" + std::to_string(height) + "x24";
  server_ = std::make_unique<Process>(
      std::vector<std::string>{
          "sh", "-c",
          "exec Xvfb -displayfd 3 -screen 0 " + size + " -nolisten tcp -noreset 3>'" + number.string() + "'"},
      std::vector<std::string>{}, folder / "server.log");
  const bool started =
      eventually([&] { return server_->hasEnded() || readBytes(number).find('\n') != std::string::npos; });
  if (!started || server_->hasEnded()) return;
  const std::string written = readBytes(number);
  display_ = ":" + written.substr(0, written.find('\n'));
}

std::string VirtualScreen::run(const std::string& line) const {
  FILE* pipe = ::popen(("DISPLAY=" + display_ + " " + line + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return {};
  std::string output;
  char piece[4096];
  for (std::size_t count = 0; (count = std::fread(piece, 1, sizeof piece, pipe)) > 0;)
    output.append(piece, count);
  ::pclose(pipe);
  return output;
}

std::string VirtualScreen::titleOfWindow(const std::string& beginning) const {
  const std::string title = run("xdotool search --onlyvisible --name '^" + beginning + "' getwindowname %1");
  return title.substr(0, title.find('\n'));
}

void VirtualScreen::focus(const std::string& beginning) const {
  run("xdotool search --onlyvisible --name '^" + beginning + "' windowfocus --sync %1");
}

void VirtualScreen::type(const std::string& text) const { run("xdotool type --delay 8 '" + text + "'"); }

void VirtualScreen::key(const std::string& name) const { run("xdotool key " + name); }

void VirtualScreen::click(int x, int y) const {
  run("xdotool mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

void VirtualScreen::drag(int fromX, int fromY, int toX, int toY) const {
  const auto move = [](int x, int y) {
    return " mousemove --sync " + std::to_string(x) + " " + std::to_string(y);
  };
  run("xdotool" + move(fromX, fromY) + " mousedown 1" + move((fromX + toX) / 2, (fromY + toY) / 2) +
      move(toX, toY) + " mouseup 1");
}

Pixel VirtualScreen::pixel(int x, int y) const {
  const std::string bytes =
      run("import -window root -crop 1x1+" + std::to_string(x) + "+" + std::to_string(y) + " -depth 8 rgb:-");
  if (bytes.size() != 3) return {};
  const auto part = [&](std::size_t at) { return static_cast<int>(static_cast<unsigned char>(bytes[at])); };
  return {part(0), part(1), part(2)};
}

void VirtualScreen::shoot(const fs::path& file) const { run("import -window root '" + file.string() + "'"); }

}  // namespace ostrelon::testing
