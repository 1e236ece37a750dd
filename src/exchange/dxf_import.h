// A DXF file into the open document, as one step that can be undone.
#pragma once

#include <string>
#include <vector>

#include "exchange/dxf_reader.h"

namespace ostrelon {

class Board;

/// The entities with every length multiplied by `factor`, above 0. Throws `DxfError` where a
/// coordinate would no longer be finite.
std::vector<SketchEntity> scaledEntities(std::vector<SketchEntity> entities, double factor);

/// What was taken in and what was not: "Imported 12 entities from "plan.dxf"; left out 3 objects:
/// HATCH 1, TEXT 2."
std::string dxfImportSentence(const DxfDrawing& drawing, const std::string& fileName);

/// Appends the drawing's entities, its unit taken as the sketch unit or, with `convertToFeet`,
/// converted where the file names one, and writes `dxfImportSentence` to the console. A drawing that
/// was empty before is then shown whole. Throws `DxfError`, and has changed nothing then; a file
/// with nothing to draw in it is an error too.
void importDxf(Board& board, DxfDrawing drawing, const std::string& fileName, bool convertToFeet = false);

}  // namespace ostrelon
