#include "core/plan.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_set>
#include <utility>

namespace ostrelon {
namespace {

struct Axis {
  SketchPoint from;
  SketchPoint to;
};

// Openings stay with a wall that has become a line.
std::optional<Axis> axisOf(const SketchEntity& entity) {
  if (const auto* wall = std::get_if<WallEntity>(&entity)) return Axis{wall->from, wall->to};
  if (const auto* line = std::get_if<LineEntity>(&entity)) return Axis{line->from, line->to};
  return std::nullopt;
}

}  // namespace

const Opening* Plan::opening(const UUID& id) const {
  const auto found =
      std::find_if(openings.begin(), openings.end(), [&](const Opening& one) { return one.id == id; });
  return found == openings.end() ? nullptr : &*found;
}

DoorHanging flipped(DoorHanging hanging) {
  const bool isNextHinge = (hanging.hinge == DoorHinge::left) == (hanging.swing == DoorSwing::in);
  if (isNextHinge) {
    hanging.hinge = hanging.hinge == DoorHinge::left ? DoorHinge::right : DoorHinge::left;
  } else {
    hanging.swing = hanging.swing == DoorSwing::in ? DoorSwing::out : DoorSwing::in;
  }
  return hanging;
}

// --- Following the walls

double followedDistance(double distance, const SketchEntity& before, const SketchEntity& after) {
  const auto old = axisOf(before);
  const auto now = axisOf(after);
  if (!old || !now || now->from == old->from || now->to != old->to) return distance;
  const double followed =
      distance + distanceBetween(now->from, now->to) - distanceBetween(old->from, old->to);
  return std::isfinite(followed) ? followed : distance;
}

SharedList<Opening> followedOpenings(const SharedList<Opening>& openings, const EntityList& before,
                                     const EntityList& after) {
  if (openings.empty() || before.sharesAllStorage(after)) return openings;
  const EntityList::Difference difference = EntityList::difference(before, after);
  std::unordered_set<UUID> removed;
  for (const SketchEntity& entity : difference.removed) removed.insert(entityID(entity));
  std::unordered_map<UUID, std::size_t> changed;
  for (std::size_t i = 0; i < difference.changed.size(); ++i) {
    changed.emplace(entityID(difference.changed[i].first), i);
  }
  std::vector<Opening> followed;
  followed.reserve(openings.size());
  for (Opening opening : openings) {
    if (removed.contains(opening.wallID)) continue;
    if (const auto found = changed.find(opening.wallID); found != changed.end()) {
      const auto& [old, now] = difference.changed[found->second];
      opening.distance = followedDistance(opening.distance, old, now);
    }
    followed.push_back(opening);
  }
  // What nothing has happened to keeps its storage.
  return followed == openings.list() ? openings : SharedList<Opening>(std::move(followed));
}

std::vector<Opening> copiedOpenings(const std::vector<Opening>& openings,
                                    const std::unordered_map<UUID, UUID>& copies) {
  std::vector<Opening> copied;
  for (Opening opening : openings) {
    const auto copy = copies.find(opening.wallID);
    if (copy == copies.end()) continue;
    opening.id = UUID::random();
    opening.wallID = copy->second;
    copied.push_back(opening);
  }
  return copied;
}

// --- Differences

PlanChange planChange(const Plan& before, const Plan& after) {
  return {after.look, spliceBetween(before.openings, after.openings),
          spliceBetween(before.further, after.further)};
}

bool applyPlanChange(const PlanChange& change, Plan& plan) {
  Plan changed = plan;
  changed.look = change.look;
  if (!applySplice(change.openings, changed.openings) || !applySplice(change.further, changed.further)) {
    return false;
  }
  plan = std::move(changed);
  return true;
}

// --- Naming

std::string_view openingKindName(OpeningKind kind) {
  switch (kind) {
    case OpeningKind::door:
      return "door";
    case OpeningKind::window:
      return "window";
    case OpeningKind::opening:
      return "opening";
  }
  return {};
}

std::string_view openingTypeLabel(OpeningKind kind) {
  switch (kind) {
    case OpeningKind::door:
      return "Door";
    case OpeningKind::window:
      return "Window";
    case OpeningKind::opening:
      return "Opening";
  }
  return {};
}

std::string_view hingeName(DoorHinge hinge) { return hinge == DoorHinge::left ? "left" : "right"; }
std::string_view swingName(DoorSwing swing) { return swing == DoorSwing::in ? "in" : "out"; }

}  // namespace ostrelon
