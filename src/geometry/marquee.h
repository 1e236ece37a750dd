// Entities against a rectangle: what a marquee takes.
#pragma once

#include <unordered_set>
#include <vector>

#include "core/entity_bounds.h"
#include "core/entity_source.h"
#include "core/sketch_entity.h"

namespace ostrelon {

/// A rectangle of sketch units that asks. Its minimum edges are inside, its maximum edges are not.
using QueryRect = SketchBox;

bool rectContains(const QueryRect& rect, SketchPoint point);

/// True when an end lies inside or a side is crossed; a side that is parallel is never crossed.
bool segmentIntersectsRect(SketchPoint start, SketchPoint end, const QueryRect& rect);
/// True when the outline is touched; a rectangle wholly inside the circle is not.
bool circleIntersectsRect(SketchPoint center, double radius, const QueryRect& rect);
/// An open line through the points.
bool polylineIntersectsRect(const std::vector<SketchPoint>& points, const QueryRect& rect);
bool rectangleIntersectsRect(SketchPoint origin, SketchSize size, const QueryRect& rect);

/// The crossing test: any part of the outline.
bool entityIntersectsRect(const SketchEntity& entity, const QueryRect& rect);
/// The window test: all of the outline.
bool entityContainedInRect(const SketchEntity& entity, const QueryRect& rect);

/// The identifiers of all entities that pass; none for a rectangle of neither width nor height.
std::unordered_set<UUID> entitiesInMarquee(const EntitySource& entities, const QueryRect& rect,
                                           bool isCrossing);

}  // namespace ostrelon
