// Drawings out to files of other kinds, and in from them: the operations of the menu commands, the options of
// the command line and the requests of scripts.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "core/entity_list.h"
#include "core/wall_system.h"
#include "exchange/dxf_import.h"
#include "exchange/export_options.h"
#include "platform/file_system.h"

namespace ostrelon {

class Application;
class Workspace;

/// Paints a picture of the entities and gives its bytes; asked for PNG and SVG alone. Throws `UserError`.
using PictureMaker =
    std::function<std::string(ExportFormat format, const EntityList& entities,
                              std::span<const WallSystemSpec> systems, const ExportOptions& options)>;

/// Writes all entities to a file of the kind that its name ends in. Throws `UserError`, and has written
/// nothing then. `makePicture` may be empty, and PNG and SVG are then refused. A .csv file holds the schedule
/// that the options name. Gives what was left out, as a sentence; empty: nothing.
std::string exportDrawing(const Workspace& workspace, const FilePath& path, const ExportOptions& options,
                          const PictureMaker& makePicture);

/// What of a drawing's openings an export or a print leaves out, as a sentence; empty where that is nothing.
std::string leftOutText(const OpeningLayout& openings);

/// Reads a DXF file and adds what it draws, which the result tells without the entities. Throws `UserError`,
/// and has changed nothing then.
PreparedDxf importDrawing(Workspace& workspace, const FilePath& path, const DxfImportOptions& options);

// --- From the menus. The result is reported in the console and in a toast.

/// Asks for a place in the folder of the document, and exports there.
/// `suggested`: the kind of file that the name offered ends in; a name without an ending gets it too.
void exportWithPanel(Application& application, const ExportOptions& options,
                     ExportFormat suggested = ExportFormat::pdf);
/// Asks for a DXF file, and goes on as `importFrom` does.
void importWithPanel(Application& application);
/// Reads a DXF file and asks how to add it: a window in its sheet, else whether one in another unit should
/// be converted to feet.
void importFrom(Application& application, const FilePath& path);

}  // namespace ostrelon
