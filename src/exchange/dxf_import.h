// A DXF file into the open document, as one step that can be undone.
//
//   PreparedDxf prepared = prepareDxf(parseDxf(bytes), {.toOrigin = true});
//   importDxf(board, prepared, "plan.dxf");
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/entity_bounds.h"
#include "documents/saved_precision.h"
#include "exchange/dxf_reader.h"
#include "exchange/dxf_units.h"

namespace ostrelon {

class Board;

struct DxfImportOptions {
  /// Absent: the one that the file names, or the likely one.
  std::optional<DxfUnit> unit;
  /// Absent: all layers that are neither off nor frozen.
  std::optional<std::vector<std::string>> layers;
  /// The lower left corner of the drawing becomes the origin, to the foot.
  bool toOrigin = false;
  /// Whether what can be read of a damaged file is taken.
  DxfDamage damage = DxfDamage::refuse;
};

enum class DxfUnitSource { given, declared, likely };

/// What would be added, and all that is told about it.
struct PreparedDxf {
  DxfDrawing drawing;
  std::map<std::string_view, std::size_t> counts;  ///< of the entities, by kind: "line"
  DxfUnit unit;
  DxfUnitSource unitSource = DxfUnitSource::declared;
  /// Of all entities, sketch units; absent for none.
  std::optional<SketchBox> bounds;
  /// By how much the drawing was moved, sketch units.
  SketchPoint moved;

  struct Layer {
    std::string name;
    std::size_t objects = 0;
    bool isHidden = false;  ///< off or frozen
    bool isTaken = false;
  };
  std::vector<Layer> layers;  ///< those with something on them, in the order of the file

  std::size_t lostPlaces = 0;
  std::vector<std::string> losses;
};

/// Throws `DxfError` as `drawDxf` does.
PreparedDxf prepareDxf(const DxfFile& file, const DxfImportOptions& options = {});

/// How many objects were left out for a reason, and of which kinds: "2 objects on paper sheets: LINE 2".
std::vector<std::string> leftOutTexts(const DxfDrawing& drawing);

/// What was taken in and what was not: "Imported 12 entities from "plan.dxf" in feet; left out 3 objects
/// that cannot be drawn here: HATCH 1, TEXT 2."
std::string dxfImportSentence(const PreparedDxf& prepared, const std::string& fileName);

/// Appends the entities, which `prepared` then has no more, and writes `dxfImportSentence` and what else is
/// to be told to the console. A drawing that was empty before is then shown whole. A file with nothing to
/// draw in it is a `DxfError`, and changes nothing.
void importDxf(Board& board, PreparedDxf& prepared, const std::string& fileName);

}  // namespace ostrelon
