// What a screen reader is told of a list of rows: the list and, made only when asked for, each of its
// rows with name, state and place.
#pragma once

namespace ostrelon {

/// Makes the lists known to Qt's accessibility. Calling it again changes nothing.
void installRowsAccessibility();

}  // namespace ostrelon
