// The rows of the list of entities, as a value: each entity, and beneath each wall the items of the plan in
// it, unless they are folded away; behind them all the items that stand by themselves. Finding a row costs
// the logarithm of the number of walls with items.
#pragma once

#include <unordered_set>
#include <vector>

#include "core/plan_items.h"
#include "core/sketch.h"

namespace ostrelon {

class ListedRows {
 public:
  /// What a row stands for.
  struct Row {
    /// Of the entity, or of the wall that the item is in; for an item that stands by itself, behind the last.
    std::size_t position = 0;
    const PlanItem* item = nullptr;  ///< null for an entity's own row
    bool hasItems = false;           ///< of an entity's own row: there are some beneath it
    bool isFolded = false;           ///< … and they are not shown
  };

  ListedRows() = default;
  /// `folded`: the walls whose items are not shown.
  ListedRows(const Sketch& sketch, const std::unordered_set<UUID>& folded);

  const EntityList& entities() const { return entities_; }
  bool hasItems() const { return !groups_.empty(); }
  int count() const { return rowOf(entities_.size()) + static_cast<int>(free_.size()); }
  Row at(int row) const;
  /// The row of the entity at this position, or the one behind all of them for the end of the list.
  int rowOf(std::size_t position) const;
  /// The row of the item, or of its wall while it is folded; -1 for an unknown one.
  int rowOfItem(const UUID& id) const;
  /// The identifier of what the row stands for.
  const UUID& key(int row) const;

  /// The rows in which two lists differ: those that both begin and end with are left out.
  struct Difference {
    int from = 0;     ///< rows before it are the same ones
    int removed = 0;  ///< of the earlier list
    int added = 0;    ///< of the later list
    /// Rows of the later list that are the same ones as before and may show something else.
    int changedFrom = 0;
    int changedEnd = 0;  ///< behind the last of them
  };
  Difference differenceTo(const ListedRows& later) const;

 private:
  // The items in one wall, in their order along it.
  struct Group {
    std::size_t position = 0;  // of the wall
    int row = 0;               // likewise, in the list of rows
    bool isFolded = false;
    std::vector<PlanItem> items;

    int shown() const { return isFolded ? 0 : static_cast<int>(items.size()); }
    bool looksLike(const Group& other) const { return isFolded == other.isFolded && items == other.items; }
  };

  EntityList entities_;
  std::vector<Group> groups_;
  std::vector<PlanItem> free_;
};

}  // namespace ostrelon
