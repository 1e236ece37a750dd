#include "interaction/difference_layers.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "core/entity_bounds.h"

namespace ostrelon {
namespace {

// A part of the whole that is always near.
constexpr double kNearPart = 0.02;
// Cells are numbered by 32 bits.
constexpr double kMostCells = 1e9;

SketchBox coveredBox(const SketchEntity& entity, std::span<const WallSystemSpec> systems) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  const SketchBox box = entityBounds(entity);
  return wall == nullptr ? box : box.grown(std::abs(paintedWallThickness(*wall, systems)) / 2);
}

SketchBox unitedOrNot(const SketchBox& a, const SketchBox& b) {
  // A box that is not finite stays so.
  if (!isFinite(a)) return a;
  return isFinite(b) ? a.united(b) : b;
}

bool isNear(const SketchBox& a, const SketchBox& b, double reach) {
  return a.minX - b.maxX <= reach && b.minX - a.maxX <= reach && a.minY - b.maxY <= reach &&
         b.minY - a.maxY <= reach;
}

SketchBox boxAround(std::span<const SketchBox> boxes) {
  SketchBox whole = boxes.front();
  for (const SketchBox& box : boxes) whole = whole.united(box);
  return whole;
}

// Boxes on their way into groups: each belongs to the one at the end of its links.
class Gathering {
 public:
  std::size_t add(const SketchBox& box) {
    links_.push_back(links_.size());
    boxes_.push_back(box);
    return links_.size() - 1;
  }
  void add(std::size_t to, const SketchBox& box) { boxes_[to] = boxes_[to].united(box); }

  std::size_t root(std::size_t of) {
    while (links_[of] != of) of = links_[of] = links_[links_[of]];
    return of;
  }

  // Joins until nothing is near anything else. What is joined may come near to what was passed, hence the
  // repetition; each but the last joins something.
  void joinNear(double reach) {
    bool hasJoined = true;
    while (hasJoined) {
      hasJoined = false;
      std::vector<std::size_t> order;
      for (std::size_t i = 0; i < links_.size(); ++i) {
        if (links_[i] == i) order.push_back(i);
      }
      std::sort(order.begin(), order.end(),
                [this](std::size_t a, std::size_t b) { return boxes_[a].minX < boxes_[b].minX; });
      for (std::size_t i = 0; i < order.size(); ++i) {
        for (std::size_t j = i + 1; j < order.size(); ++j) {
          const std::size_t a = root(order[i]);
          // The box has grown to the right alone as far as this walk is concerned.
          if (boxes_[order[j]].minX - boxes_[a].maxX > reach) break;
          const std::size_t b = root(order[j]);
          if (a == b || !isNear(boxes_[a], boxes_[b], reach)) continue;
          links_[b] = a;
          boxes_[a] = boxes_[a].united(boxes_[b]);
          hasJoined = true;
        }
      }
    }
  }

 private:
  std::vector<std::size_t> links_;
  std::vector<SketchBox> boxes_;
};

double nearReach(const std::vector<DifferenceItem>& items) {
  std::vector<double> sizes;
  std::vector<SketchBox> boxes;
  for (const DifferenceItem& item : items) {
    if (!isFinite(item.box)) continue;
    sizes.push_back(std::max(item.box.width(), item.box.height()));
    boxes.push_back(item.box);
  }
  if (boxes.empty()) return 0;
  const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
  std::nth_element(sizes.begin(), middle, sizes.end());
  const SketchBox whole = boxAround(boxes);
  return std::max(*middle / 2, kNearPart * std::hypot(whole.width(), whole.height()));
}

void group(DifferenceLayers& layers) {
  std::vector<SketchBox> boxes;
  boxes.reserve(layers.items.size());
  for (const DifferenceItem& item : layers.items) boxes.push_back(item.box);
  const std::vector<std::size_t> numbers = groupedByNearness(boxes, nearReach(layers.items));
  std::vector<DifferenceGroup> groups;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] >= groups.size()) groups.resize(numbers[i] + 1);
    DifferenceGroup& group = groups[numbers[i]];
    group.box = group.items.empty() ? boxes[i] : unitedOrNot(group.box, boxes[i]);
    group.items.push_back(i);
  }
  // Read as a page; what has no place comes last.
  std::stable_sort(groups.begin(), groups.end(), [](const DifferenceGroup& a, const DifferenceGroup& b) {
    if (isFinite(a.box) != isFinite(b.box)) return isFinite(a.box);
    if (!isFinite(a.box)) return false;
    return std::pair(-a.box.maxY, a.box.minX) < std::pair(-b.box.maxY, b.box.minX);
  });
  for (std::size_t i = 0; i < groups.size(); ++i) {
    for (const std::size_t item : groups[i].items) layers.items[item].group = i;
  }
  layers.groups = std::move(groups);
}

}  // namespace

const std::vector<WallSystemSpec>& DifferenceLayers::systemsOf(DifferenceLayer layer) const {
  const bool isBefore = layer == DifferenceLayer::changedBefore || layer == DifferenceLayer::removed;
  return isBefore ? systemsBefore : systemsAfter;
}

const SketchEntity* DifferenceLayers::before(const DifferenceItem& item) const {
  switch (item.kind) {
    case DifferenceKind::removed:
      return &of(DifferenceLayer::removed)[item.position];
    case DifferenceKind::changed:
      return &of(DifferenceLayer::changedBefore)[item.position];
    case DifferenceKind::added:
      return nullptr;
  }
  return nullptr;
}

const SketchEntity* DifferenceLayers::after(const DifferenceItem& item) const {
  switch (item.kind) {
    case DifferenceKind::removed:
      return nullptr;
    case DifferenceKind::changed:
      return &of(DifferenceLayer::changedAfter)[item.position];
    case DifferenceKind::added:
      return &of(DifferenceLayer::added)[item.position];
  }
  return nullptr;
}

std::optional<SketchBox> DifferenceLayers::bounds() const {
  std::optional<SketchBox> whole;
  for (const DifferenceGroup& group : groups) {
    if (isFinite(group.box)) whole = whole ? whole->united(group.box) : group.box;
  }
  return whole;
}

std::vector<std::size_t> groupedByNearness(std::span<const SketchBox> boxes, double reach) {
  std::vector<SketchBox> finite;
  for (const SketchBox& box : boxes) {
    if (isFinite(box)) finite.push_back(box);
  }
  Gathering gathering;
  std::vector<std::size_t> members(boxes.size());
  if (!finite.empty()) {
    const SketchBox whole = boxAround(finite);
    // What has its middle in the same cell, as wide as the reach, is near each other in any case. Where the
    // reach is a part of the whole, this leaves some thousands of boxes at most.
    const bool hasCells = std::max(whole.width(), whole.height()) < reach * kMostCells;
    std::unordered_map<std::uint64_t, std::size_t> cells;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      if (!isFinite(boxes[i])) continue;
      if (!hasCells) {
        members[i] = gathering.add(boxes[i]);
        continue;
      }
      const SketchPoint middle = boxes[i].center() - SketchPoint{whole.minX, whole.minY};
      const auto column = static_cast<std::uint64_t>(middle.x / reach);
      const auto row = static_cast<std::uint64_t>(middle.y / reach);
      const auto [place, isNew] = cells.try_emplace(column << 32 | row, 0);
      if (isNew) {
        place->second = gathering.add(boxes[i]);
      } else {
        gathering.add(place->second, boxes[i]);
      }
      members[i] = place->second;
    }
    gathering.joinNear(reach);
  }
  // Numbered in the order of their first boxes.
  std::unordered_map<std::size_t, std::size_t> numbers;
  std::optional<std::size_t> placeless;
  std::vector<std::size_t> groups(boxes.size());
  std::size_t count = 0;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (!isFinite(boxes[i])) {
      if (!placeless) placeless = count++;
      groups[i] = *placeless;
      continue;
    }
    const auto [number, isNew] = numbers.try_emplace(gathering.root(members[i]), count);
    if (isNew) ++count;
    groups[i] = number->second;
  }
  return groups;
}

DifferenceLayers differenceLayers(const DrawingDifference& difference,
                                  std::vector<WallSystemSpec> systemsBefore,
                                  std::vector<WallSystemSpec> systemsAfter) {
  DifferenceLayers layers;
  layers.systemsBefore = std::move(systemsBefore);
  layers.systemsAfter = std::move(systemsAfter);
  std::unordered_set<UUID> ids;
  ids.reserve(difference.removed.size() + difference.changed.size() + difference.added.size());
  std::vector<SketchEntity> changedBefore;
  std::vector<SketchEntity> changedAfter;
  const auto add = [&](DifferenceKind kind, std::size_t position, const SketchBox& box,
                       const SketchEntity& entity) {
    layers.items.push_back({kind, position, 0, box});
    ids.insert(entityID(entity));
  };
  for (const SketchEntity& entity : difference.removed) {
    add(DifferenceKind::removed, layers.items.size(), coveredBox(entity, layers.systemsBefore), entity);
  }
  for (const auto& [old, now] : difference.changed) {
    const SketchBox box =
        unitedOrNot(coveredBox(old, layers.systemsBefore), coveredBox(now, layers.systemsAfter));
    add(DifferenceKind::changed, changedAfter.size(), box, now);
    ids.insert(entityID(old));
    changedBefore.push_back(old);
    changedAfter.push_back(now);
  }
  std::size_t position = 0;
  for (const SketchEntity& entity : difference.added) {
    add(DifferenceKind::added, position++, coveredBox(entity, layers.systemsAfter), entity);
  }
  const auto list = [&layers](DifferenceLayer layer) -> EntityList& {
    return layers.entities[static_cast<std::size_t>(layer)];
  };
  list(DifferenceLayer::removed) = EntityList(difference.removed);
  list(DifferenceLayer::changedBefore) = EntityList(std::move(changedBefore));
  list(DifferenceLayer::changedAfter) = EntityList(std::move(changedAfter));
  list(DifferenceLayer::added) = EntityList(difference.added);
  layers.ids = std::move(ids);
  group(layers);
  return layers;
}

}  // namespace ostrelon
