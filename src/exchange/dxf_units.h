// The units in which drawings come from other programs.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "core/sketch_point.h"
#include "exchange/dxf_file.h"

namespace ostrelon {

struct DxfUnit {
  std::string_view name;  ///< in the plural: "millimeters"
  double feet = 1;        ///< feet in one
  friend bool operator==(const DxfUnit&, const DxfUnit&) = default;
};

inline constexpr DxfUnit kDxfFeet{"feet", 1};

/// Those that are asked for: "mm", "cm", "m", "in", "ft".
struct NamedDxfUnit {
  std::string_view word;
  DxfUnit unit;
};
std::span<const NamedDxfUnit> namedDxfUnits();
/// By its word; absent for any other.
std::optional<DxfUnit> dxfUnitNamed(std::string_view word);

/// The unit in which a file says that it is drawn; absent where it names none.
std::optional<DxfUnit> declaredDxfUnit(const DxfFile& file);

/// The unit of a file that names none, by its extent: what makes a building, or a part of one, of it.
/// `isMetric`: which of both systems the file is of, where it says so.
DxfUnit likelyDxfUnit(SketchSize extent, std::optional<bool> isMetric);

}  // namespace ostrelon
