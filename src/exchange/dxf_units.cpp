#include "exchange/dxf_units.h"

#include <algorithm>
#include <array>

namespace ostrelon {
namespace {

constexpr DxfUnit kInches{"inches", 1.0 / 12};
constexpr DxfUnit kMillimeters{"millimeters", 0.001 / 0.3048};
constexpr DxfUnit kCentimeters{"centimeters", 0.01 / 0.3048};
constexpr DxfUnit kMeters{"meters", 1 / 0.3048};

constexpr std::array kNamed{NamedDxfUnit{"mm", kMillimeters}, NamedDxfUnit{"cm", kCentimeters},
                            NamedDxfUnit{"m", kMeters}, NamedDxfUnit{"in", kInches},
                            NamedDxfUnit{"ft", kDxfFeet}};

struct NumberedUnit {
  int number;
  DxfUnit unit;
};

// The units by the numbers of $INSUNITS.
constexpr std::array kNumbered{
    NumberedUnit{1, kInches},
    NumberedUnit{2, kDxfFeet},
    NumberedUnit{3, {"miles", 5280}},
    NumberedUnit{4, kMillimeters},
    NumberedUnit{5, kCentimeters},
    NumberedUnit{6, kMeters},
    NumberedUnit{7, {"kilometers", 1000 / 0.3048}},
    NumberedUnit{10, {"yards", 3}},
    NumberedUnit{14, {"decimeters", 0.1 / 0.3048}},
};

// Drawings up to so long, in the unit, are taken to be in it; longer ones in the next smaller one.
constexpr double kLongestInMeters = 200;
constexpr double kLongestInFeet = 200;
constexpr double kLongestInInches = 3000;

}  // namespace

std::span<const NamedDxfUnit> namedDxfUnits() { return kNamed; }

std::optional<DxfUnit> dxfUnitNamed(std::string_view word) {
  const auto* found = std::find_if(kNamed.begin(), kNamed.end(),
                                   [word](const NamedDxfUnit& unit) { return unit.word == word; });
  return found == kNamed.end() ? std::nullopt : std::optional(found->unit);
}

std::optional<DxfUnit> declaredDxfUnit(const DxfFile& file) {
  const auto* found = std::find_if(kNumbered.begin(), kNumbered.end(),
                                   [&](const NumberedUnit& unit) { return unit.number == file.unitNumber; });
  return found == kNumbered.end() ? std::nullopt : std::optional(found->unit);
}

DxfUnit likelyDxfUnit(SketchSize extent, std::optional<bool> isMetric) {
  const double length = std::max(extent.width, extent.height);
  if (isMetric == true) return length <= kLongestInMeters ? kMeters : kMillimeters;
  if (length <= kLongestInFeet) return kDxfFeet;
  return length <= kLongestInInches || isMetric == false ? kInches : kMillimeters;
}

}  // namespace ostrelon
