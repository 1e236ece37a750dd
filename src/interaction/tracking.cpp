#include "interaction/tracking.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "interaction/board.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {

bool toolTracks(SketchTool tool) { return tool == SketchTool::line || tool == SketchTool::wall; }

std::string lockedFeedbackText(const EntitySnapTarget& target) {
  return "Locked · " + snapTargetDescription(target);
}

void Board::tickTracking(SketchPoint pointer, Date now) {
  const auto scope = change();
  if (!toolTracks(tool)) {
    releaseTracking();
    return;
  }
  const auto target = SketchSnapping::nearestAcquirableTarget(sketch_.index(), {}, pointer, scale());
  if (!target) {
    cancelTrackingDwell();
  } else if (target == tracking->pending) {
    advanceTrackingDwell(now);
  } else {
    startTrackingDwell(*target, now);
  }
}

void Board::startTrackingDwell(const EntitySnapTarget& target, Date now) {
  const auto scope = change();
  tracking = Tracking{tracking->locked, target, 0, now};
  scheduleTrackingDwell();
}

void Board::advanceTrackingDwell(Date now) {
  if (!tracking->dwellStart) return;
  const auto scope = change();
  const double elapsed = secondsBetween(*tracking->dwellStart, now);
  Tracking advanced = tracking;
  advanced.progress = std::clamp(elapsed, 0.0, 1.0);
  tracking = std::move(advanced);
  if (elapsed >= kTrackingDwellDuration.count() && tracking->pending) {
    lockTrackingTarget(EntitySnapTarget(*tracking->pending));
  } else {
    scheduleTrackingDwell();
  }
}

// While a lock is in force the task does not run: a dwell on a second point then advances with the
// pointer alone.
void Board::scheduleTrackingDwell() {
  if (dwellTask_ || !tracking->pending || tracking->locked) return;
  dwellTask_ = scheduler_.after(kTrackingDwellPollInterval, [this] { pollTrackingDwell(); });
}

void Board::pollTrackingDwell() {
  const auto scope = change();
  dwellTask_.reset();
  const auto holdText = [&] {
    return tracking->pending ? std::optional(trackingHoldText(*tracking->pending)) : std::nullopt;
  };
  const bool isShown = snap->feedback && snap->feedback == holdText();
  advanceTrackingDwell(scheduler_.now());
  if (isShown && tracking->pending) showFeedback(holdText());
}

// Other words beside the point that is marked.
void Board::showFeedback(std::optional<std::string> feedback) {
  SnapState shown = snap;
  shown.feedback = std::move(feedback);
  snap = std::move(shown);
}

void Board::lockTrackingTarget(const EntitySnapTarget& target) {
  const auto scope = change();
  tracking = Tracking{target, std::nullopt, 1.0, std::nullopt};
  dwellTask_.reset();
  showFeedback(lockedFeedbackText(target));
}

std::string Board::trackingHoldText(const EntitySnapTarget& target) const {
  return fmt::format("Hold to lock · {} · {:.0f}%", snapTargetDescription(target),
                     std::round(tracking->progress * 100));
}

void Board::showIdleTrackingFeedback(SketchPoint pointer) {
  if (tracking->locked) {
    publishTrackedTarget(*tracking->locked, lockedFeedbackText(*tracking->locked));
  } else if (tracking->pending) {
    publishTrackedTarget(*tracking->pending, trackingHoldText(*tracking->pending));
  } else {
    const SketchSnapResult result = snapPointer(pointer, sketch_.drawing->showGrid);
    if (result.entitySnap) {
      publishSnap(result);
    } else {
      clearSnap();
    }
  }
}

}  // namespace ostrelon
