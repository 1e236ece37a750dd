// Snap points on clean walls: the corners of their faces, and any place along a face. Only the walls around
// the pointer are joined for it, found through the index, so that it costs the same in a drawing of any size.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/drawing.h"
#include "core/entity_source.h"
#include "geometry/wall_body.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {

class NearWallFaces {
 public:
  /// None.
  NearWallFaces() = default;
  /// The faces near a point, sketch units, cut open at the openings that fit, without those of the excluded
  /// walls. `entities`: those of the drawing. `scale`: view points a sketch unit. So many walls around the
  /// point that they cannot be told apart have none.
  NearWallFaces(const EntitySource& entities, const Drawing& drawing,
                const SketchSnapping::EntityIDs& excluded, SketchPoint point, double scale);

  /// The better one of a snap point and the nearest corner or jamb: the nearer, and the first of equals.
  std::optional<EntitySnapTarget> orCorner(std::optional<EntitySnapTarget> target) const;
  /// A place on the nearest face within the snap radius: where the line from the anchor along a locked
  /// direction crosses it, else the nearest. Faces so thin in view that their wall's own line is as near have
  /// none. `locked`: a point on the line from the anchor.
  std::optional<EntitySnapTarget> place(
      const std::optional<std::pair<SketchPoint, SketchPoint>>& anchorAndLocked = std::nullopt) const;

 private:
  struct Face {
    WallEdge edge;
    UUID wall;
    std::size_t position = 0;  // 0-based, in the document
    double thickness = 0;
    std::array<EntitySnapKind, 2> ends;  // what the edge ends at
  };
  EntitySnapTarget targetOf(const Face& face, SketchPoint at, EntitySnapKind kind) const;

  SketchPoint point_;
  double radius_ = 0;  // of snapping, sketch units
  std::vector<Face> faces_;
};

/// For an entity that is moved as a whole: its own point and the one of a clean wall that come nearest to
/// each other within the snap radius when it is moved by `delta`; corners and jambs before places on faces.
/// Of a wall the corners of its own outline are points as well. `near`: the faces near a point of the plan.
std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> snapEntityMoveToFaces(
    SketchPoint delta, const SketchEntity& moved, double wallThickness,
    const std::function<NearWallFaces(SketchPoint)>& near);

}  // namespace ostrelon
