#include "geometry/joined_walls.h"

#include <algorithm>
#include <bit>

#include "core/half_plane.h"

namespace ostrelon {

namespace {

constexpr std::size_t kUsualShard = 32;

std::size_t shardOf(const UUID& id, std::size_t shards) { return std::hash<UUID>()(id) & (shards - 1); }

bool looksAlike(const std::vector<WallSystemSpec>& a, std::span<const WallSystemSpec> b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](auto& one, auto& other) {
    return one.id == other.id && one.name == other.name && one.thickness == other.thickness;
  });
}

auto placeIn(const auto& shard, const UUID& id) {
  return std::lower_bound(shard.begin(), shard.end(), id,
                          [](const auto& record, const UUID& wanted) { return record->wall.id < wanted; });
}

/// What lies beside the gaps of the length from 0 on, ascending.
std::vector<WallGap> restBeside(std::span<const WallGap> gaps, double begin, double end) {
  std::vector<WallGap> sorted(gaps.begin(), gaps.end());
  std::sort(sorted.begin(), sorted.end(), [](const WallGap& a, const WallGap& b) { return a.from < b.from; });
  std::vector<WallGap> rest;
  for (const WallGap& gap : sorted) {
    if (gap.from > begin) rest.push_back({begin, std::min(gap.from, end)});
    begin = std::max(begin, gap.to);
    if (begin >= end) break;
  }
  if (begin < end) rest.push_back({begin, end});
  return rest;
}

}  // namespace

// --- Gaps

std::vector<WallEdge> edgesBeside(const JoinedWall& joined, std::span<const WallGap> gaps) {
  if (gaps.empty()) return joined.edges;
  const JoinAxis& wall = joined.wall;
  std::vector<WallEdge> kept;
  for (const WallEdge& edge : joined.edges) {
    if (!edge.isFace) {
      kept.push_back(edge);
      continue;
    }
    const double from = dot(edge.from - wall.from, wall.direction);
    const double to = dot(edge.to - wall.from, wall.direction);
    const auto at = [&](double along) {
      return along == from ? edge.from : along == to ? edge.to : edge.from + wall.direction * (along - from);
    };
    for (const WallGap& part : restBeside(gaps, std::min(from, to), std::max(from, to))) {
      if (from < to) {
        kept.push_back({at(part.from), at(part.to), true});
      } else {
        kept.push_back({at(part.to), at(part.from), true});
      }
    }
  }
  return kept;
}

std::vector<std::vector<SketchPoint>> fillBeside(const JoinedWall& joined, std::span<const WallGap> gaps) {
  std::vector<std::vector<SketchPoint>> parts;
  const JoinAxis& wall = joined.wall;
  const auto along = [&](SketchPoint point) { return dot(point - wall.from, wall.direction); };
  for (const auto& half : {joined.body.leftHalf(), joined.body.rightHalf()}) {
    if (gaps.empty()) {
      parts.emplace_back(half.begin(), half.end());
      continue;
    }
    double begin = along(half[0]);
    double end = begin;
    for (const SketchPoint corner : half) {
      begin = std::min(begin, along(corner));
      end = std::max(end, along(corner));
    }
    for (const WallGap& rest : restBeside(gaps, begin, end)) {
      const auto crossingAt = [&along](double distance) {
        return [&along, distance](SketchPoint a, SketchPoint b) {
          return a + (b - a) * ((distance - along(a)) / (along(b) - along(a)));
        };
      };
      auto part = cutByHalfPlane(
          half, [&](SketchPoint p) { return along(p) >= rest.from; }, crossingAt(rest.from));
      part = cutByHalfPlane(
          part, [&](SketchPoint p) { return along(p) <= rest.to; }, crossingAt(rest.to));
      if (part.size() > 2) parts.push_back(std::move(part));
    }
  }
  return parts;
}

// --- The storage

double JoinedWalls::reachOf(const JoinedWall& joined) {
  const SketchBox axis = SketchBox::spanning(joined.wall.from, joined.wall.to);
  const SketchBox& body = joined.body.box;
  return std::max(
      {axis.minX - body.minX, axis.minY - body.minY, body.maxX - axis.maxX, body.maxY - axis.maxY});
}

const JoinedWall* JoinedWalls::find(const UUID& id) const {
  if (shards_.empty()) return nullptr;
  const Shard& shard = *shards_[shardOf(id, shards_.size())];
  const auto place = placeIn(shard, id);
  return place != shard.end() && (*place)->wall.id == id ? place->get() : nullptr;
}

JoinedWalls::Shard& JoinedWalls::ownShard(const UUID& id) {
  std::shared_ptr<Shard>& shard = shards_[shardOf(id, shards_.size())];
  if (shard.use_count() > 1) shard = std::make_shared<Shard>(*shard);
  return *shard;
}

void JoinedWalls::put(Record record) {
  Shard& shard = ownShard(record->wall.id);
  const auto place = placeIn(shard, record->wall.id);
  if (place != shard.end() && (*place)->wall.id == record->wall.id) {
    shard[static_cast<std::size_t>(place - shard.begin())] = std::move(record);
    return;
  }
  shard.insert(place, std::move(record));
  ++size_;
}

void JoinedWalls::remove(const UUID& id) {
  Shard& shard = ownShard(id);
  const auto place = placeIn(shard, id);
  if (place == shard.end() || (*place)->wall.id != id) return;
  shard.erase(place);
  --size_;
}

void JoinedWalls::fill(std::vector<Record> records) {
  size_ = records.size();
  const std::size_t count = std::bit_ceil(records.size() / kUsualShard + 1);
  reach_ = 0;
  for (const Record& record : records) reach_ = std::max(reach_, reachOf(*record));
  shards_.clear();
  shards_.reserve(count);
  for (std::size_t i = 0; i < count; ++i) shards_.push_back(std::make_shared<Shard>());
  for (Record& record : records) {
    shards_[shardOf(record->wall.id, count)]->push_back(std::move(record));
  }
  for (const auto& shard : shards_) {
    std::sort(shard->begin(), shard->end(),
              [](const Record& a, const Record& b) { return a->wall.id < b->wall.id; });
    const auto twice = std::adjacent_find(shard->begin(), shard->end(), [](const Record& a, const Record& b) {
      return a->wall.id == b->wall.id;
    });
    if (twice == shard->end()) continue;
    shards_.assign(1, std::make_shared<Shard>());
    size_ = 0;
    isUnclear_ = true;
    return;
  }
}

bool JoinedWalls::isOf(const EntityList& entities, std::span<const WallSystemSpec> systems) const {
  return !shards_.empty() && entities_.sharesAllStorage(entities) && looksAlike(systems_, systems);
}

void JoinedWalls::visitAll(const std::function<void(const JoinedWall&)>& visit) const {
  for (const auto& shard : shards_) {
    for (const Record& record : *shard) visit(*record);
  }
}

void JoinedWalls::visitChanges(const JoinedWalls& before, const JoinedWalls& after,
                               const std::function<void(const JoinedWall*, const JoinedWall*)>& visit) {
  if (before.shards_.size() != after.shards_.size()) {
    before.visitAll([&](const JoinedWall& wall) { visit(&wall, after.find(wall.wall.id)); });
    after.visitAll([&](const JoinedWall& wall) {
      if (before.find(wall.wall.id) == nullptr) visit(nullptr, &wall);
    });
    return;
  }
  for (std::size_t i = 0; i < after.shards_.size(); ++i) {
    if (before.shards_[i] == after.shards_[i]) continue;
    const Shard& old = *before.shards_[i];
    const Shard& now = *after.shards_[i];
    auto a = old.begin();
    auto b = now.begin();
    while (a != old.end() || b != now.end()) {
      if (b == now.end() || (a != old.end() && (*a)->wall.id < (*b)->wall.id)) {
        visit((a++)->get(), nullptr);
      } else if (a == old.end() || (*b)->wall.id < (*a)->wall.id) {
        visit(nullptr, (b++)->get());
      } else {
        if (*a != *b) visit(a->get(), b->get());
        ++a;
        ++b;
      }
    }
  }
}

}  // namespace ostrelon
