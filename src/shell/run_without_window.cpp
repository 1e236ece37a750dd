#include "shell/run_without_window.h"

#include <QString>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <map>

#include "app/console_run.h"
#include "app/drawing_exchange.h"
#include "app/drawing_files.h"
#include "app/workspace.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "platform/user_paths.h"
#include "shell/displayless_pictures.h"

namespace ostrelon {

namespace {

constexpr const char* kStandardInput = "-";
/// The exit status after a line of the console that was refused.
constexpr int kRefused = 1;

/// The scripts that are files, read before anything is done, so that a missing one stops everything.
std::map<std::string, std::string> readScripts(const CommandLine& line, FileSystem& files) {
  std::map<std::string, std::string> scripts;
  for (const std::string& file : line.consoleFiles) {
    if (file != kStandardInput) scripts.emplace(file, files.readFile(standardizedPath(file)));
  }
  return scripts;
}

FilePath documentsFolder(const CommandLine& line, FileSystem& files) {
  if (line.home) return userPathsBelow(standardizedPath(*line.home)).documentsFolder;
  return userPaths(files,
                   [](const std::string& name) { return qEnvironmentVariable(name.c_str()).toStdString(); })
      .documentsFolder;
}

}  // namespace

int runWithoutWindow(const CommandLine& line) {
  DiskFileSystem files;
  // Nothing waits here: time stands still, and work that is due soon runs after each line.
  VirtualScheduler scheduler(std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now()));
  QueuedDialogs dialogs;
  Workspace workspace(Host{scheduler, dialogs, files});
  workspace.board.resizeCanvas(line.exportOptions.size);
  workspace.document.setDocumentsFolder(documentsFolder(line, files));

  TranscriptPrinter transcript(workspace, [](std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
  });
  const auto afterLine = [&] {
    scheduler.advance(Seconds(0));
    transcript.printNewLines();
    std::fflush(stdout);
  };
  bool hasRefusal = false;
  try {
    const auto scripts = readScripts(line, files);
    if (line.document) workspace.document.open(standardizedPath(*line.document));
    for (const FilePath& path : line.imports) {
      importDrawing(workspace, standardizedPath(path), line.importOptions);
      afterLine();
    }
    const auto rigor = line.isStrict ? ConsoleScript::Rigor::strict : ConsoleScript::Rigor::lenient;
    for (const std::string& file : line.consoleFiles) {
      const bool isInput = file == kStandardInput;
      ConsoleScript script(workspace, isInput ? "standard input" : file, rigor, afterLine);
      if (isInput) {
        for (std::string text; std::getline(std::cin, text) && script.run(text + '\n');) {
        }
      } else {
        script.run(scripts.at(file));
      }
      hasRefusal |= script.hasRefusal();
      if (script.ending()) {
        std::fprintf(stderr, "%s\n", script.ending()->c_str());
        return kRefused;
      }
    }
    if (line.saveAs) workspace.document.save(standardizedPath(*line.saveAs));
    const PictureMaker makePicture = picturesWithoutDisplay();
    for (const FilePath& path : line.exports) {
      const std::string leftOut =
          exportDrawing(workspace, standardizedPath(path), line.exportOptions, makePicture);
      if (!leftOut.empty()) std::fprintf(stderr, "%s\n", leftOut.c_str());
    }
  } catch (const UserError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
  return hasRefusal || transcript.hasSeenError() ? kRefused : 0;
}

int runOnFiles(const CommandLine& line) {
  DiskFileSystem files;
  const PrintLine print = [](std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
  };
  try {
    switch (line.mode) {
      case CommandLine::Mode::compare:
        return compareFiles(line, files, print, pagePicturesWithoutDisplay());
      case CommandLine::Mode::merge:
        return mergeFiles(line, files, print);
      default:
        return describeFile(line, files, print);
    }
  } catch (const UserError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
}

}  // namespace ostrelon
