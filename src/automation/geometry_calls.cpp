// Calls of the pure geometry. Where a list of entities is left out, that of the document is meant.
#include "automation/call_binding.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {

void addGeometryCalls(CallTable& table) {
  table["distanceToSegment"] = functionCall(distanceToSegment);
  table["distanceToRectangle"] = functionCall(distanceToRectangle);
  table["distanceToPolygon"] = functionCall(distanceToPolygon);
  table["distanceToEntity"] = functionCall(distanceToEntity);
  table["pickEntityAtPoint"] =
      sessionCall([](AutomationSession&, const EntityList& entities, SketchPoint point, double scale) {
        return pickEntityAtPoint(entities, point, scale);
      });
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
  table["segmentCircleIntersections"] = functionCall(segmentCircleIntersections);
  table["arcContainingPoint"] = functionCall(arcContainingPoint);
  table["trimSegment"] = functionCall(trimEntity);
  table["trimCircle"] = functionCall(trimEntity);
  table["trimArc"] = functionCall(trimEntity);
  table["trimRectangle"] = functionCall(trimEntity);
  table["trimResultMessage"] = functionCall(trimResultMessage);
  table["extendSegmentToBoundary"] = functionCall(extendSegmentToBoundary);
}

}  // namespace ostrelon
