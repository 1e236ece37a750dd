// The program: reads its options and starts the way they ask for.
#include <QtGlobal>
#include <cstdio>
#include <exception>
#include <string_view>

#include "app/command_line.h"
#include "automation/automation_start.h"
#include "build_information.h"
#include "shell/displayless_pictures.h"
#include "shell/run_without_window.h"
#include "shell/windowed_program.h"

namespace {

/// Without one Qt would end the process by a signal.
bool hasDisplay() {
#if defined(Q_OS_LINUX)
  const auto isSet = [](const char* name) { return !qEnvironmentVariableIsEmpty(name); };
  return isSet("QT_QPA_PLATFORM") || isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
#else
  return true;
#endif
}

int run(int argc, char** argv) {
  using ostrelon::CommandLine;
  CommandLine line;
  try {
    line = ostrelon::parseCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc}, [](const std::string& name) {
      return qEnvironmentVariable(name.c_str()).toStdString();
    });
  } catch (const ostrelon::CommandLineError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
  switch (line.mode) {
    case CommandLine::Mode::help:
      std::fputs(ostrelon::commandLineHelp().c_str(), stdout);
      return 0;
    case CommandLine::Mode::version:
      std::printf("Ostrelon %s\n", ostrelon::kBuildVersion);
      return 0;
    case CommandLine::Mode::withoutWindow:
      return ostrelon::runWithoutWindow(line);
    case CommandLine::Mode::compare:
    case CommandLine::Mode::merge:
    case CommandLine::Mode::describe:
      return ostrelon::runOnFiles(line);
    case CommandLine::Mode::automation:
      return ostrelon::serveAutomation(line, ostrelon::picturesWithoutDisplay());
    case CommandLine::Mode::window:
      if (!hasDisplay()) {
        std::fputs("There is no display to open a window on; --help tells what works without one.\n", stderr);
        return 2;
      }
      return ostrelon::runWithWindows(
          argc, argv,
          {.home = line.home,
           .document = line.document,
           .drawing = line.imports.empty() ? std::nullopt : std::optional(line.imports.front()),
           .isUITesting = line.isUITesting});
  }
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    const std::string_view reason = error.what();
    std::fprintf(stderr, "Ostrelon cannot go on: %s%s\n", error.what(), reason.ends_with('.') ? "" : ".");
    return 2;
  }
}
