// Tracking: the user picks a reference point without clicking it. While a line or wall tool is
// active and the pointer rests on an endpoint or midpoint, a dwell of one second runs; then the point
// locks, and the end of the draft is offered in line with it. Moving away never releases a lock; the
// end of the draft does, and so do a change of tool and Escape.
//
// The members of `Board` that run the dwell are in tracking.cpp.
#pragma once

#include <string>

#include "interaction/sketch_tool.h"
#include "interaction/snap_types.h"
#include "platform/date.h"

namespace ostrelon {

/// How long the pointer rests until the point locks.
inline constexpr Seconds kTrackingDwellDuration{1.0};
/// The pause between two looks at the clock while the pointer rests.
inline constexpr Seconds kTrackingDwellPollInterval{0.05};

/// True for the tools that can lock a point.
bool toolTracks(SketchTool tool);
/// "Locked · Endpoint · Line 1".
std::string lockedFeedbackText(const EntitySnapTarget& target);

}  // namespace ostrelon
