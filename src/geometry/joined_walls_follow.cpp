// What an edit changes of the joined walls: the nodes at the ends of what it changed, the walls at these
// nodes with the nodes at their other ends, and the outlines of all that lie over a body that has become
// another.
#include <algorithm>
#include <deque>
#include <unordered_map>
#include <unordered_set>

#include "geometry/joined_walls.h"

namespace ostrelon {

namespace {

/// With more walls changed at once all are worked out anew.
constexpr std::size_t kMostChanges = 400;
/// With more walls a shard than this the storage is laid out anew.
constexpr std::size_t kFullestShard = 128;
/// As in a derivation of all: walls over which so many others lie are painted without joints.
constexpr std::size_t kMostOthers = 400;

}  // namespace

class JoinFollower {
 public:
  JoinFollower(JoinedWalls& joined, const WallStyles& styles, const EntityIndex& index)
      : joined_(joined), styles_(styles), index_(index) {}

  void change(const SketchEntity* before, const SketchEntity* after) {
    if (before != nullptr) {
      if (const JoinedWall* old = joined_.find(entityID(*before))) {
        touched_.push_back(old->body.box);
        for (int which = 0; which < 2; ++which) seeds_.push_back({old->wall.end(which), old->wall.half});
        joined_.remove(old->wall.id);
      }
    }
    const auto* wall = after == nullptr ? nullptr : std::get_if<WallEntity>(after);
    if (wall == nullptr) return;
    if (const auto axis = styles_.axis(*wall)) {
      for (int which = 0; which < 2; ++which) seeds_.push_back({axis->end(which), axis->half});
    }
  }

  void run() {
    for (const Seed& seed : seeds_) {
      visitEndsNear(seed.at, seed.half, [this](Wall& wall, int which) { joinNodeOf(wall, which); });
    }
    // The walls at these nodes may have given up a mitre at their other end, or take it up again.
    const std::size_t atTheNodes = walls_.size();
    for (std::size_t i = 0; i < atTheNodes; ++i) {
      for (int which = 0; which < 2; ++which) joinNodeOf(walls_[i], which);
    }
    for (Wall& wall : walls_) {
      const JoinedWall* known = joined_.find(wall.axis.id);
      for (std::size_t which = 0; which < 2; ++which) {
        if (!wall.isJoined[which]) wall.ends[which] = known->ends[which];
      }
      wall.isLeftOverdrawn = isLeftOverdrawn(wall.axis, wall.ends);
      wall.isRightOverdrawn = isRightOverdrawn(wall.axis, wall.ends);
    }
    for (const Node& node : nodes_) giveUpMitres(node);
    placeBodies();
    cutEdges();
  }

 private:
  struct Seed {
    SketchPoint at;
    double half = 0;
  };
  struct Wall {
    JoinAxis axis;
    std::array<JoinEnd, 2> ends;
    std::array<bool, 2> isJoined{};  // the end has been joined anew
    bool isLeftOverdrawn = false;
    bool isRightOverdrawn = false;
  };
  using Node = std::vector<WallArm>;

  template <class Visit>
  void visitWallsNear(const SketchBox& box, const Visit& visit) {
    candidates_.clear();
    const auto visitEntity = [&visit](const SketchEntity& entity) {
      if (const auto* wall = std::get_if<WallEntity>(&entity)) visit(*wall);
    };
    if (!index_.candidatesIn(box, candidates_)) {
      for (const SketchEntity& entity : index_.list()) visitEntity(entity);
      return;
    }
    for (const EntityIndex::Candidate& candidate : candidates_) visitEntity(*candidate.entity);
  }

  template <class Visit>
  void visitEndsNear(SketchPoint at, double half, const Visit& visit) {
    std::vector<std::pair<Wall*, int>> found;
    visitWallsNear(SketchBox::centered(at, nodeReach(half, half)), [&](const WallEntity& entity) {
      const auto axis = styles_.axis(entity);
      if (!axis) return;
      const double reach = nodeReach(half, axis->half);
      for (int which = 0; which < 2; ++which) {
        if (squaredLength(axis->end(which) - at) <= reach * reach) found.emplace_back(&wall(*axis), which);
      }
    });
    for (const auto& [wall, which] : found) visit(*wall, which);
  }

  Wall& wall(const JoinAxis& axis) {
    const auto [place, isNew] = numbers_.try_emplace(axis.id, walls_.size());
    if (isNew) walls_.push_back({axis, {freeEnd(axis.from), freeEnd(axis.to)}});
    return walls_[place->second];
  }

  // Finds all ends that meet there, one leading to the next, and joins them.
  void joinNodeOf(Wall& first, int end) {
    if (first.isJoined[static_cast<std::size_t>(end)]) return;
    first.isJoined[static_cast<std::size_t>(end)] = true;
    std::vector<std::pair<Wall*, int>> members{{&first, end}};
    for (std::size_t i = 0; i < members.size(); ++i) {
      const auto [member, which] = members[i];
      visitEndsNear(member->axis.end(which), member->axis.half, [&](Wall& other, int otherEnd) {
        bool& isJoined = other.isJoined[static_cast<std::size_t>(otherEnd)];
        if (isJoined) return;
        isJoined = true;
        members.emplace_back(&other, otherEnd);
      });
    }
    Node& node = nodes_.emplace_back();
    for (const auto& [member, which] : members) {
      node.push_back({&member->axis, which, &member->ends[static_cast<std::size_t>(which)]});
    }
    joinArms(node);
  }

  void giveUpMitres(const Node& node) {
    const auto isOverdrawn = [this](const WallArm& arm, bool isArmsLeft) {
      const Wall& wall = walls_[numbers_.at(arm.wall->id)];
      return isArmsLeft == (arm.which == 0) ? wall.isLeftOverdrawn : wall.isRightOverdrawn;
    };
    for (const WallArm& arm : node) {
      if (arm.leftPartner < 0) continue;
      const WallArm& next = node[static_cast<std::size_t>(arm.leftPartner)];
      if (!isOverdrawn(arm, true) && !isOverdrawn(next, false)) continue;
      giveUp(arm.joined->left);
      giveUp(next.joined->right);
    }
  }

  // Puts every body that is another now in its place.
  void placeBodies() {
    for (const Wall& wall : walls_) {
      const JoinedWall* known = joined_.find(wall.axis.id);
      if (known != nullptr && known->wall == wall.axis && known->ends == wall.ends) continue;
      auto record =
          std::make_shared<JoinedWall>(JoinedWall{wall.axis, wall.ends, WallBody(wall.axis, wall.ends), {}});
      if (known != nullptr) touched_.push_back(known->body.box);
      touched_.push_back(record->body.box);
      joined_.reach_ = std::max(joined_.reach_, JoinedWalls::reachOf(*record));
      joined_.put(std::move(record));
    }
  }

  void cutEdges() {
    std::vector<const JoinedWall*> stale;
    std::unordered_set<UUID> known;
    for (const SketchBox& box : touched_) {
      visitWallsNear(box.grown(joined_.reach_), [&](const WallEntity& entity) {
        const JoinedWall* joined = joined_.find(entity.id);
        if (joined != nullptr && joined->body.box.overlaps(box) && known.insert(entity.id).second) {
          stale.push_back(joined);
        }
      });
    }
    std::vector<JoinedWalls::Record> records;
    std::deque<WallCutter> cutters;
    std::vector<const WallCutter*> others;
    for (const JoinedWall* joined : stale) {
      cutters.clear();
      visitWallsNear(joined->body.box.grown(joined_.reach_), [&](const WallEntity& entity) {
        if (entity.id == joined->wall.id) return;
        const JoinedWall* other = joined_.find(entity.id);
        if (other == nullptr || !other->body.box.overlaps(joined->body.box)) return;
        cutters.emplace_back(other->wall, other->body);
      });
      others.clear();
      for (const WallCutter& cutter : cutters) others.push_back(&cutter);
      if (others.size() > kMostOthers) others.clear();
      auto edges = visibleEdges(joined->wall, joined->ends, joined->body, others);
      if (edges == joined->edges) continue;
      auto record = std::make_shared<JoinedWall>(*joined);
      record->edges = std::move(edges);
      records.push_back(std::move(record));
    }
    for (JoinedWalls::Record& record : records) joined_.put(std::move(record));
  }

  JoinedWalls& joined_;
  const WallStyles& styles_;
  const EntityIndex& index_;
  std::vector<Seed> seeds_;         // where ends were and are that have changed
  std::vector<SketchBox> touched_;  // what bodies covered and cover that have changed
  std::deque<Wall> walls_;          // those that may be joined in another way; they keep their addresses
  std::unordered_map<UUID, std::size_t> numbers_;  // of these by identifier
  std::deque<Node> nodes_;
  std::vector<EntityIndex::Candidate> candidates_;
};

bool JoinedWalls::follow(const EntityList& entities, std::span<const WallSystemSpec> systems,
                         const EntityIndex& index) {
  if (isOf(entities, systems)) return true;
  if (shards_.empty() || isUnclear_ || index.hasDuplicates() || !index.list().sharesAllStorage(entities))
    return false;
  if (!entities_.empty() && entities_.size() > kMostChanges && !entities.empty() &&
      entities_.commonStart(entities) == 0 && entities_.commonEnd(entities) == 0) {
    return false;
  }
  if (!isOf(entities_, systems)) return false;
  const auto difference = EntityList::difference(entities_, entities);
  const WallStyles styles(systems);
  const auto isWall = [](const SketchEntity& entity) { return std::holds_alternative<WallEntity>(entity); };
  std::size_t changes = 0;
  for (const auto& entity : difference.removed) changes += isWall(entity);
  for (const auto& entity : difference.added) changes += isWall(entity);
  for (const auto& [before, after] : difference.changed) changes += isWall(before) || isWall(after);
  if (changes > kMostChanges || size_ > kFullestShard * shards_.size()) return false;
  entities_ = entities;
  if (changes == 0) return true;
  JoinFollower follower(*this, styles, index);
  for (const auto& entity : difference.removed) follower.change(&entity, nullptr);
  for (const auto& entity : difference.added) follower.change(nullptr, &entity);
  for (const auto& [before, after] : difference.changed) follower.change(&before, &after);
  follower.run();
  return true;
}

}  // namespace ostrelon
