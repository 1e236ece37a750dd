// Clean walls: what is drawn of each wall of a drawing once walls that meet are joined. A value beside the
// list of entities that it follows: copies share their storage, so a thread may paint from one while the
// drawing goes on, and what has changed between two of them is found by what they do not share.
//
//   JoinedWalls joined = JoinedWalls::of(drawing.entities, drawing.wallSystemSpecs);
//   …the drawing is edited…
//   if (!joined.follow(entities, systems, index)) joined = JoinedWalls::of(entities, systems);
//
// Joining changes how walls look alone: what is picked, measured and stored are the walls as they are.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "core/entity_index.h"
#include "core/entity_list.h"
#include "geometry/wall_body.h"

namespace ostrelon {

struct JoinedWall {
  JoinAxis wall;
  std::array<JoinEnd, 2> ends;  ///< at the start and at the end
  WallBody body;
  std::vector<WallEdge> edges;
};

/// A gap in a wall along its axis, for what is put into it: sketch units from its start.
struct WallGap {
  double from = 0;
  double to = 0;
};

/// The wall's edges with its faces cut out of the gaps.
std::vector<WallEdge> edgesBeside(const JoinedWall& wall, std::span<const WallGap> gaps);
/// What the wall fills beside the gaps: convex polygons, counter-clockwise, that share no area.
std::vector<std::vector<SketchPoint>> fillBeside(const JoinedWall& wall, std::span<const WallGap> gaps);

class JoinedWalls {
 public:
  JoinedWalls() = default;

  /// All walls of the list, worked out by so many threads, the caller's included. Walls that cannot be joined
  /// are not among them, nor are any where two entities share an identifier or too many walls lie over each
  /// other to be told apart: these look as they do without joints. Ends early, with anything, once
  /// `isCancelled` becomes true.
  static JoinedWalls of(const EntityList& entities, std::span<const WallSystemSpec> systems, int threads = 2,
                        const std::atomic<bool>* isCancelled = nullptr);

  /// Brings the walls up to another state of the list that they follow, by what has changed; `index` follows
  /// the same list. False, with nothing done, where all must be worked out anew: after a change of the
  /// systems' names or thicknesses, or of very many walls.
  bool follow(const EntityList& entities, std::span<const WallSystemSpec> systems, const EntityIndex& index);
  /// They are those of this state already.
  bool isOf(const EntityList& entities, std::span<const WallSystemSpec> systems) const;

  /// Null for what is no wall or cannot be joined. Valid as long as this value, or a copy, is not changed.
  const JoinedWall* find(const UUID& id) const;
  std::size_t size() const { return size_; }
  /// How far the body of any wall reaches beyond the box around its axis, sketch units.
  double reach() const { return reach_; }
  /// Calls `visit(wall)` for each, in no order.
  void visitAll(const std::function<void(const JoinedWall&)>& visit) const;
  /// Calls `visit` for each wall, as it was and as it is, that looks different in the two; null where it is
  /// in one of them alone. Costs what changed.
  static void visitChanges(const JoinedWalls& before, const JoinedWalls& after,
                           const std::function<void(const JoinedWall*, const JoinedWall*)>& visit);

 private:
  friend class JoinFollower;
  using Record = std::shared_ptr<const JoinedWall>;
  // The walls whose identifiers have the same first bits, ascending by identifier.
  using Shard = std::vector<Record>;

  static double reachOf(const JoinedWall& joined);
  void put(Record record);
  void remove(const UUID& id);
  Shard& ownShard(const UUID& id);
  void fill(std::vector<Record> records);

  EntityList entities_;
  std::vector<WallSystemSpec> systems_;
  std::vector<std::shared_ptr<Shard>> shards_;  // 0, or a power of two
  std::size_t size_ = 0;
  bool isUnclear_ = false;  // two entities share an identifier
  double reach_ = 0;
};

}  // namespace ostrelon
