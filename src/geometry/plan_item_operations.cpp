#include "geometry/plan_item_operations.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "core/entity_edits.h"
#include "geometry/entity_geometry.h"
#include "geometry/hit_testing.h"
#include "geometry/opening_operations.h"

namespace ostrelon {
namespace {

constexpr double kLeastMove = 0.5 / 12;  // an opening that is dragged by less stays where it is, feet

// Whether the change asks for another place.
bool changesPlace(const PlanItem& before, const PlanItem& after) {
  return std::visit(Overloaded{[&](const Opening& now) {
                                 const auto* old = std::get_if<Opening>(&before);
                                 return old == nullptr || old->wallID != now.wallID ||
                                        old->distance != now.distance || old->width != now.width;
                               },
                               [](const auto&) { return false; }},
                    after);
}

// The wall of an opening is looked up among those near the point: a leaf reaches as far as it is wide.
std::optional<UUID> pickOpening(const Sketch& sketch, SketchPoint point, double tolerance, double& least) {
  const SharedList<Opening>& openings = sketch.drawing->plan.openings;
  if (openings.empty()) return std::nullopt;
  double reach = kUnknownWallThickness;
  for (const WallSystemSpec& system : sketch.drawing->wallSystemSpecs) {
    reach = std::max(reach, std::abs(system.thickness));
  }
  double widest = 0;
  for (const Opening& opening : openings) {
    if (std::isfinite(opening.width)) widest = std::max(widest, opening.width);
  }
  std::unordered_map<UUID, OpeningWall> walls;
  const EntitySource source(sketch.index());
  source.visitNear(SketchBox::centered(point, reach + widest + tolerance),
                   [&](const SketchEntity& entity, std::size_t position) {
                     if (const auto wall = openingWall(entity, position, sketch.drawing->wallSystemSpecs)) {
                       walls.emplace(wall->id, *wall);
                     }
                   });
  std::optional<UUID> nearest;
  for (const Opening& opening : openings) {
    const auto wall = walls.find(opening.wallID);
    if (wall == walls.end()) continue;
    const double distance = distanceToOpening(openingShape(opening, wall->second), point);
    if (!(distance <= tolerance) || (nearest && distance >= least)) continue;
    nearest = opening.id;
    least = distance;
  }
  return nearest;
}

}  // namespace

std::optional<UUID> pickPlanItem(const Sketch& sketch, SketchPoint point, double scale) {
  const double tolerance = kEntityPickTolerance / scale;
  double least = tolerance;
  const auto opening = pickOpening(sketch, point, tolerance, least);
  const auto other = pickShape(planItemShapes(sketch.drawing->plan), point, least);
  return other ? other : opening;
}

std::vector<PlanItemShape> planItemShapes(const Plan& plan) {
  std::vector<PlanItemShape> shapes;
  for (const RoomName& room : plan.roomNames) {
    const SketchPoint label = room.place + room.labelOffset;
    shapes.push_back({room.id, {{label, label}}});
  }
  for (const RoomDivider& divider : plan.roomDividers) {
    shapes.push_back({divider.id, {{divider.start, divider.end}}});
  }
  for (const Dimension& dimension : plan.dimensions) {
    const SketchPoint axis = dimensionAxis(dimension);
    const SketchPoint start = dimension.from.point + perpendicular(axis) * dimension.offset;
    const SketchPoint end = start + axis * dot(dimension.to.point - dimension.from.point, axis);
    shapes.push_back(
        {dimension.id, {{start, end}, {dimension.from.point, start}, {dimension.to.point, end}}});
  }
  for (const Note& note : plan.notes) {
    shapes.push_back({note.id, {{note.place, note.target.value_or(note.place)}}});
  }
  return shapes;
}

std::optional<UUID> pickShape(const std::vector<PlanItemShape>& shapes, SketchPoint point, double tolerance) {
  std::optional<UUID> nearest;
  double least = tolerance;
  for (const PlanItemShape& shape : shapes) {
    for (const auto& [start, end] : shape.strokes) {
      const double distance = distanceToSegment(point, start, end);
      if (!(distance <= least)) continue;
      nearest = shape.id;
      least = distance;
    }
  }
  return nearest;
}

std::string planItemMisfit(const Sketch& sketch, const PlanItem& item) {
  return std::visit(Overloaded{[&](const Opening& opening) {
                                 const auto placed = placedOpening(sketch, opening);
                                 if (!placed) return std::string("Its wall is a line now.");
                                 return openingMisfitText(*placed, sketch.drawing->plan);
                               },
                               [](const auto&) { return std::string(); }},
                    item);
}

PlanItem draggedPlanItem(const Sketch& sketch, const PlanItem& item, SketchPoint from, SketchPoint to) {
  return std::visit(Overloaded{[&](Opening opening) -> PlanItem {
                                 const auto wall = openingWall(sketch, opening.wallID);
                                 if (!wall) return opening;
                                 const double by = wall->along(to) - wall->along(from);
                                 if (std::abs(by) < kLeastMove) return opening;
                                 const double middle = opening.distance + opening.width / 2 + by;
                                 opening.distance = roundedDistance(
                                     *wall, middle, opening.width, sketch.drawing->plan.openings, opening.id);
                                 return opening;
                               },
                               [&](RoomName room) -> PlanItem {
                                 room.labelOffset = room.labelOffset + (to - from);
                                 return room;
                               },
                               [&](Dimension dimension) -> PlanItem {
                                 dimension.offset += dot(to - from, perpendicular(dimensionAxis(dimension)));
                                 return dimension;
                               },
                               [&](Note note) -> PlanItem {  // its leader goes on pointing where it points
                                 note.place = note.place + (to - from);
                                 return note;
                               },
                               [&](const RoomDivider& divider) { return movedPlanItem(divider, to - from); }},
                    item);
}

std::optional<PlanItem> flippedPlanItem(const PlanItem& item) {
  return std::visit(Overloaded{[](Opening opening) -> std::optional<PlanItem> {
                                 if (opening.kind != OpeningKind::door) return std::nullopt;
                                 const DoorHanging next = flipped({opening.hinge, opening.swing});
                                 opening.hinge = next.hinge;
                                 opening.swing = next.swing;
                                 return opening;
                               },
                               [](const auto&) -> std::optional<PlanItem> { return std::nullopt; }},
                    item);
}

std::string changePlanItem(Sketch& sketch, const PlanItem& item, UndoStep step) {
  const auto before = findPlanItem(sketch.drawing->plan, planItemID(item));
  if (!before) return "There is no such item in the plan.";
  if (*before == item) return {};
  if (changesPlace(*before, item)) {
    if (std::string misfit = planItemMisfit(sketch, item); !misfit.empty()) return misfit;
  }
  sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, item); }, step);
  return {};
}

void movePlanItem(Sketch& sketch, const UUID& id, double dx, double dy) {
  const auto found = findPlanItem(sketch.drawing->plan, id);
  if (found) changePlanItem(sketch, movedPlanItem(*found, {dx, dy}));
}

void deletePlanItem(Sketch& sketch, Messages& messages, const UUID& id) {
  const auto found = findPlanItem(sketch.drawing->plan, id);
  if (!found) return;
  const auto change = sketch.change();
  sketch.edit([&](Drawing& drawing) { removePlanItem(drawing.plan, planItemID(*found)); });
  messages.appendSystem(std::string(planItemTypeLabel(*found)) + " deleted.");
}

std::optional<PlanItem> selectedPlanItem(const Sketch& sketch) {
  const auto& id = sketch.selection->planItem;
  return id ? findPlanItem(sketch.drawing->plan, *id) : std::nullopt;
}

std::optional<SketchBox> selectedPlanItemBounds(const Sketch& sketch) {
  const auto item = selectedPlanItem(sketch);
  if (!item) return std::nullopt;
  return std::visit(Overloaded{[&](const Opening& opening) -> std::optional<SketchBox> {
                                 const auto wall = openingWall(sketch, opening.wallID);
                                 if (!wall) return std::nullopt;
                                 return openingBounds(openingShape(opening, *wall));
                               },
                               [](const auto& other) { return planItemBounds(other); }},
                    *item);
}

void flipSelectedPlanItem(Sketch& sketch, Messages& messages) {
  const auto item = selectedPlanItem(sketch);
  const auto next = item ? flippedPlanItem(*item) : std::nullopt;
  if (!next) return;
  const auto change = sketch.change();
  const std::string refusal = changePlanItem(sketch, *next);
  if (!refusal.empty()) messages.append(refusal, false, false);
}

void duplicateSelectedPlanItem(Sketch& sketch, Messages& messages) {
  const auto item = selectedPlanItem(sketch);
  if (!item) return;
  const auto copy = std::visit(
      Overloaded{
          [&](const Opening& opening) -> std::optional<PlanItem> { return copyBeside(sketch, opening); },
          [](const auto& other) -> std::optional<PlanItem> {
            return movedPlanItem(withPlanItemID(other, UUID::random()), kDuplicateOffset);
          }},
      *item);
  const std::string label(planItemTypeLabel(*item));
  if (!copy) {
    messages.append(label + " not duplicated: there is no room for it in its wall.", false, false);
    return;
  }
  const auto change = sketch.change();
  sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, *copy); });
  sketch.selectPlanItem(planItemID(*copy));
  messages.appendSystem(label + " duplicated.");
}

void deleteSelectedPlanItem(Sketch& sketch, Messages& messages) {
  const auto& id = sketch.selection->planItem;
  if (id) deletePlanItem(sketch, messages, UUID(*id));
}

}  // namespace ostrelon
