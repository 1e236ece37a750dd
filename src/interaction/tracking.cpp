#include "interaction/tracking.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/sketch_view_model.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {

bool toolTracks(SketchTool tool) { return tool == SketchTool::line || tool == SketchTool::wall; }

std::string lockedFeedbackText(const EntitySnapTarget& target) {
  return "Locked · " + snapTargetDescription(target);
}

void SketchViewModel::tickTrackingAcquire(SketchPoint pointer, Date now) {
  const ChangeScope scope(tracker_);
  if (!toolTracks(selectedTool)) {
    releaseTracking();
    return;
  }
  const auto target = SketchSnapping::nearestAcquirableTarget(index(), {}, pointer, viewport->scale);
  if (!target) {
    cancelTrackingDwell();
  } else if (target == *pendingTrackingAcquire) {
    advanceTrackingDwell(now);
  } else {
    startTrackingDwell(*target, now);
  }
}

void SketchViewModel::startTrackingDwell(const EntitySnapTarget& target, Date now) {
  const ChangeScope scope(tracker_);
  pendingTrackingAcquire = target;
  trackingAcquireDwellStart = now;
  trackingAcquireProgress = 0;
  scheduleTrackingDwell();
}

void SketchViewModel::advanceTrackingDwell(Date now) {
  if (!*trackingAcquireDwellStart) return;
  const ChangeScope scope(tracker_);
  const double elapsed = secondsBetween(**trackingAcquireDwellStart, now);
  trackingAcquireProgress = std::clamp(elapsed, 0.0, 1.0);
  if (elapsed >= kTrackingDwellDuration.count() && *pendingTrackingAcquire) {
    lockTrackingTarget(EntitySnapTarget(**pendingTrackingAcquire));
  } else {
    scheduleTrackingDwell();
  }
}

// While a lock is in force the task does not run: a dwell on a second point then advances with the
// pointer alone.
void SketchViewModel::scheduleTrackingDwell() {
  if (trackingAcquireDwellTask_ || !*pendingTrackingAcquire || *acquiredEntitySnap) return;
  trackingAcquireDwellTask_ =
      host_.scheduler.after(kTrackingDwellPollInterval, [this] { pollTrackingDwell(); });
}

void SketchViewModel::pollTrackingDwell() {
  const ChangeScope scope(tracker_);
  trackingAcquireDwellTask_.reset();
  const auto holdText = [&] {
    return *pendingTrackingAcquire ? std::optional(trackingHoldText(**pendingTrackingAcquire)) : std::nullopt;
  };
  const bool isShown = snapFeedback->has_value() && *snapFeedback == holdText();
  advanceTrackingDwell(host_.scheduler.now());
  if (isShown && *pendingTrackingAcquire) snapFeedback = holdText();
}

void SketchViewModel::lockTrackingTarget(const EntitySnapTarget& target) {
  const ChangeScope scope(tracker_);
  acquiredEntitySnap = target;
  pendingTrackingAcquire = std::nullopt;
  trackingAcquireDwellStart = std::nullopt;
  trackingAcquireProgress = 1.0;
  trackingAcquireDwellTask_.reset();
  snapFeedback = lockedFeedbackText(target);
}

void SketchViewModel::releaseTracking() {
  const ChangeScope scope(tracker_);
  cancelTrackingDwell();
  acquiredEntitySnap = std::nullopt;
}

std::string SketchViewModel::trackingHoldText(const EntitySnapTarget& target) const {
  return fmt::format("Hold to lock · {} · {:.0f}%", snapTargetDescription(target),
                     std::round(trackingAcquireProgress * 100));
}

void SketchViewModel::showIdleTrackingFeedback(SketchPoint pointer) {
  if (*acquiredEntitySnap) {
    publishTrackedTarget(**acquiredEntitySnap, lockedFeedbackText(**acquiredEntitySnap));
  } else if (*pendingTrackingAcquire) {
    publishTrackedTarget(**pendingTrackingAcquire, trackingHoldText(**pendingTrackingAcquire));
  } else {
    const SketchSnapResult result = snapPointer(pointer, showGrid);
    if (result.entitySnap) {
      publishSnap(result);
    } else {
      clearSnapState();
    }
  }
}

}  // namespace ostrelon
