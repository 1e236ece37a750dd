// What dimensions look like: lines, ticks and texts, for those placed by hand and for the strings around a
// building. Sizes are those of the paper at the drawing scale, in sketch units to its inch.
//
// A text stands over the middle of its line. One that is wider than its line moves beyond the end of it where
// nothing follows, else away from what is measured, and from there to the other side of the line or along it,
// so that no two texts of dimensions in one line overlap.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/plan.h"
#include "geometry/annotation.h"
#include "geometry/dimension_strings.h"

namespace ostrelon {

/// How wide a text of one line is, ems.
using TextWidth = std::function<double(std::string_view)>;

/// `12'-6 1/2"`, with a "?" behind it where what it measured has been removed.
std::string dimensionText(const Dimension& dimension);

/// One for each dimension, in their order; those that are not finite have nothing to show.
std::vector<Annotation> dimensionAnnotations(const SharedList<Dimension>& dimensions, double unitsPerInch,
                                             const TextWidth& width);
/// One for each string, in their order.
std::vector<Annotation> stringAnnotations(std::span<const DimensionString> strings, double unitsPerInch,
                                          const TextWidth& width);

}  // namespace ostrelon
