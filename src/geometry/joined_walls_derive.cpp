// All walls of a list at once: the ends that meet, the joints, the bodies, and what is seen of each outline.
#include <algorithm>
#include <bit>
#include <cmath>
#include <future>
#include <mutex>
#include <numeric>

#include "geometry/joined_walls.h"
#include "geometry/wall_grid.h"

namespace ostrelon {

namespace {

/// Walls over which so many others lie are painted without joints: they would only be cut to nothing.
constexpr std::size_t kMostOthers = 400;
/// Between two looks at whether the result is still wanted.
constexpr std::size_t kWallsPerLook = 512;
/// So few walls are not worth a thread.
constexpr std::size_t kLittle = 2000;

// Runs `work(begin, end)` over 0 up to the count, by so many threads.
template <class Work>
void shareOut(std::size_t count, int threads, const Work& work) {
  if (count < kLittle) threads = 1;
  std::vector<std::future<void>> others;
  const auto share = [&](int part) {
    return count * static_cast<std::size_t>(part) / static_cast<std::size_t>(threads);
  };
  for (int part = 1; part < threads; ++part) {
    others.push_back(std::async(std::launch::async, [&, part] { work(share(part), share(part + 1)); }));
  }
  work(0, share(1));
  for (const auto& other : others) other.wait();
}

// An end of a wall: the wall's number and which end.
using EndNumber = std::uint32_t;

class Derivation {
 public:
  Derivation(std::vector<JoinAxis> walls, int threads, const std::atomic<bool>* isCancelled)
      : walls_(std::move(walls)), threads_(threads), isCancelled_(isCancelled), ends_(walls_.size()) {}

  std::vector<std::shared_ptr<const JoinedWall>> run() {
    joinNodes();
    shareOut(walls_.size(), threads_,
             [this](std::size_t begin, std::size_t end) { markOverdrawn(begin, end); });
    giveUpMitres();
    bodies_.resize(walls_.size());
    cutters_.resize(walls_.size());
    boxes_.resize(walls_.size());
    shareOut(walls_.size(), threads_, [this](std::size_t begin, std::size_t end) { makeBodies(begin, end); });
    records_.resize(walls_.size());
    if (!walls_.empty()) cutEdges();
    return std::move(records_);
  }

 private:
  const JoinAxis& wallOf(EndNumber end) const { return walls_[end / 2]; }
  SketchPoint pointOf(EndNumber end) const { return wallOf(end).end(static_cast<int>(end % 2)); }
  bool isCancelled() const { return isCancelled_ != nullptr && *isCancelled_; }

  // Ends that meet, by a table of cells as wide as the widest reach of a wall.
  void joinNodes() {
    const auto count = static_cast<EndNumber>(2 * walls_.size());
    parents_.resize(count);
    std::iota(parents_.begin(), parents_.end(), EndNumber{0});
    double reach = 0;
    for (const JoinAxis& wall : walls_) reach = std::max(reach, nodeReach(wall.half, wall.half));
    if (!(reach > 0)) return;
    const double cellSize = 4 * reach;
    const std::size_t mask = std::bit_ceil(std::size_t{count} + 1) - 1;
    std::vector<EndNumber> firsts(mask + 1, kNone);
    std::vector<EndNumber> nexts(count, kNone);
    const auto bucket = [mask](double x, double y) {
      const auto mixed = static_cast<std::uint64_t>(static_cast<std::int64_t>(x)) * 0x9E3779B97F4A7C15ULL +
                         static_cast<std::uint64_t>(static_cast<std::int64_t>(y)) * 0xD6E8FEB86659FD93ULL;
      return static_cast<std::size_t>(mixed ^ (mixed >> 29)) & mask;
    };
    for (EndNumber end = 0; end < count; ++end) {
      const SketchPoint at = pointOf(end);
      const double mine = nodeReach(wallOf(end).half, wallOf(end).half);
      const double minX = std::floor((at.x - mine) / cellSize);
      const double maxX = std::floor((at.x + mine) / cellSize);
      const double minY = std::floor((at.y - mine) / cellSize);
      const double maxY = std::floor((at.y + mine) / cellSize);
      for (double y = minY; y <= maxY; ++y) {
        for (double x = minX; x <= maxX; ++x) {
          for (EndNumber other = firsts[bucket(x, y)]; other != kNone; other = nexts[other]) meet(end, other);
        }
      }
      EndNumber& first = firsts[bucket(std::floor(at.x / cellSize), std::floor(at.y / cellSize))];
      nexts[end] = first;
      first = end;
    }

    // The ends of each node one behind the other.
    std::vector<EndNumber> nodeBegins(std::size_t{count} + 1, 0);
    for (EndNumber end = 0; end < count; ++end) ++nodeBegins[rootOf(end)];
    EndNumber total = 0;
    for (EndNumber& begin : nodeBegins) total = begin += total;
    std::vector<EndNumber> members(count);
    for (EndNumber end = count; end-- > 0;) members[--nodeBegins[parents_[end]]] = end;
    partners_.assign(std::size_t{2} * count, kNone);
    shareOut(count, threads_, [&](std::size_t begin, std::size_t end) {
      std::vector<WallArm> arms;
      for (std::size_t node = begin; node < end; ++node) {
        joinNode({members.data() + nodeBegins[node], members.data() + nodeBegins[node + 1]}, arms);
      }
    });
  }

  void meet(EndNumber a, EndNumber b) {
    const double reach = nodeReach(wallOf(a).half, wallOf(b).half);
    if (squaredLength(pointOf(a) - pointOf(b)) <= reach * reach) parents_[rootOf(a)] = rootOf(b);
  }

  EndNumber rootOf(EndNumber end) {
    while (parents_[end] != end) end = parents_[end] = parents_[parents_[end]];
    return end;
  }

  void joinNode(std::span<const EndNumber> members, std::vector<WallArm>& arms) {
    arms.clear();
    for (const EndNumber end : members) {
      arms.push_back({&wallOf(end), static_cast<int>(end % 2), &ends_[end / 2][end % 2]});
    }
    joinArms(arms);
    for (std::size_t i = 0; i < arms.size(); ++i) {
      const auto partner = [&](int arm) { return arm < 0 ? kNone : members[static_cast<std::size_t>(arm)]; };
      partners_[std::size_t{2} * members[i]] = partner(arms[i].leftPartner);
      partners_[std::size_t{2} * members[i] + 1] = partner(arms[i].rightPartner);
    }
  }

  void markOverdrawn(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const bool left = isLeftOverdrawn(walls_[i], ends_[i]);
      const bool right = isRightOverdrawn(walls_[i], ends_[i]);
      if (!left && !right) continue;
      const std::lock_guard lock(overdrawnMutex_);
      overdrawn_.push_back({static_cast<std::uint32_t>(i), left, right});
    }
  }

  void giveUpMitres() {
    const auto giveUpAt = [this](EndNumber end, bool isLeft) {
      JoinEnd& mine = ends_[end / 2][end % 2];
      giveUp(isLeft ? mine.left : mine.right);
      const EndNumber partner = partners_[std::size_t{2} * end + (isLeft ? 0 : 1)];
      if (partner == kNone) return;
      JoinEnd& other = ends_[partner / 2][partner % 2];
      giveUp(isLeft ? other.right : other.left);
    };
    for (const auto& [wall, left, right] : overdrawn_) {
      if (left) giveUpAt(2 * wall, true);
      if (left) giveUpAt(2 * wall + 1, false);
      if (right) giveUpAt(2 * wall, false);
      if (right) giveUpAt(2 * wall + 1, true);
    }
  }

  void makeBodies(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      bodies_[i] = WallBody(walls_[i], ends_[i]);
      cutters_[i] = WallCutter(walls_[i], bodies_[i]);
      boxes_[i] = bodies_[i].box;
    }
  }

  void cutEdges() {
    double extents = 0;
    for (const SketchBox& box : boxes_) extents += std::max(box.width(), box.height());
    const WallGrid grid(boxes_, extents / static_cast<double>(boxes_.size()));
    shareOut(walls_.size(), threads_, [&](std::size_t begin, std::size_t end) {
      std::vector<std::uint32_t> seen(walls_.size(), kNone);
      std::vector<const WallCutter*> others;
      for (std::size_t i = begin; i < end; ++i) {
        if (i % kWallsPerLook == 0 && isCancelled()) return;
        others.clear();
        const auto number = static_cast<std::uint32_t>(i);
        seen[i] = number;
        grid.visitNear(boxes_[i], [&](std::uint32_t other) {
          if (seen[other] == number || !boxes_[other].overlaps(boxes_[i])) return;
          seen[other] = number;
          others.push_back(&cutters_[other]);
        });
        if (others.size() > kMostOthers) others.clear();
        records_[i] = std::make_shared<const JoinedWall>(JoinedWall{
            walls_[i], ends_[i], bodies_[i], visibleEdges(walls_[i], ends_[i], bodies_[i], others)});
      }
    });
  }

  static constexpr EndNumber kNone = 0xFFFFFFFF;
  struct Overdrawn {
    std::uint32_t wall = 0;
    bool left = false;
    bool right = false;
  };

  std::vector<JoinAxis> walls_;
  int threads_;
  const std::atomic<bool>* isCancelled_;
  std::vector<std::array<JoinEnd, 2>> ends_;
  std::vector<EndNumber> parents_;   // of the ends that meet, as a forest
  std::vector<EndNumber> partners_;  // to which end the left and right face of each end is joined
  std::mutex overdrawnMutex_;
  std::vector<Overdrawn> overdrawn_;
  std::vector<WallBody> bodies_;
  std::vector<WallCutter> cutters_;
  std::vector<SketchBox> boxes_;
  std::vector<std::shared_ptr<const JoinedWall>> records_;
};

}  // namespace

JoinedWalls JoinedWalls::of(const EntityList& entities, std::span<const WallSystemSpec> systems, int threads,
                            const std::atomic<bool>* isCancelled) {
  const WallStyles styles(systems);
  std::vector<JoinAxis> walls;
  for (const SketchEntity& entity : entities) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr) continue;
    if (auto axis = styles.axis(*wall)) walls.push_back(*axis);
  }
  JoinedWalls joined;
  joined.entities_ = entities;
  joined.systems_.assign(systems.begin(), systems.end());
  auto records = Derivation(std::move(walls), threads, isCancelled).run();
  if (isCancelled == nullptr || !*isCancelled) joined.fill(std::move(records));
  return joined;
}

}  // namespace ostrelon
