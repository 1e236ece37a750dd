// A merge under review as the canvas shows it: what the merged drawing changes of ours, and of each conflict
// that is undecided both sides, ours as what was there before and theirs as what comes. A cloud with its
// number is around each of these.
#pragma once

#include <optional>
#include <vector>

#include "documents/merge.h"
#include "interaction/difference_layers.h"

namespace ostrelon {

/// `merged`: our drawing as `choices` leave it, one for each conflict. Group i is conflict i, with a box that
/// is not finite where it is settled or has no place. Item i stands for conflict i, and has its box alone.
DifferenceLayers mergeLayers(const Merge& merge, const Drawing& ours, const Drawing& theirs,
                             const Drawing& merged, const std::vector<std::optional<MergeChoice>>& choices);

/// Where the drawing shows a conflict, sketch units: what is left of it here and there, walls with their
/// thickness. Of a wall system, the walls of ours that have it; absent where there are none.
std::optional<SketchBox> conflictBounds(const MergeConflict& conflict, const Drawing& ours,
                                        const Drawing& theirs);

}  // namespace ostrelon
