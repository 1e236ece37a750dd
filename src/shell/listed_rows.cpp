#include "shell/listed_rows.h"

#include <algorithm>
#include <unordered_map>

namespace ostrelon {

ListedRows::ListedRows(const Sketch& sketch, const std::unordered_set<UUID>& folded)
    : entities_(sketch.entities()) {
  std::vector<Opening> openings = sketch.drawing->plan.openings.list();
  std::stable_sort(openings.begin(), openings.end(),
                   [](const Opening& a, const Opening& b) { return a.distance < b.distance; });
  std::unordered_map<UUID, std::size_t> ofWall;
  for (const Opening& opening : openings) {
    const auto position = sketch.positionOf(opening.wallID);
    if (!position) continue;
    const auto [found, isNew] = ofWall.emplace(opening.wallID, groups_.size());
    if (isNew) groups_.push_back({*position, 0, folded.contains(opening.wallID), {}});
    groups_[found->second].items.emplace_back(opening);
  }
  std::sort(groups_.begin(), groups_.end(),
            [](const Group& a, const Group& b) { return a.position < b.position; });
  for (PlanItem& item : planItems(sketch.drawing->plan)) {
    if (!wallOf(item)) free_.push_back(std::move(item));
  }
  int above = 0;
  for (Group& group : groups_) {
    group.row = static_cast<int>(group.position) + above;
    above += group.shown();
  }
}

ListedRows::Row ListedRows::at(int row) const {
  const int behind = row - rowOf(entities_.size());
  if (behind >= 0 && behind < static_cast<int>(free_.size())) {
    return {entities_.size(), &free_[static_cast<std::size_t>(behind)], false, false};
  }
  const auto after = std::upper_bound(groups_.begin(), groups_.end(), row,
                                      [](int wanted, const Group& group) { return wanted < group.row; });
  if (after == groups_.begin()) return {static_cast<std::size_t>(row), nullptr, false, false};
  const Group& group = *(after - 1);
  const int beneath = row - group.row;
  if (beneath == 0) return {group.position, nullptr, true, group.isFolded};
  if (beneath <= group.shown()) {
    return {group.position, &group.items[static_cast<std::size_t>(beneath) - 1], false, false};
  }
  return {group.position + static_cast<std::size_t>(beneath - group.shown()), nullptr, false, false};
}

int ListedRows::rowOf(std::size_t position) const {
  const auto after =
      std::lower_bound(groups_.begin(), groups_.end(), position,
                       [](const Group& group, std::size_t wanted) { return group.position < wanted; });
  if (after == groups_.begin()) return static_cast<int>(position);
  const Group& before = *(after - 1);
  return before.row + before.shown() + static_cast<int>(position - before.position);
}

int ListedRows::rowOfItem(const UUID& id) const {
  for (const Group& group : groups_) {
    for (std::size_t i = 0; i < group.items.size(); ++i) {
      if (planItemID(group.items[i]) != id) continue;
      return group.isFolded ? group.row : group.row + 1 + static_cast<int>(i);
    }
  }
  for (std::size_t i = 0; i < free_.size(); ++i) {
    if (planItemID(free_[i]) == id) return rowOf(entities_.size()) + static_cast<int>(i);
  }
  return -1;
}

const UUID& ListedRows::key(int row) const {
  const Row found = at(row);
  return found.item != nullptr ? planItemID(*found.item) : entityID(entities_[found.position]);
}

ListedRows::Difference ListedRows::differenceTo(const ListedRows& later) const {
  // First the entities and groups that both begin and end with, by the storage that they share.
  const std::size_t oldCount = entities_.size();
  const std::size_t newCount = later.entities_.size();
  const std::size_t most = std::min(oldCount, newCount);
  const bool areEntitiesSame = entities_.sharesAllStorage(later.entities_);
  const std::vector<Group>& a = groups_;
  const std::vector<Group>& b = later.groups_;

  std::size_t start = areEntitiesSame ? most : entities_.commonStart(later.entities_);
  std::size_t first = 0;
  while (first < a.size() && first < b.size() && a[first].position == b[first].position &&
         a[first].looksLike(b[first])) {
    ++first;
  }
  if (first < a.size()) start = std::min(start, a[first].position);
  if (first < b.size()) start = std::min(start, b[first].position);

  std::size_t end = areEntitiesSame ? most : entities_.commonEnd(later.entities_);
  std::size_t last = 0;
  while (last < a.size() && last < b.size()) {
    const Group& old = a[a.size() - 1 - last];
    const Group& now = b[b.size() - 1 - last];
    if (oldCount - old.position != newCount - now.position || !old.looksLike(now)) break;
    ++last;
  }
  if (last < a.size()) end = std::min(end, oldCount - 1 - a[a.size() - 1 - last].position);
  if (last < b.size()) end = std::min(end, newCount - 1 - b[b.size() - 1 - last].position);
  end = std::min(end, most - start);
  std::size_t lastFree = 0;
  while (lastFree < free_.size() && lastFree < later.free_.size() &&
         free_[free_.size() - 1 - lastFree] == later.free_[later.free_.size() - 1 - lastFree]) {
    ++lastFree;
  }
  const bool areFreeSame = lastFree == free_.size() && lastFree == later.free_.size();
  if (!areFreeSame) end = 0;

  // Then the rows of the stretch that is left.
  Difference difference;
  difference.changedFrom = later.rowOf(start);
  difference.changedEnd = areFreeSame ? later.rowOf(newCount - end) : later.count();
  const int oldRows = count();
  const int newRows = later.count();
  const int least = std::min(oldRows, newRows);
  int from = std::min(rowOf(start), least);
  const int sameBehind = areFreeSame ? oldRows - rowOf(oldCount - end) : static_cast<int>(lastFree);
  int behind = std::min(sameBehind, least - from);
  while (from < least - behind && key(from) == later.key(from)) ++from;
  while (behind < least - from && key(oldRows - 1 - behind) == later.key(newRows - 1 - behind)) ++behind;
  difference.from = from;
  difference.removed = oldRows - from - behind;
  difference.added = newRows - from - behind;
  return difference;
}

}  // namespace ostrelon
