#include "app/drawing_exchange.h"

#include <fmt/format.h>

#include <memory>

#include "app/application.h"
#include "documents/overwrite_question.h"
#include "exchange/dxf_import.h"
#include "exchange/dxf_writer.h"
#include "exchange/picture_page.h"
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

void addDrawing(Application& application, DxfDrawing drawing, const std::string& name, bool convertToFeet) {
  Workspace& workspace = application.workspace();
  try {
    importDxf(workspace.board, std::move(drawing), name, convertToFeet);
    workspace.messages.showToast("Imported " + name, Style::success);
  } catch (const UserError& error) {
    tellFailure(workspace, "Import", error);
  }
}

void importFrom(Application& application, const FilePath& path) {
  const std::string name = path.filename().string();
  auto drawing = std::make_shared<DxfDrawing>();
  try {
    *drawing = readDxf(application.host().files.readFile(path));
  } catch (const UserError& error) {
    tellFailure(application.workspace(), "Import", error);
    return;
  }
  if (drawing->entities.empty() || !drawing->unit || drawing->unit->feet == 1) {
    addDrawing(application, std::move(*drawing), name, false);
    return;
  }
  const Alert question{fmt::format("\"{}\" is drawn in {}.", name, drawing->unit->name),
                       fmt::format("Ostrelon draws in feet. Converting multiplies every length by {:.6g}; "
                                   "otherwise the numbers are taken as they are.",
                                   drawing->unit->feet),
                       {std::string(kConvertButton), std::string(kKeepButton), "Cancel"},
                       2};
  application.host().dialogs.ask(question, [&application, drawing, name](const DialogAnswer& answer) {
    if (answer != kConvertButton && answer != kKeepButton) return;
    addDrawing(application, std::move(*drawing), name, answer == kConvertButton);
  });
}

void exportTo(Application& application, const FilePath& path, const ExportOptions& options) {
  Workspace& workspace = application.workspace();
  try {
    exportDrawing(workspace, path, options, application.makePicture());
  } catch (const UserError& error) {
    tellFailure(workspace, "Export", error);
    return;
  }
  workspace.messages.append(fmt::format("Exported to \"{}\".", path.string()), false, true);
  workspace.messages.showToast("Exported " + path.filename().string(), Style::success);
}

}  // namespace

void exportDrawing(const Workspace& workspace, const FilePath& path, const ExportOptions& options,
                   const PictureMaker& makePicture) {
  const ExportFormat format = exportFormatOf(path);
  FileSystem& files = workspace.host().files;
  if (format == ExportFormat::dxf) {
    files.writeFile(path, [&](const FileSystem::Writer& write) {
      writeDxf(workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs, options.dxfVersion,
               write);
    });
    return;
  }
  if (format == ExportFormat::pdf) {
    const auto pages =
        picturePages(format, workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs, options);
    files.writeFile(path, [&](const FileSystem::Writer& write) {
      writePdf(pages, workspace.sketch.entities(), workspace.sketch.drawing->wallSystemSpecs, options, write);
    });
    return;
  }
  if (!makePicture)
    throw ExportOptionError("Pictures of pixels cannot be drawn here; PDF and DXF can be written.");
  files.writeFile(path, makePicture(format, workspace.sketch.entities(),
                                    workspace.sketch.drawing->wallSystemSpecs, options));
}

void importDrawing(Workspace& workspace, const FilePath& path, bool convertToFeet) {
  importDxf(workspace.board, readDxf(workspace.host().files.readFile(path)), path.filename().string(),
            convertToFeet);
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

void importWithPanel(Application& application) {
  application.host().dialogs.ask(ImportPanel{documentFolder(application.workspace())},
                                 [&application](const DialogAnswer& answer) {
                                   if (answer) importFrom(application, standardizedPath(*answer));
                                 });
}

}  // namespace ostrelon
