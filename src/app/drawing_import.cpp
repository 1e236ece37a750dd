#include "app/drawing_import.h"

#include <fmt/format.h>

#include "app/application.h"
#include "core/length_text.h"

namespace ostrelon {
namespace {

// What can be read of a damaged file; absent where that is nothing.
std::optional<DxfFile> salvagedDxf(const std::string& bytes) {
  try {
    DxfFile file = parseDxf(bytes, DxfDamage::salvage);
    if (!file.items.empty()) return file;
  } catch (const DxfError&) {
    // The damage that was found first is the one to tell of.
  }
  return std::nullopt;
}

}  // namespace

DrawingImport::DrawingImport(FileSystem& files, const FilePath& path) : name_(path.filename().string()) {
  const std::string bytes = files.readFile(path);
  try {
    file_ = parseDxf(bytes);
  } catch (const DxfError& error) {
    damage_ = error.what();
    auto salvaged = salvagedDxf(bytes);
    if (!salvaged) throw;
    file_ = std::move(*salvaged);
  }
}

PreparedDxf DrawingImport::prepared(const Sketch& sketch, const DxfImportOptions& options) const {
  PreparedDxf prepared;
  sketch.work(file_.items.size(), [&] { prepared = prepareDxf(file_, options); });
  return prepared;
}

std::string DrawingImport::extentText(const PreparedDxf& prepared) {
  if (!prepared.bounds) return "Nothing to draw";
  const SketchBox& box = *prepared.bounds;
  std::string feet = fmt::format("{} × {}", formatFeetInches(box.width()), formatFeetInches(box.height()));
  if (prepared.unit == kDxfFeet) return feet;
  return fmt::format("{:.6g} × {:.6g} {}, {}", box.width() / prepared.unit.feet,
                     box.height() / prepared.unit.feet, prepared.unit.name, feet);
}

void addImport(Application& application, const DrawingImport& import, const DxfImportOptions& options) {
  Workspace& workspace = application.workspace();
  try {
    PreparedDxf prepared = import.prepared(workspace.sketch, options);
    importDxf(workspace.board, prepared, import.name());
    workspace.messages.showToast("Imported " + import.name(), DocumentToastState::Style::success);
  } catch (const UserError& error) {
    std::string text = fmt::format("Import failed: {}", error.what());
    workspace.messages.append(text, true, false);
    workspace.messages.showToast(std::move(text), DocumentToastState::Style::error);
  }
}

}  // namespace ostrelon
