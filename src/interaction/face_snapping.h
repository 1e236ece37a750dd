// Snap points on clean walls: the corners of their faces, and any place along a face. Only the walls around
// the pointer are joined for it, found through the index, so that it costs the same in a drawing of any size.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/entity_source.h"
#include "core/wall_system.h"
#include "geometry/wall_body.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {

class NearWallFaces {
 public:
  /// None.
  NearWallFaces() = default;
  /// The faces near a point, sketch units, without those of the excluded walls. `scale`: view points a sketch
  /// unit. So many walls around the pointer that they cannot be told apart have none.
  NearWallFaces(const EntitySource& entities, std::span<const WallSystemSpec> systems,
                const SketchSnapping::EntityIDs& excluded, SketchPoint point, double scale);

  /// The better one of a snap point and the nearest corner of a face: the nearer, and the first of equals.
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
  };
  EntitySnapTarget targetOf(const Face& face, SketchPoint at, EntitySnapKind kind) const;

  SketchPoint point_;
  double radius_ = 0;  // of snapping, sketch units
  std::vector<Face> faces_;
};

}  // namespace ostrelon
