#include "shell/run_without_window.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>

#include "app/console_run.h"
#include "core/sketch_view_model.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "shell/drawing_export.h"

namespace ostrelon {

namespace {

constexpr const char* kStandardInput = "-";

/// Qt's application object as SVG and PDF want it, on no display at all.
class DisplaylessApplication {
 public:
  DisplaylessApplication() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // What Qt has to say of a session without a desktop is no news to anybody.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    application_ = std::make_unique<QGuiApplication>(count_, arguments_);
  }

 private:
  int count_ = 1;
  char name_[9] = "ostrelon";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

void exportPictures(const CommandLine& line, const SketchViewModel& sketch, FileSystem& files) {
  const bool needsApplication =
      std::any_of(line.exports.begin(), line.exports.end(),
                  [](const ExportRequest& request) { return request.format != ExportFormat::png; });
  const auto application = needsApplication ? std::make_unique<DisplaylessApplication>() : nullptr;
  const PictureOptions options{line.exportSize, exportPalette(line.exportTheme), line.exportGrid};
  for (const ExportRequest& request : line.exports) {
    const QByteArray picture =
        drawingPicture(request.format, *sketch.entities, *sketch.wallSystemSpecs, options);
    files.writeFile(standardizedPath(request.path),
                    std::string_view(picture.constData(), static_cast<std::size_t>(picture.size())));
  }
}

/// The scripts that are files, read before anything is done, so that a missing one stops everything.
std::map<std::string, std::string> readScripts(const CommandLine& line, FileSystem& files) {
  std::map<std::string, std::string> scripts;
  for (const std::string& file : line.consoleFiles) {
    if (file != kStandardInput) scripts.emplace(file, files.readFile(standardizedPath(file)));
  }
  return scripts;
}

}  // namespace

int runWithoutWindow(const CommandLine& line) {
  DiskFileSystem files;
  // Nobody waits here: time stands still, and work that is due soon runs behind each line.
  VirtualScheduler scheduler(std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now()));
  QueuedDialogs dialogs;
  SketchViewModel sketch(Host{scheduler, dialogs, files});
  sketch.updateCanvasSize(line.exportSize);

  TranscriptPrinter transcript(sketch, [](std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
  });
  const auto afterLine = [&] {
    scheduler.advance(Seconds(0));
    transcript.printNewLines();
    std::fflush(stdout);
  };
  try {
    const auto scripts = readScripts(line, files);
    if (line.document) sketch.openDocumentFile(standardizedPath(*line.document));
    for (const std::string& file : line.consoleFiles) {
      if (file != kStandardInput) {
        runConsoleScript(sketch, scripts.at(file), afterLine);
        continue;
      }
      for (std::string text; std::getline(std::cin, text);) runConsoleScript(sketch, text, afterLine);
    }
    if (line.saveAs) sketch.saveDocumentFile(standardizedPath(*line.saveAs));
    exportPictures(line, sketch, files);
  } catch (const UserError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
  return transcript.hasSeenError() ? 1 : 0;
}

}  // namespace ostrelon
