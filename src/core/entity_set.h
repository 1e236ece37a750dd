// A set of entities, by identifier: a selection, or what is dragged. Copies share everything.
//
// A few are kept by their identifiers, of whatever list. Many are kept by their positions in a list, of which
// the set keeps a copy that shares its storage: a bit each, and all of a list as no more than the list. So
// what is selected of a million costs 125 kB, and all of them nothing. Where the list that the set is over is
// at hand, `containsAt` is asked and no identifier hashed; `contains` answers for any identifier, and builds
// a table for a large set when it is first called.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <unordered_set>
#include <vector>

#include "core/entity_list.h"

namespace ostrelon {

class EntitySet {
 public:
  EntitySet() = default;
  EntitySet(std::initializer_list<UUID> ids) : EntitySet(std::unordered_set<UUID>(ids)) {}
  EntitySet(std::unordered_set<UUID> ids);  // NOLINT(google-explicit-constructor)
  // The identifiers of these lists must be distinct.
  static EntitySet allOf(const EntityList& list);
  /// The entities at these ascending positions.
  static EntitySet at(const EntityList& list, const std::vector<std::size_t>& positions);
  /// Those from position `first` on.
  static EntitySet from(const EntityList& list, std::size_t first);

  std::size_t size() const { return few_ ? few_->size() : places_ ? places_->count : 0; }
  bool empty() const { return size() == 0; }
  bool contains(const UUID& id) const;

  void insert(const UUID& id);
  void erase(const UUID& id);
  void merge(const EntitySet& other);

  // --- Members by their positions

  /// Whether the members are known by their positions in this list.
  bool isOver(const EntityList& list) const { return places_ && places_->list.sharesAllStorage(list); }
  // Of a set that is over a list alone. Positions are below the list's size.
  bool containsAt(std::size_t position) const { return places_->contains(position); }
  void insertAt(std::size_t position);
  void eraseAt(std::size_t position);
  /// Ascending.
  std::vector<std::size_t> positions() const;
  /// Takes the set over to a later list and leaves out what is not in it. A set that is over no list stays as
  /// it is. Costs what changed between the lists, and a bit for each entity.
  void follow(const EntityList& list);

  /// The same object, or a copy of it: an answer without looking at the members.
  bool sharesAllStorage(const EntitySet& other) const {
    return few_ == other.few_ && places_ == other.places_;
  }
  friend bool operator==(const EntitySet& a, const EntitySet& b);

  /// Hands out identifiers: of a set that is over a list in its order, else in none.
  class Iterator;
  Iterator begin() const;
  Iterator end() const;

 private:
  using IDs = std::unordered_set<UUID>;
  using Bits = std::vector<std::uint64_t>;
  class Table;
  struct Places {
    EntityList list;
    Bits bits;  // empty: all of them
    std::size_t count = 0;
    std::shared_ptr<Table> table;  // of the list, for sets that share it

    bool isAll() const { return bits.empty(); }
    bool contains(std::size_t position) const {
      return bits.empty() || (bits[position / 64] >> (position % 64) & 1) != 0;
    }
  };

  static EntitySet over(const EntityList& list, Bits bits, std::shared_ptr<Table> table = nullptr);
  Bits ownBits() const;
  IDs toIDs() const;

  // One of them at most; of neither the set is empty.
  std::shared_ptr<const IDs> few_;
  std::shared_ptr<const Places> places_;

  friend class Iterator;
};

class EntitySet::Iterator {
 public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = UUID;
  using difference_type = std::ptrdiff_t;
  using pointer = const UUID*;
  using reference = const UUID&;

  reference operator*() const { return places_ != nullptr ? entityID(*entity_) : *id_; }
  pointer operator->() const { return &**this; }
  Iterator& operator++() {
    if (places_ == nullptr) {
      ++id_;
    } else {
      ++entity_;
      ++position_;
      skip();
    }
    return *this;
  }
  Iterator operator++(int) {
    Iterator old = *this;
    ++*this;
    return old;
  }
  friend bool operator==(const Iterator& a, const Iterator& b) {
    return a.position_ == b.position_ && a.id_ == b.id_;
  }

 private:
  friend class EntitySet;
  Iterator() = default;
  void skip() {
    while (position_ < places_->list.size() && !places_->contains(position_)) {
      ++entity_;
      ++position_;
    }
  }

  const Places* places_ = nullptr;
  EntityList::Iterator entity_;
  std::size_t position_ = 0;
  IDs::const_iterator id_;
};

}  // namespace ostrelon
