// How a drawing looks beyond its entities: the look that the document asks for, and with it the joined walls.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "core/plan.h"
#include "core/sketch.h"
#include "geometry/joined_walls.h"
#include "platform/scheduler.h"

namespace ostrelon {

/// A plain value; copies are cheap. By default everything looks as it is drawn.
struct DrawingLook {
  PlanLook plan;
  JoinedWalls joined;  ///< empty without clean walls, and as long as they are being worked out

  /// What the wall is painted from; null where it is painted by itself.
  const JoinedWall* joinedWall(const SketchEntity& entity) const {
    return joined.size() == 0 || !std::holds_alternative<WallEntity>(entity) ? nullptr
                                                                             : joined.find(entityID(entity));
  }
};

/// So few entities are joined at once, without being noticed.
inline constexpr std::size_t kJoinedAtOnce = 3000;

/// The look of these entities, worked out at once.
DrawingLook drawingLook(const PlanLook& plan, const EntityList& entities,
                        std::span<const WallSystemSpec> systems);

/// The look of a sketch, kept while it is edited. Walls of a large drawing are joined away from the main
/// thread when there is nothing to follow from; until then they look as they are drawn.
class SketchLook {
 public:
  /// `sketch` and `scheduler` must outlive the object. `joined` is called on the main thread whenever walls
  /// have been joined meanwhile.
  SketchLook(const Sketch& sketch, Scheduler& scheduler, std::function<void()> joined);
  ~SketchLook();
  SketchLook(const SketchLook&) = delete;
  SketchLook& operator=(const SketchLook&) = delete;

  /// The look as it is now. Costs what has changed since the last call.
  const DrawingLook& now();

 private:
  struct Derivation {
    EntityList entities;
    std::vector<WallSystemSpec> systems;
    std::atomic<bool> isCancelled = false;
    JoinedWalls joined;
  };
  void derive();
  void cancel();

  const Sketch& sketch_;
  Scheduler& scheduler_;
  std::function<void()> joined_;
  DrawingLook look_;
  std::shared_ptr<Derivation> derivation_;  // while one is under way
  ScheduledTask task_;
};

}  // namespace ostrelon
