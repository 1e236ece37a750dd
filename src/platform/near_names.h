// Names near a name that nobody knows, for "Did you mean …?".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostrelon {

/// Up to three of the names, the nearest first: those that take the fewest letters put in, left out, changed
/// or swapped with the next one (the optimal string alignment distance, letters of A to Z without case), at
/// most one for each three letters of `typed`. Equally near ones stay in their order.
std::vector<std::string_view> nearNames(std::string_view typed, const std::vector<std::string_view>& names);

/// " Did you mean \"undo\"?", " Did you mean \"undo\" or \"redo\"?", or nothing where no name is near: the
/// end of a sentence that refuses `typed`.
std::string didYouMean(std::string_view typed, const std::vector<std::string_view>& names);

}  // namespace ostrelon
