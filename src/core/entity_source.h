// The entities of a drawing as a search by place sees them: a list, and perhaps an index over it.
//
// A search is written once, against this: it names a box that surely holds all that it could find,
// and is handed entities in list order. Over a bare list it is handed them all, over an index those
// near the box; since what lies outside the box cannot count, the answer is the same.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "core/entity_bounds.h"
#include "core/entity_index.h"
#include "core/entity_list.h"

namespace ostrelon {

class EntitySource {
 public:
  /// The list or the index must outlive the source, which is made for one call.
  EntitySource(const EntityList& list) : list_(&list) {}  // NOLINT(google-explicit-constructor)
  EntitySource(const EntityIndex& index)                  // NOLINT(google-explicit-constructor)
      : list_(&index.list()), index_(&index) {}

  const EntityList& list() const { return *list_; }
  /// Known of an index alone.
  bool hasDistinctIDs() const { return index_ != nullptr && !index_->hasDuplicates(); }
  /// The first position of the identifier.
  std::optional<std::size_t> positionOf(const UUID& id) const {
    return index_ == nullptr ? list_->indexOf(id) : index_->positionOf(id);
  }

  /// Calls `visit(entity, position)` in list order for every entity whose bounds touch the box, and
  /// for others where that is cheaper. `position` is 0-based.
  template <class Visit>
  void visitNear(const SketchBox& box, Visit visit) const {
    std::vector<EntityIndex::Candidate> candidates;
    if (index_ == nullptr || !index_->candidatesIn(box, candidates)) {
      std::size_t position = 0;
      for (const SketchEntity& entity : *list_) visit(entity, position++);
      return;
    }
    for (const auto& [position, entity] : index_->inListOrder(candidates)) visit(*entity, position);
  }

 private:
  const EntityList* list_;
  const EntityIndex* index_ = nullptr;
};

}  // namespace ostrelon
