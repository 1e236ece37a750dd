// The difference of two drawings as it is shown: over the entities that are the same on both sides, which are
// faded, what differs lies in four layers, and a revision cloud with a number is around all that lies near
// each other. A layer has a line of its own, so that it can be told without its colour:
//
//   changed, before   short dashes
//   removed           long dashes
//   changed, after    solid, filled faintly
//   added             solid, filled faintly, with a halo
//
//   const auto layers = differenceLayers(compareDrawings(before, after), before.wallSystemSpecs,
//                                        after.wallSystemSpecs);
//   paintDifference(painter, frame, layers, after.entities);
//
// The window, pictures and pages paint the same. Nothing here depends on what is open.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/entity_list.h"
#include "documents/told_difference.h"
#include "interaction/canvas_frame.h"
#include "interaction/entity_shape.h"

namespace ostrelon {

/// From bottom to top.
enum class DifferenceLayer { changedBefore, removed, changedAfter, added };
inline constexpr std::array kDifferenceLayers{DifferenceLayer::changedBefore, DifferenceLayer::removed,
                                              DifferenceLayer::changedAfter, DifferenceLayer::added};

/// One entity that differs.
struct DifferenceItem {
  DifferenceKind kind = DifferenceKind::changed;
  std::size_t position = 0;  ///< in its layer, or its two layers
  std::size_t group = 0;
  SketchBox box;  ///< what it covers on both sides, walls with their thickness; sketch units
};

/// What lies near each other.
struct DifferenceGroup {
  SketchBox box;                   ///< around its items; not finite where one of them is not
  std::vector<std::size_t> items;  ///< positions among all items
};

struct DifferenceLayers {
  std::vector<DifferenceItem> items;    ///< what was removed, what was changed, what was added
  std::vector<DifferenceGroup> groups;  ///< from the top of the drawing to its bottom
  std::array<EntityList, kDifferenceLayers.size()> entities;  ///< by layer
  std::vector<WallSystemSpec> systemsBefore;
  std::vector<WallSystemSpec> systemsAfter;
  /// The entities that differ, of both sides: they are not shown as the same.
  EntitySet ids;

  const EntityList& of(DifferenceLayer layer) const { return entities[static_cast<std::size_t>(layer)]; }
  const std::vector<WallSystemSpec>& systemsOf(DifferenceLayer layer) const;
  /// Null for what was added, and for what was removed. Valid as long as the layers.
  const SketchEntity* before(const DifferenceItem& item) const;
  const SketchEntity* after(const DifferenceItem& item) const;
  /// The box around all items that are finite; absent where there are none.
  std::optional<SketchBox> bounds() const;
};

/// Costs what differs. Items are near each other where the gap between the boxes around them, or around what
/// is near them already, is at most half the size of a middling item on both axes, or a fiftieth of the
/// whole.
DifferenceLayers differenceLayers(const DrawingDifference& difference,
                                  std::vector<WallSystemSpec> systemsBefore,
                                  std::vector<WallSystemSpec> systemsAfter);

/// For each box its group, counted from 0: boxes whose gap is at most `reach` on both axes are of one group,
/// and so on with the boxes around groups, until nothing is near anything else. Boxes that are not finite are
/// a group by themselves. Sketch units.
std::vector<std::size_t> groupedByNearness(std::span<const SketchBox> boxes, double reach);

// --- Painting

/// How much of a layer is seen, 0 to 1, on the way from the drawing before (0) to the one after (1); in the
/// middle (0.5) both are wholly there.
double layerOpacity(DifferenceLayer layer, double blend);
inline constexpr double kBothSides = 0.5;

/// Paints entities of one layer one by one.
class DifferenceEntityPainter {
 public:
  /// `systems` must outlive the painter. `opacity`: 0 to 1.
  DifferenceEntityPainter(CanvasFrame frame, std::span<const WallSystemSpec> systems, DifferenceLayer layer,
                          double opacity = 1);
  /// Nothing, where the entity does not touch the painted part.
  void paint(CanvasPainter& painter, const SketchEntity& entity);

 private:
  CanvasFrame frame_;
  std::span<const WallSystemSpec> systems_;
  DifferenceLayer layer_;
  double opacity_;
  Color color_;
  SketchBox visible_;
  EntityShape shape_;
};

void paintDifferenceLayer(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceLayers& layers,
                          DifferenceLayer layer, double opacity = 1);
/// A cloud around each group, with its number, counted from 1. `current`: the item whose group stands out.
void paintClouds(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceLayers& layers,
                 std::optional<std::size_t> current = std::nullopt);
/// A frame around one item.
void paintCurrentItem(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceItem& item);

/// All of it: those of `drawing` that are the same, faded, the layers and the clouds. `drawing` is either
/// side.
void paintDifference(CanvasPainter& painter, const CanvasFrame& frame, const DifferenceLayers& layers,
                     const EntityList& drawing, double blend = kBothSides);

/// The outline of a revision cloud: arcs that bulge outwards from the box, each about `chord` wide, as a
/// closed polyline. In the unit of the box, with `box` finite and `chord` above 0.
std::vector<SketchPoint> revisionCloud(const SketchBox& box, double chord);

}  // namespace ostrelon
