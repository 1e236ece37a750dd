#include "app/drawing_exchange.h"

#include <fmt/format.h>

#include <memory>

#include "app/application.h"
#include "app/drawing_import.h"
#include "core/text_table.h"
#include "documents/overwrite_question.h"
#include "exchange/dxf_import.h"
#include "exchange/dxf_writer.h"
#include "exchange/picture_page.h"
#include "geometry/opening_operations.h"
#include "geometry/opening_schedule.h"
#include "geometry/rooms.h"
#include "geometry/takeoff.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

using Style = DocumentToastState::Style;

constexpr std::string_view kConvertButton = "Convert to Feet";
constexpr std::string_view kKeepButton = "Keep the Numbers";

// The folder of the document, or the panel's own choice for one that was never saved.
FilePath documentFolder(const Workspace& workspace) {
  const auto& url = *workspace.document.fileURL;
  return url ? url->parent_path() : FilePath();
}

void tellFailure(Workspace& workspace, std::string_view what, const UserError& error) {
  std::string text = fmt::format("{} failed: {}", what, error.what());
  workspace.messages.append(text, true, false);
  workspace.messages.showToast(std::move(text), Style::error);
}

// What a DXF file cannot hold; empty where that is nothing.
std::string noSizeText(std::size_t count) {
  if (count == 0) return {};
  return count == 1 ? std::string("1 entity of no size was left out.")
                    : fmt::format("{} entities of no size were left out.", count);
}

std::string joinedSentences(const std::string& a, const std::string& b) {
  return a.empty() || b.empty() ? a + b : a + ' ' + b;
}

TextTable scheduleTable(ExportSchedule schedule, const Sketch& sketch, const OpeningLayout& openings) {
  const auto& systems = sketch.drawing->wallSystemSpecs;
  switch (schedule) {
    case ExportSchedule::openings:
      return openingScheduleTable(openings);
    case ExportSchedule::rooms:
      return roomScheduleTable(roomPlan(sketch.drawing), sketch.drawing->plan.roomNames);
    case ExportSchedule::takeoff:
      return takeoffTable(takeoff(sketch.entities(), systems, openings), openings);
  }
  return {};
}

void exportTo(Application& application, const FilePath& path, const ExportOptions& options) {
  Workspace& workspace = application.workspace();
  std::string leftOut;
  try {
    workspace.sketch.work(workspace.sketch.entities().size(), [&] {
      leftOut = exportDrawing(workspace, path, options, application.makePicture());
    });
  } catch (const UserError& error) {
    tellFailure(workspace, "Export", error);
    return;
  }
  workspace.messages.append(fmt::format("Exported to \"{}\".", path.string()), false, true);
  if (!leftOut.empty()) workspace.messages.appendSystem(leftOut);
  workspace.messages.showToast("Exported " + path.filename().string(), Style::success);
}

}  // namespace

std::string leftOutText(const OpeningLayout& openings) {
  const std::size_t count = openings.misfits();
  if (count == 0) return {};
  return fmt::format("{} left out, as {}; the command openings lists {}.",
                     count == 1 ? "1 opening was" : fmt::format("{} openings were", count),
                     count == 1 ? "it does not fit its wall" : "they do not fit their walls",
                     count == 1 ? "it" : "them");
}

std::string exportDrawing(const Workspace& workspace, const FilePath& path, const ExportOptions& given,
                          const PictureMaker& makePicture) {
  FileSystem& files = workspace.host().files;
  ExportOptions options = given;
  options.documentName = workspace.document.name;
  options.date = workspace.host().scheduler.now();
  if (!options.look) options.look = workspace.sketch.drawing->plan.look;
  takePlan(options, workspace.sketch);
  std::string leftOut = leftOutText(*options.openings);
  if (isTableFile(path)) {
    if (!options.schedule) {
      throw ExportOptionError("A .csv file holds a schedule: say which one, as --schedule openings.");
    }
    files.writeFile(path,
                    commaSeparated(scheduleTable(*options.schedule, workspace.sketch, *options.openings)));
    return leftOut;
  }
  const ExportFormat format = exportFormatOf(path);
  if (format == ExportFormat::dxf) {
    DxfWritten written;
    files.writeFile(path, [&](const FileSystem::Writer& write) {
      written = writeDxf(workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs, options.dxf,
                         write, *options.openings, *options.look);
    });
    return joinedSentences(noSizeText(written.leftOut), leftOut);
  }
  if (format == ExportFormat::pdf) {
    const auto pages =
        picturePages(format, workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs, options);
    files.writeFile(path, [&](const FileSystem::Writer& write) {
      writePdf(pages, workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs, options, write);
    });
    return leftOut;
  }
  if (!makePicture)
    throw ExportOptionError("Pictures of pixels cannot be drawn here; PDF and DXF can be written.");
  files.writeFile(path, makePicture(format, workspace.sketch.entities(),
                                    workspace.sketch.drawing->wallSystemSpecs, options));
  return leftOut;
}

PreparedDxf importDrawing(Workspace& workspace, const FilePath& path, const DxfImportOptions& options) {
  const DxfFile file = parseDxf(workspace.host().files.readFile(path), options.damage);
  PreparedDxf prepared = prepareDxf(file, options);
  importDxf(workspace.board, prepared, path.filename().string());
  return prepared;
}

void exportWithPanel(Application& application, const ExportOptions& options, ExportFormat suggested) {
  const Workspace& workspace = application.workspace();
  const std::string ending(fileEnding(suggested));
  const ExportPanel panel{documentFolder(workspace), *workspace.document.name + ending};
  application.host().dialogs.ask(panel, [&application, options, ending](const DialogAnswer& answer) {
    if (!answer) return;
    const FilePath given = standardizedPath(*answer);
    const FilePath path = withEnding(given, ending);
    askBeforeReplacing(application.host(), given, path, [&application, options, path](bool may) {
      if (may) exportTo(application, path, options);
    });
  });
}

void importFrom(Application& application, const FilePath& path) {
  std::shared_ptr<const DrawingImport> import;
  try {
    application.workspace().sketch.work(Sketch::kUnknownSize, [&] {
      import = std::make_shared<const DrawingImport>(application.host().files, path);
    });
    if (import->damage() && !application.windowActions().showImport) throw DxfError(*import->damage());
  } catch (const UserError& error) {
    tellFailure(application.workspace(), "Import", error);
    return;
  }
  if (application.windowActions().showImport) {
    application.windowActions().showImport(import);
    return;
  }
  const auto unit = declaredDxfUnit(import->file());
  if (import->file().items.empty() || !unit || unit->feet == 1) {
    addImport(application, *import, {});
    return;
  }
  const Alert question{fmt::format("\"{}\" is drawn in {}.", import->name(), unit->name),
                       fmt::format("Ostrelon draws in feet. Converting multiplies every length by {:.6g}; "
                                   "otherwise the numbers are taken as they are.",
                                   unit->feet),
                       {std::string(kConvertButton), std::string(kKeepButton), "Cancel"},
                       2};
  application.host().dialogs.ask(question, [&application, import](const DialogAnswer& answer) {
    if (answer != kConvertButton && answer != kKeepButton) return;
    DxfImportOptions options;
    if (answer == kKeepButton) options.unit = kDxfFeet;
    addImport(application, *import, options);
  });
}

void importWithPanel(Application& application) {
  application.host().dialogs.ask(ImportPanel{documentFolder(application.workspace())},
                                 [&application](const DialogAnswer& answer) {
                                   if (answer) importFrom(application, standardizedPath(*answer));
                                 });
}

}  // namespace ostrelon
