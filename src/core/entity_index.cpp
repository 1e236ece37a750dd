#include "core/entity_index.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace ostrelon {
namespace {

constexpr unsigned kOffsetBits = 11;  // enough for more entities than any chunk holds
constexpr std::uint32_t kOffsetMask = (1U << kOffsetBits) - 1;

// The cells of level 0 are a quarter of a unit wide, those of each further level four times wider.
constexpr double kFinestCell = 0.25;
// Beyond this many cells from the origin an entity is kept outside the grids.
constexpr double kLargestCellIndex = 1 << 28;
// A window over more cells than this, or a list shorter than this, is walked.
constexpr std::size_t kMostCells = 4096;
constexpr std::size_t kShortList = 64;
// When this part of all entities would be looked at, a walk over the list is the faster way.
constexpr std::size_t kWideWindowShare = 8;
// Numbers of chunks that are gone are given back by a rebuild, once there are this many too many.
constexpr std::size_t kManyChunks = 1 << 16;

constexpr std::array<double, 24> kCellSizes = [] {
  std::array<double, 24> sizes{};
  double size = kFinestCell;
  for (double& each : sizes) {
    each = size;
    size *= 4;
  }
  return sizes;
}();

double cellSize(int level) { return kCellSizes[static_cast<std::size_t>(level)]; }

float roundedDown(double value) {
  const auto narrow = static_cast<float>(value);
  return static_cast<double>(narrow) > value ? std::nextafter(narrow, -std::numeric_limits<float>::infinity())
                                             : narrow;
}

float roundedUp(double value) {
  const auto narrow = static_cast<float>(value);
  return static_cast<double>(narrow) < value ? std::nextafter(narrow, std::numeric_limits<float>::infinity())
                                             : narrow;
}

std::uint64_t mixed(std::uint64_t value) {
  value ^= value >> 31;
  value *= 0x7FB5D329728EA185ULL;
  value ^= value >> 27;
  value *= 0x81DADEF4BC2DD44DULL;
  return value ^ (value >> 33);
}

}  // namespace

void EntityIndex::update(const EntityList& list) {
  if (list_.sharesAllStorage(list)) return;
  const std::size_t live = chunkNumbers_.size() < kManyChunks ? 0 : list_.size() / 128;
  if (list_.empty() || list.empty() || hasDuplicates_ || chunkNumbers_.size() > 2 * live + kManyChunks) {
    rebuild(list);
    return;
  }
  const EntityList before = std::exchange(list_, list);
  followChunks(before);
  bool isClear = true;
  std::vector<std::pair<UUID, std::uint32_t>> placed;
  // Removals come first in effect: an identifier that left one place and came to another is reported as
  // neither removed nor added, so the order of these steps does not matter.
  std::vector<const SketchEntity*> added;
  EntityList::compare(before, list_,
                      {[&](const SketchEntity& entity) { removeSlot(entityID(entity)); },
                       [&](const SketchEntity& entity) { added.push_back(&entity); },
                       [&](const SketchEntity& /*old*/, const SketchEntity& now) {
                         const std::uint32_t slot = slotOf(entityID(now));
                         if (slot == kNone) {
                           isClear = false;
                           return;
                         }
                         unlink(slot);
                         setBounds(slots_[slot], now);
                         link(slot);
                       },
                       [&](const SketchEntity& entity, std::uint64_t identity, std::size_t offset) {
                         placed.emplace_back(entityID(entity),
                                             (chunkNumber(identity) << kOffsetBits) |
                                                 (static_cast<std::uint32_t>(offset) & kOffsetMask));
                       }});
  for (const SketchEntity* entity : added) {
    if (slotOf(entityID(*entity)) != kNone) isClear = false;
    if (!isClear) break;
    addSlot(*entity, 0);
  }
  for (const auto& [id, place] : placed) {
    const std::uint32_t slot = isClear ? slotOf(id) : kNone;
    if (slot == kNone) {
      isClear = false;
      break;
    }
    slots_[slot].place = place;
  }
  if (!isClear || used_ != list_.size()) rebuild(list_);
}

std::optional<std::size_t> EntityIndex::positionOf(const UUID& id) const {
  if (hasDuplicates_) return list_.indexOf(id);
  const std::uint32_t slot = slotOf(id);
  if (slot == kNone) return std::nullopt;
  return locate(slots_[slot]).first;
}

const SketchEntity* EntityIndex::find(const UUID& id) const {
  if (hasDuplicates_) return list_.find(id);
  const std::uint32_t slot = slotOf(id);
  return slot == kNone ? nullptr : locate(slots_[slot]).second;
}

bool EntityIndex::candidatesIn(const SketchBox& box, std::vector<Candidate>& candidates) const {
  return candidatesIn(box, candidates, std::max<std::size_t>(list_.size() / kWideWindowShare, kShortList));
}

bool EntityIndex::candidatesIn(const SketchBox& box, std::vector<Candidate>& candidates,
                               std::size_t most) const {
  if (hasDuplicates_ || list_.size() < kShortList) return false;
  if (!isFinite(box)) return false;
  // First the price: cells to visit on all levels in use, and entities to expect in them.
  std::size_t cellCount = 0;
  for (int level = 0; level < kLevels; ++level) {
    if (levelCounts_[static_cast<std::size_t>(level)] == 0) continue;
    const double size = cellSize(level);
    const double columns = std::floor(box.maxX / size) - std::floor(box.minX / size) + 3;
    const double rows = std::floor(box.maxY / size) - std::floor(box.minY / size) + 3;
    if (!(columns * rows < static_cast<double>(kMostCells))) return false;
    cellCount += static_cast<std::size_t>(columns * rows);
    if (cellCount > kMostCells) return false;
  }

  const std::size_t first = candidates.size();
  const auto take = [&](std::uint32_t slotNumber) {
    for (; slotNumber != kNone; slotNumber = slots_[slotNumber].next) {
      const Slot& slot = slots_[slotNumber];
      // Written so that bounds that are not numbers are candidates everywhere.
      if (static_cast<double>(slot.minX) > box.maxX || static_cast<double>(slot.maxX) < box.minX ||
          static_cast<double>(slot.minY) > box.maxY || static_cast<double>(slot.maxY) < box.minY) {
        continue;
      }
      candidates.push_back({nullptr, slotNumber});
    }
    return candidates.size() - first <= most;
  };
  const auto takeCell = [&](const CellPlace& place) {
    return usedCells_ == 0 || take(cells_[findCell(keyOf(place))]);
  };
  bool isCheap = take(outsideFirst_);
  for (int level = 0; level < kLevels && isCheap; ++level) {
    if (levelCounts_[static_cast<std::size_t>(level)] == 0) continue;
    const double size = cellSize(level);
    // An entity reaches at most half a cell beyond the cell of its middle; rounding may add a hair.
    const auto firstX = std::floor(box.minX / size) - 1;
    const auto lastX = std::floor(box.maxX / size) + 1;
    const auto firstY = std::floor(box.minY / size) - 1;
    const auto lastY = std::floor(box.maxY / size) + 1;
    for (double y = std::max(firstY, -kLargestCellIndex); y <= std::min(lastY, kLargestCellIndex) && isCheap;
         ++y) {
      for (double x = std::max(firstX, -kLargestCellIndex);
           x <= std::min(lastX, kLargestCellIndex) && isCheap; ++x) {
        isCheap = takeCell({level, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)});
      }
    }
  }
  if (!isCheap) {
    candidates.resize(first);
    return false;
  }
  for (std::size_t i = first; i < candidates.size(); ++i) {
    candidates[i].entity = locate(slots_[candidates[i].slot]).second;
  }
  return true;
}

std::size_t EntityIndex::positionOf(const Candidate& candidate) const {
  return locate(slots_[candidate.slot]).first;
}

std::vector<std::pair<std::size_t, const SketchEntity*>> EntityIndex::inListOrder(
    const std::vector<Candidate>& candidates) const {
  std::vector<std::pair<std::size_t, const SketchEntity*>> ordered;
  ordered.reserve(candidates.size());
  for (const Candidate& candidate : candidates) {
    ordered.emplace_back(positionOf(candidate), candidate.entity);
  }
  std::sort(ordered.begin(), ordered.end());
  return ordered;
}

// --- Following the list

void EntityIndex::rebuild(EntityList list) {
  *this = EntityIndex();
  list_ = std::move(list);
  if (list_.empty()) return;
  slots_.reserve(list_.size() + list_.size() / 16);
  table_.assign(std::bit_ceil(list_.size() + list_.size() / 2 + 16), kNone);
  for (std::size_t node = 0; node < list_.root_->nodes.size(); ++node) placeChunks(node);
  for (const auto& node : list_.root_->nodes) {
    for (std::size_t chunk = 0; chunk < node->chunks.size(); ++chunk) {
      const std::uint32_t number = chunkNumber(node->identities[chunk]);
      std::uint32_t offset = 0;
      for (const SketchEntity& entity : *node->chunks[chunk]) {
        if (slotOf(entityID(entity)) != kNone) {
          EntityList kept = std::move(list_);
          *this = EntityIndex();
          list_ = std::move(kept);
          hasDuplicates_ = true;
          return;
        }
        addSlot(entity, (number << kOffsetBits) | (offset++ & kOffsetMask));
      }
    }
  }
}

// Records where the chunks are now.
void EntityIndex::followChunks(const EntityList& before) {
  const auto& now = list_.root_->nodes;
  const auto& old = before.root_->nodes;
  if (now.size() == old.size()) {
    for (std::size_t node = 0; node < now.size(); ++node) {
      if (now[node] != old[node] && now[node]->identities != old[node]->identities) {
        for (const std::uint64_t identity : old[node]->identities)
          chunks_[chunkNumber(identity)].node = kNone;
      }
    }
    for (std::size_t node = 0; node < now.size(); ++node) {
      if (now[node] != old[node] && now[node]->identities != old[node]->identities) placeChunks(node);
    }
  } else {
    for (ChunkPlace& place : chunks_) place.node = kNone;
    for (std::size_t node = 0; node < now.size(); ++node) placeChunks(node);
  }
}

void EntityIndex::placeChunks(std::size_t node) {
  const auto& identities = list_.root_->nodes[node]->identities;
  for (std::size_t chunk = 0; chunk < identities.size(); ++chunk) {
    ChunkPlace& place = chunks_[chunkNumber(identities[chunk])];
    place.node = static_cast<std::uint32_t>(node);
    place.chunk = static_cast<std::uint32_t>(chunk);
  }
}

std::uint32_t EntityIndex::chunkNumber(std::uint64_t identity) {
  const auto [row, isNew] = chunkNumbers_.try_emplace(identity, 0);
  if (!isNew) return row->second;
  row->second = static_cast<std::uint32_t>(chunks_.size());
  chunks_.push_back({identity, kNone, 0});
  return row->second;
}

// The position and the entity of a slot. The offset is a hint that edits of its chunk may have moved.
std::pair<std::size_t, const SketchEntity*> EntityIndex::locate(const Slot& slot) const {
  const ChunkPlace& place = chunks_[slot.place >> kOffsetBits];
  if (place.node == kNone) return {list_.size(), nullptr};
  const auto& root = *list_.root_;
  const auto& node = *root.nodes[place.node];
  const auto& chunk = *node.chunks[place.chunk];
  std::size_t offset = slot.place & kOffsetMask;
  if (offset >= chunk.size() || entityID(chunk[offset]) != slot.id) {
    offset = 0;
    while (offset < chunk.size() && entityID(chunk[offset]) != slot.id) ++offset;
    if (offset == chunk.size()) return {list_.size(), nullptr};
  }
  const std::size_t nodeStart = place.node == 0 ? 0 : root.ends[place.node - 1];
  const std::size_t chunkStart = place.chunk == 0 ? 0 : node.ends[place.chunk - 1];
  return {nodeStart + chunkStart + offset, &chunk[offset]};
}

// --- Slots, by identifier

std::uint32_t EntityIndex::slotOf(const UUID& id) const {
  if (table_.empty()) return kNone;
  const std::size_t mask = table_.size() - 1;
  for (std::size_t at = std::hash<UUID>()(id) & mask; table_[at] != kNone; at = (at + 1) & mask) {
    if (slots_[table_[at]].id == id) return table_[at];
  }
  return kNone;
}

void EntityIndex::addSlot(const SketchEntity& entity, std::uint32_t place) {
  if ((used_ + 1) * 4 > table_.size() * 3) growTable();
  std::uint32_t number = freeSlot_;
  if (number != kNone) {
    freeSlot_ = slots_[number].next;
  } else {
    number = static_cast<std::uint32_t>(slots_.size());
    if (slots_.size() == slots_.capacity()) slots_.reserve(slots_.size() + slots_.size() / 4 + 64);
    slots_.emplace_back();
  }
  Slot& slot = slots_[number];
  slot.id = entityID(entity);
  slot.place = place;
  setBounds(slot, entity);
  const std::size_t mask = table_.size() - 1;
  std::size_t at = std::hash<UUID>()(slot.id) & mask;
  while (table_[at] != kNone) at = (at + 1) & mask;
  table_[at] = number;
  ++used_;
  link(number);
}

void EntityIndex::removeSlot(const UUID& id) {
  if (table_.empty()) return;
  const std::size_t mask = table_.size() - 1;
  std::size_t at = std::hash<UUID>()(id) & mask;
  while (table_[at] != kNone && slots_[table_[at]].id != id) at = (at + 1) & mask;
  const std::uint32_t number = table_[at];
  if (number == kNone) return;
  unlink(number);
  slots_[number].next = freeSlot_;
  freeSlot_ = number;
  --used_;
  // The gap is closed by later slots that may take it, so that no probe ends too early.
  std::size_t gap = at;
  for (std::size_t next = (gap + 1) & mask; table_[next] != kNone; next = (next + 1) & mask) {
    const std::size_t home = std::hash<UUID>()(slots_[table_[next]].id) & mask;
    if (((next - home) & mask) >= ((next - gap) & mask)) {
      table_[gap] = table_[next];
      gap = next;
    }
  }
  table_[gap] = kNone;
}

void EntityIndex::growTable() {
  std::vector<std::uint32_t> old = std::move(table_);
  table_.assign(std::max<std::size_t>(64, old.size() * 2), kNone);
  const std::size_t mask = table_.size() - 1;
  for (const std::uint32_t number : old) {
    if (number == kNone) continue;
    std::size_t at = std::hash<UUID>()(slots_[number].id) & mask;
    while (table_[at] != kNone) at = (at + 1) & mask;
    table_[at] = number;
  }
}

void EntityIndex::setBounds(Slot& slot, const SketchEntity& entity) {
  const SketchBox box = entityBounds(entity);
  // Crossing tests let a segment reach a millionth of its length beyond its ends; so does its box.
  const double slack = 2e-6 * std::max(box.width(), box.height());
  slot.minX = roundedDown(box.minX - slack);
  slot.minY = roundedDown(box.minY - slack);
  slot.maxX = roundedUp(box.maxX + slack);
  slot.maxY = roundedUp(box.maxY + slack);
}

// --- Cells, by place

EntityIndex::CellPlace EntityIndex::cellOf(const Slot& slot) {
  const double width = static_cast<double>(slot.maxX) - static_cast<double>(slot.minX);
  const double height = static_cast<double>(slot.maxY) - static_cast<double>(slot.minY);
  const double extent = std::max(width, height);
  const double middleX = (static_cast<double>(slot.minX) + static_cast<double>(slot.maxX)) / 2;
  const double middleY = (static_cast<double>(slot.minY) + static_cast<double>(slot.maxY)) / 2;
  if (!(std::isfinite(extent) && std::isfinite(middleX) && std::isfinite(middleY))) return {};
  int level = 0;
  while (level < kLevels && cellSize(level) < extent) ++level;
  if (level == kLevels) return {};
  const double x = std::floor(middleX / cellSize(level));
  const double y = std::floor(middleY / cellSize(level));
  if (std::fabs(x) >= kLargestCellIndex || std::fabs(y) >= kLargestCellIndex) return {};
  return {level, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)};
}

// Level and both indices, packed.
std::uint64_t EntityIndex::keyOf(const CellPlace& place) {
  constexpr std::uint64_t kIndexMask = (1U << 29) - 1;
  return (static_cast<std::uint64_t>(place.level) << 58) |
         ((static_cast<std::uint64_t>(place.x) & kIndexMask) << 29) |
         (static_cast<std::uint64_t>(place.y) & kIndexMask);
}

std::uint64_t EntityIndex::keyOfCell(std::size_t cell) const { return keyOf(cellOf(slots_[cells_[cell]])); }

// The place of the cell in the table, or the free place that it would take.
std::size_t EntityIndex::findCell(std::uint64_t key) const {
  const std::size_t mask = cells_.size() - 1;
  std::size_t at = mixed(key) & mask;
  while (cells_[at] != kNone && keyOfCell(at) != key) at = (at + 1) & mask;
  return at;
}

void EntityIndex::growCells() {
  std::vector<std::uint32_t> old = std::move(cells_);
  cells_.assign(std::max<std::size_t>(64, old.size() * 2), kNone);
  for (const std::uint32_t first : old) {
    if (first != kNone) cells_[findCell(keyOf(cellOf(slots_[first])))] = first;
  }
}

void EntityIndex::closeGap(std::size_t gap) {
  const std::size_t mask = cells_.size() - 1;
  for (std::size_t next = (gap + 1) & mask; cells_[next] != kNone; next = (next + 1) & mask) {
    const std::size_t home = mixed(keyOfCell(next)) & mask;
    if (((next - home) & mask) >= ((next - gap) & mask)) {
      cells_[gap] = cells_[next];
      gap = next;
    }
  }
  cells_[gap] = kNone;
}

void EntityIndex::link(std::uint32_t slot) {
  const CellPlace place = cellOf(slots_[slot]);
  ++levelCounts_[static_cast<std::size_t>(place.level)];
  if (place.level == kOutsideLevel) {
    slots_[slot].next = outsideFirst_;
    outsideFirst_ = slot;
    return;
  }
  if ((usedCells_ + 1) * 4 > cells_.size() * 3) growCells();
  std::uint32_t& first = cells_[findCell(keyOf(place))];
  if (first == kNone) ++usedCells_;
  slots_[slot].next = first;
  first = slot;
}

void EntityIndex::unlink(std::uint32_t slot) {
  const CellPlace place = cellOf(slots_[slot]);
  --levelCounts_[static_cast<std::size_t>(place.level)];
  const bool isOutside = place.level == kOutsideLevel;
  const std::size_t cell = isOutside ? 0 : findCell(keyOf(place));
  std::uint32_t* link = isOutside ? &outsideFirst_ : &cells_[cell];
  while (*link != slot) link = &slots_[*link].next;
  *link = slots_[slot].next;
  if (!isOutside && cells_[cell] == kNone) {
    --usedCells_;
    closeGap(cell);
  }
}

}  // namespace ostrelon
