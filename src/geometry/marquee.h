// Entities against a rectangle: what a marquee takes.
#pragma once

#include <vector>

#include "core/entity_set.h"
#include "core/entity_source.h"
#include "core/sketch_box.h"
#include "core/sketch_entity.h"

namespace ostrelon {

/// The rectangle of a marquee has its minimum edges inside, and its maximum edges not.
bool rectContains(const SketchBox& rect, SketchPoint point);

/// True when an end lies inside or a side is crossed; a side that is parallel is never crossed.
bool segmentIntersectsRect(SketchPoint start, SketchPoint end, const SketchBox& rect);
/// True when the outline is touched; a rectangle wholly inside the circle is not.
bool circleIntersectsRect(SketchPoint center, double radius, const SketchBox& rect);
/// An open line through the points.
bool polylineIntersectsRect(const std::vector<SketchPoint>& points, const SketchBox& rect);
bool rectangleIntersectsRect(SketchPoint origin, SketchSize size, const SketchBox& rect);

/// The crossing test: any part of the outline.
bool entityIntersectsRect(const SketchEntity& entity, const SketchBox& rect);
/// The window test: all of the outline.
bool entityContainedInRect(const SketchEntity& entity, const SketchBox& rect);

/// All entities that pass; none for a rectangle of neither width nor height.
EntitySet entitiesInMarquee(const EntitySource& entities, const SketchBox& rect, bool isCrossing);

}  // namespace ostrelon
