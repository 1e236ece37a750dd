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
  return sessionCall([trim, kind](AutomationSession&, const SketchEntity& target, const SketchEntity& cutter,
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
  return [call = sessionCall(function)](AutomationSession& session, const Json& arguments) {
    Json folded = Json::array();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const bool isPair = i + 1 < arguments.size() && isPoint(arguments[i]) && isPoint(arguments[i + 1]);
      folded.push_back(isPair ? Json::array({arguments[i], arguments[i + 1]}) : arguments[i]);
      if (isPair) ++i;
    }
    return call(session, folded);
  };
}

}  // namespace

void addGeometryCalls(CallTable& table) {
  table["distanceToSegment"] = functionCall(distanceToSegment);
  table["distanceToRectangle"] = functionCall(distanceToRectangle);
  table["distanceToPolygon"] = functionCall(distanceToPolygon);
  table["distanceToEntity"] = functionCall(distanceToEntity);
  table["pickEntityAtPoint"] =
      sessionCall([](AutomationSession&, const EntityList& entities, SketchPoint point, double scale) {
        return pickEntityAtPoint(entities, point, scale);
      });
  table["distanceBetween"] = functionCall(distanceBetween);
  table["directionDegrees"] = functionCall(directionDegrees);
  table["arcPoints"] = sessionCall([](AutomationSession&, const SketchEntity& entity) {
    const auto* arc = std::get_if<ArcEntity>(&entity);
    if (arc == nullptr) throw ArgumentError("Argument 1: expected an arc.");
    return arcPoints(*arc);
  });
  table["entityBounds"] = functionCall(entityBounds);
  table["rectContains"] = functionCall(rectContains);
  table["normalizedAngle"] = functionCall(normalizedAngle);
  table["angleInArcSpan"] = functionCall(angleInArcSpan);
  table["arcSpan"] = functionCall(arcSpan);
  table["polygonEdges"] = functionCall(polygonEdges);
  table["closedPolygonRing"] = functionCall(closedPolygonRing);
  table["segmentIntersectsRect"] = functionCall(segmentIntersectsRect);
  table["circleIntersectsRect"] = functionCall(circleIntersectsRect);
  table["polylineIntersectsRect"] = functionCall(polylineIntersectsRect);
  table["rectangleIntersectsRect"] = functionCall(rectangleIntersectsRect);
  table["entityIntersectsRect"] = functionCall(entityIntersectsRect);
  table["entityContainedInRect"] = functionCall(entityContainedInRect);
  table["entitiesInMarquee"] =
      sessionCall([](AutomationSession&, const EntityList& entities, const SketchBox& rect, bool crossing) {
        return entitiesInMarquee(entities, rect, crossing);
      });
  table["entityCentroid"] = functionCall(entityCentroid);
  table["selectionCentroid"] = functionCall(selectionCentroid);
  table["translatedEntity"] = functionCall(translatedEntity);

  table["selectionHandles"] = functionCall(selectionHandles);
  table["hitSelectionHandle"] = functionCall(hitSelectionHandle);
  table["handleFixedPoint"] = functionCall(handleFixedPoint);
  table["applyHandleDrag"] = functionCall(applyHandleDrag);

  table["resizedEntity"] = functionCall(resizedEntity);
  table["convertedEntity"] = functionCall(convertedEntity);
  table["duplicatedEntity"] = functionCall(duplicatedEntity);
  table["alignmentOffsets"] = functionCall(alignmentOffsets);
  table["segmentLengthIndicator"] = functionCall(segmentLengthIndicator);
  table["dragSegmentLength"] = functionCall(dragSegmentLength);

  table["isTrimmable"] = functionCall(isTrimmable);
  table["cuttingSegments"] = functionCall(cuttingSegments);
  table["rectangleCorners"] = functionCall(rectangleCorners);
  table["segmentCircleIntersections"] =
      segmentCall([](AutomationSession&, const Segment& segment, SketchPoint center, double radius) {
        return segmentCircleIntersections(segment.first, segment.second, center, radius);
      });
  table["arcContainingPoint"] = functionCall(arcContainingPoint);
  table["keptArc"] = sessionCall([](AutomationSession&, SketchPoint center, double radius, double a, double b,
                                    double p) { return keptArc(UUID::random(), center, radius, a, b, p); });
  table["rectangleFromCorners"] = sessionCall(
      [](AutomationSession&, const std::vector<SketchPoint>& corners) -> std::optional<SketchEntity> {
        return rectangleFromCorners(corners, UUID::random());
      });
  table["trimSegment"] = trimCall<LineEntity, WallEntity>(trimSegment, "a line or a wall");
  table["trimCircle"] = trimCall<CircleEntity>(trimCircle, "a circle");
  table["trimArc"] = trimCall<ArcEntity>(trimArc, "an arc");
  table["trimRectangle"] = trimCall<RectangleEntity>(trimRectangle, "a rectangle");
  table["trimEntity"] = trimCall<LineEntity, WallEntity, CircleEntity, ArcEntity, RectangleEntity>(
      trimEntity, "an entity that can be trimmed");
  table["clipPolygonByLine"] = functionCall(clipPolygonByLine);
  table["trimResultMessage"] = functionCall(trimResultMessage);
  table["extendSegmentToBoundary"] =
      segmentCall([](AutomationSession&, const Segment& segment, const Segment& boundary) {
        return extendSegmentToBoundary(segment.first, segment.second, boundary.first, boundary.second);
      });
}

}  // namespace ostrelon
