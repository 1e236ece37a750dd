#include "core/plan_following.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/circle.h"
#include "core/drawing.h"
#include "core/entity_bounds.h"

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

double thicknessOf(const SketchEntity& entity, std::span<const WallSystemSpec> systems) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  if (wall == nullptr) return 0;
  const auto found = std::find_if(systems.begin(), systems.end(), [&](const WallSystemSpec& system) {
    return system.id == wall->systemSpecID;
  });
  return found == systems.end() ? kUnknownWallThickness : found->thickness;
}

// What an edit has made of the entities.
class EntityChanges {
 public:
  EntityChanges(const EntityList& before, const EntityList& after)
      : difference_(EntityList::difference(before, after)) {
    for (const SketchEntity& entity : difference_.removed) removed_.insert(entityID(entity));
    for (const auto& pair : difference_.changed) changed_.emplace(entityID(pair.first), &pair);
  }

  bool isRemoved(const UUID& id) const { return removed_.contains(id); }
  /// Before and after; null for one that stands as it stood.
  const std::pair<SketchEntity, SketchEntity>* changed(const UUID& id) const {
    const auto found = changed_.find(id);
    return found == changed_.end() ? nullptr : found->second;
  }

 private:
  EntityList::Difference difference_;
  std::unordered_set<UUID> removed_;
  std::unordered_map<UUID, const std::pair<SketchEntity, SketchEntity>*> changed_;
};

bool isJamb(AnchorKind anchor) { return anchor == AnchorKind::jambNear || anchor == AnchorKind::jambFar; }

class DimensionFollowing {
 public:
  DimensionFollowing(const Drawing& before, const Drawing& after,
                     const std::function<const SketchEntity*(const UUID&)>& find)
      : before_(before), after_(after), find_(find), changes_(before.entities, after.entities) {}

  void follow(DimensionEnd& end) const {
    if (end.anchor == AnchorKind::none || end.lost) return;
    const Opening* openingBefore = nullptr;
    const Opening* openingAfter = nullptr;
    UUID id = end.entityID;
    if (isJamb(end.anchor)) {
      openingBefore = before_.plan.opening(id);
      openingAfter = after_.plan.opening(id);
      end.lost = openingAfter == nullptr;
      if (openingBefore == nullptr || openingAfter == nullptr) return;
      id = openingAfter->wallID;
    }
    if (changes_.isRemoved(id)) {
      end.lost = true;
      return;
    }
    const auto* changed = changes_.changed(id);
    const bool isOpeningSame = openingBefore == nullptr || *openingBefore == *openingAfter;
    if (changed == nullptr && isOpeningSame && before_.wallSystemSpecs == after_.wallSystemSpecs) return;
    const SketchEntity* same = changed == nullptr ? find_(id) : nullptr;
    if (changed == nullptr && same == nullptr) return;
    const auto old =
        anchorPoint(end, same != nullptr ? *same : changed->first, before_.wallSystemSpecs, openingBefore);
    const auto now =
        anchorPoint(end, same != nullptr ? *same : changed->second, after_.wallSystemSpecs, openingAfter);
    if (!old || !now) return;
    // What stands on the very point stays on it, to the last digit.
    const SketchPoint followed = end.point == *old ? *now : end.point + (*now - *old);
    if (isFinite(followed)) end.point = followed;
  }

 private:
  const Drawing& before_;
  const Drawing& after_;
  const std::function<const SketchEntity*(const UUID&)>& find_;
  EntityChanges changes_;
};

}  // namespace

// --- Openings

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
  const EntityChanges changes(before, after);
  std::vector<Opening> followed;
  followed.reserve(openings.size());
  for (Opening opening : openings) {
    if (changes.isRemoved(opening.wallID)) continue;
    if (const auto* changed = changes.changed(opening.wallID)) {
      opening.distance = followedDistance(opening.distance, changed->first, changed->second);
    }
    followed.push_back(opening);
  }
  // What nothing has happened to keeps its storage.
  return followed == openings.list() ? openings : SharedList<Opening>(std::move(followed));
}

// --- Dimensions

std::optional<SketchPoint> anchorPoint(const DimensionEnd& end, const SketchEntity& entity,
                                       std::span<const WallSystemSpec> systems, const Opening* opening) {
  const auto axis = axisOf(entity);
  const auto* arc = std::get_if<ArcEntity>(&entity);
  const auto beside = [&](bool isStart, double side) -> std::optional<SketchPoint> {
    if (!axis) return std::nullopt;
    const double length = distanceBetween(axis->from, axis->to);
    if (!(length > 0)) return std::nullopt;
    const SketchPoint normal = perpendicular(axis->to - axis->from) * (1 / length);
    return (isStart ? axis->from : axis->to) + normal * (side * thicknessOf(entity, systems) / 2);
  };
  switch (end.anchor) {
    case AnchorKind::none:
      return std::nullopt;
    case AnchorKind::start:
      if (arc != nullptr) return pointOnCircle(arc->center, arc->radius, arc->startAngle);
      return axis ? std::optional(axis->from) : std::nullopt;
    case AnchorKind::end:
      if (arc != nullptr) return pointOnCircle(arc->center, arc->radius, arc->endAngle);
      return axis ? std::optional(axis->to) : std::nullopt;
    case AnchorKind::center:
      if (axis) return middleOf(axis->from, axis->to);
      if (arc != nullptr) return arc->center;
      return entityBounds(entity).center();
    case AnchorKind::corner: {
      if (const auto* rectangle = std::get_if<RectangleEntity>(&entity)) {
        const auto [x, y] = rectangle->origin;
        const bool isRight = end.corner % 4 == 1 || end.corner % 4 == 2;
        return SketchPoint{isRight ? x + rectangle->size.width : x,
                           end.corner % 4 >= 2 ? y + rectangle->size.height : y};
      }
      const auto* polygon = std::get_if<PolygonEntity>(&entity);
      if (polygon == nullptr || end.corner >= polygon->vertices.size()) return std::nullopt;
      return polygon->vertices[end.corner];
    }
    case AnchorKind::startLeft:
      return beside(true, 1);
    case AnchorKind::startRight:
      return beside(true, -1);
    case AnchorKind::endLeft:
      return beside(false, 1);
    case AnchorKind::endRight:
      return beside(false, -1);
    case AnchorKind::jambNear:
    case AnchorKind::jambFar: {
      if (!axis || opening == nullptr) return std::nullopt;
      const double length = distanceBetween(axis->from, axis->to);
      if (!(length > 0)) return std::nullopt;
      const double along = opening->distance + (end.anchor == AnchorKind::jambFar ? opening->width : 0);
      return axis->from + (axis->to - axis->from) * (along / length);
    }
  }
  return std::nullopt;
}

SharedList<Dimension> followedDimensions(const SharedList<Dimension>& dimensions, const Drawing& before,
                                         const Drawing& after,
                                         const std::function<const SketchEntity*(const UUID&)>& find) {
  if (dimensions.empty() ||
      (before.entities.sharesAllStorage(after.entities) && before.plan.openings == after.plan.openings &&
       before.wallSystemSpecs == after.wallSystemSpecs)) {
    return dimensions;
  }
  const DimensionFollowing following(before, after, find);
  std::vector<Dimension> followed = dimensions.list();
  for (Dimension& dimension : followed) {
    following.follow(dimension.from);
    following.follow(dimension.to);
  }
  return followed == dimensions.list() ? dimensions : SharedList<Dimension>(std::move(followed));
}

}  // namespace ostrelon
