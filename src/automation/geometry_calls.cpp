// Calls of the pure geometry. Where null stands for a list of entities, that of the document is meant.
#include "automation/call_binding.h"
#include "core/circle.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

// A trim of one kind of target; others are refused.
template <class... Targets>
Call trimCall(TrimGeometry (*trim)(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point),
              const char* kind) {
  return call([trim, kind](AutomationSession&, const SketchEntity& target, const SketchEntity& cutter,
                           SketchPoint point) {
    if (!(std::holds_alternative<Targets>(target) || ...)) {
      throw ArgumentError(std::string("Argument 1: expected ") + kind + ".");
    }
    return trim(target, cutter, point);
  });
}

bool isPoint(const Json& json) { return json.is_array() && json.size() == 2 && json[0].is_number(); }

// An operation on segments, which also takes each segment as its two ends one after the other.
template <class Function>
Call segmentCall(Function function) {
  const Call plain = call(function);
  const auto run = [run = plain.run](AutomationSession& session, const Json& arguments) {
    Json folded = Json::array();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const bool isPair = i + 1 < arguments.size() && isPoint(arguments[i]) && isPoint(arguments[i + 1]);
      folded.push_back(isPair ? Json::array({arguments[i], arguments[i + 1]}) : arguments[i]);
      if (isPair) ++i;
    }
    return run(session, folded);
  };
  return {run, plain.signature};
}

}  // namespace

void addGeometryCalls(CallTable& table) {
  table["distanceToSegment"] = call(distanceToSegment);
  table["distanceToRectangle"] = call(distanceToRectangle);
  table["distanceToPolygon"] = call(distanceToPolygon);
  table["distanceToEntity"] = call(distanceToEntity);
  table["pickEntityAtPoint"] = call([](const EntityList& entities, SketchPoint point, double scale) {
    return pickEntityAtPoint(entities, point, scale);
  });
  table["distanceBetween"] = call(distanceBetween);
  table["directionDegrees"] = call(directionDegrees);
  table["arcPoints"] = call([](const SketchEntity& entity) {
    const auto* arc = std::get_if<ArcEntity>(&entity);
    if (arc == nullptr) throw ArgumentError("Argument 1: expected an arc.");
    return arcPoints(*arc);
  });
  table["entityBounds"] = call(entityBounds);
  table["rectContains"] = call(rectContains);
  table["normalizedAngle"] = call(normalizedAngle);
  table["angleInArcSpan"] = call(angleInArcSpan);
  table["arcSpan"] = call(arcSpan);
  table["polygonEdges"] = call(polygonEdges);
  table["closedPolygonRing"] = call(closedPolygonRing);
  table["segmentIntersectsRect"] = call(segmentIntersectsRect);
  table["circleIntersectsRect"] = call(circleIntersectsRect);
  table["polylineIntersectsRect"] = call(polylineIntersectsRect);
  table["rectangleIntersectsRect"] = call(rectangleIntersectsRect);
  table["entityIntersectsRect"] = call(entityIntersectsRect);
  table["entityContainedInRect"] = call(entityContainedInRect);
  table["entitiesInMarquee"] = call([](const EntityList& entities, const SketchBox& rect, bool crossing) {
    return entitiesInMarquee(entities, rect, crossing);
  });
  table["entityCentroid"] = call(entityCentroid);
  table["selectionCentroid"] = call(selectionCentroid);
  table["translatedEntity"] = call(translatedEntity);

  table["selectionHandles"] = call(selectionHandles);
  table["hitSelectionHandle"] = call(hitSelectionHandle);
  table["handleFixedPoint"] = call(handleFixedPoint);
  table["applyHandleDrag"] = call(applyHandleDrag);

  table["resizedEntity"] = call(resizedEntity);
  table["convertedEntity"] = call(convertedEntity);
  table["duplicatedEntity"] = call(duplicatedEntity);
  table["alignmentOffsets"] = call(alignmentOffsets);
  table["segmentLengthIndicator"] = call(segmentLengthIndicator);
  table["dragSegmentLength"] = call(dragSegmentLength);

  table["isTrimmable"] = call(isTrimmable);
  table["cuttingSegments"] = call(cuttingSegments);
  table["rectangleCorners"] = call(rectangleCorners);
  table["segmentCircleIntersections"] =
      segmentCall([](const Segment& segment, SketchPoint center, double radius) {
        return segmentCircleIntersections(segment.first, segment.second, center, radius);
      });
  table["arcContainingPoint"] = call(arcContainingPoint);
  table["keptArc"] = call([](SketchPoint center, double radius, double a, double b, double p) {
    return keptArc(UUID::random(), center, radius, a, b, p);
  });
  table["rectangleFromCorners"] =
      call([](const std::vector<SketchPoint>& corners) -> std::optional<SketchEntity> {
        return rectangleFromCorners(corners, UUID::random());
      });
  table["trimSegment"] = trimCall<LineEntity, WallEntity>(trimSegment, "a line or a wall");
  table["trimCircle"] = trimCall<CircleEntity>(trimCircle, "a circle");
  table["trimArc"] = trimCall<ArcEntity>(trimArc, "an arc");
  table["trimRectangle"] = trimCall<RectangleEntity>(trimRectangle, "a rectangle");
  table["trimEntity"] = trimCall<LineEntity, WallEntity, CircleEntity, ArcEntity, RectangleEntity>(
      trimEntity, "an entity that can be trimmed");
  table["clipPolygonByLine"] = call(clipPolygonByLine);
  table["trimResultMessage"] = call(trimResultMessage);
  table["extendSegmentToBoundary"] = segmentCall([](const Segment& segment, const Segment& boundary) {
    return extendSegmentToBoundary(segment.first, segment.second, boundary.first, boundary.second);
  });
}

}  // namespace ostrelon
