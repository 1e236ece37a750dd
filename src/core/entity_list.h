// The ordered list of entities of a document, as a value with shared storage.
//
// The list is a tree of fixed depth: a root of nodes, a node of chunks, a chunk of entities (about 64, split
// at twice that, merged when small). Copying a list shares everything, so an undo snapshot costs nothing that
// grows with the list; an edit copies one chunk, one node and the root, and nothing at all where no other
// list holds them. Equality and differences skip shared storage.
//
// Indices are 0-based. References stay valid until the list that they came from changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/sketch_entity.h"

namespace ostrelon {

/// One place where a list differs from an earlier one.
struct EntitySplice;

class EntityList {
 public:
  using Chunk = std::vector<SketchEntity>;

  EntityList() = default;
  EntityList(std::initializer_list<SketchEntity> entities)
      : EntityList(std::vector<SketchEntity>(entities)) {}
  explicit EntityList(std::vector<SketchEntity> entities);

  std::size_t size() const { return root_ ? root_->size() : 0; }
  bool empty() const { return size() == 0; }
  /// `index` must be below `size()`.
  const SketchEntity& operator[](std::size_t index) const;
  const SketchEntity& front() const { return (*this)[0]; }
  const SketchEntity& back() const { return (*this)[size() - 1]; }

  /// The first position of the identifier. Linear.
  std::optional<std::size_t> indexOf(const UUID& id) const;
  /// The entity with the identifier, or null. Linear.
  const SketchEntity* find(const UUID& id) const;

  void append(SketchEntity entity);
  void append(std::vector<SketchEntity> entities);
  void replace(std::size_t index, SketchEntity entity);
  /// Replaces the entities at these ascending positions by others with the same identifiers. False, with
  /// nothing changed, where a position is beyond the list or holds another identifier.
  bool replaceAll(const std::vector<std::size_t>& ascendingIndices,
                  const std::vector<SketchEntity>& entities);
  /// `index` may equal `size()`.
  void insert(std::size_t index, std::vector<SketchEntity> entities);
  void remove(std::size_t index);
  /// Removes the entities at these ascending positions; chunks without one stay shared.
  void removeAll(const std::vector<std::size_t>& ascendingIndices);
  /// Removes every entity whose identifier is in the set; linear in the list.
  void removeAll(const std::unordered_set<UUID>& ids);
  void clear() { root_.reset(); }

  /// How many entities lie in chunks that the other list does not share: at least as many as differ. Costs
  /// little for any list.
  std::size_t unsharedSize(const EntityList& other) const;

  /// Exact equality entity by entity.
  friend bool operator==(const EntityList& a, const EntityList& b);
  /// True when both share all their storage (and so are equal).
  bool sharesAllStorage(const EntityList& other) const { return root_ == other.root_; }

  class Iterator;
  Iterator begin() const;
  Iterator end() const;
  /// From this position on; the end for the list's size.
  Iterator iteratorAt(std::size_t index) const;
  auto rbegin() const;
  auto rend() const;

  /// The chunks in order; two lists that share a chunk give the same address.
  std::vector<std::shared_ptr<const Chunk>> chunks() const;
  /// A list over chunks that other lists may share. Empty chunks are dropped. With a list of mostly the
  /// same chunks, whole nodes of it are shared too.
  static EntityList fromChunks(std::vector<std::shared_ptr<const Chunk>> chunks);
  static EntityList fromChunks(std::vector<std::shared_ptr<const Chunk>> chunks, const EntityList& alike);

  /// Whether the identifiers are the same, place by place. Costs what differs; false as well where the
  /// storage is divided otherwise, which edits in place never do.
  bool hasSameIDs(const EntityList& other) const;
  /// How many equal entities two lists begin with, and end with. What they share is skipped.
  std::size_t commonStart(const EntityList& other) const;
  std::size_t commonEnd(const EntityList& other) const;

  /// What differs between two lists, by identifier.
  struct Difference {
    std::vector<SketchEntity> removed;                           ///< only in the old list
    std::vector<SketchEntity> added;                             ///< only in the new list
    std::vector<std::pair<SketchEntity, SketchEntity>> changed;  ///< old and new value
    bool empty() const { return removed.empty() && added.empty() && changed.empty(); }
  };
  /// Costs what changed, not what the lists hold. A change of order alone is no difference.
  static Difference difference(const EntityList& before, const EntityList& after);

  /// What makes the one list the other, place by place, ascending and without overlap. Exact in values
  /// and order; costs what changed, not what the lists hold.
  static std::vector<EntitySplice> splices(const EntityList& before, const EntityList& after);
  /// Makes the list what `splices` found it had become. False, with nothing changed, where they do not
  /// fit the list.
  bool apply(const std::vector<EntitySplice>& splices);

 private:
  using ChunkPointer = std::shared_ptr<Chunk>;
  struct Node {
    std::vector<ChunkPointer> chunks;
    // A number that a chunk keeps through all its edits, also where copies of the list part ways;
    // it lets a change be found by comparing a chunk with its own earlier state.
    std::vector<std::uint64_t> identities;
    std::vector<std::size_t> ends;  // ends[i]: entities of this node up to and with chunk i
    std::size_t size() const { return ends.empty() ? 0 : ends.back(); }
  };
  using NodePointer = std::shared_ptr<Node>;
  struct Root {
    std::vector<NodePointer> nodes;
    std::vector<std::size_t> ends;
    std::size_t size() const { return ends.empty() ? 0 : ends.back(); }
  };
  struct Location {
    std::size_t node = 0;
    std::size_t chunk = 0;
    std::size_t offset = 0;
  };

  Location locate(std::size_t index) const;
  Root& ownRoot();
  Node& ownNode(std::size_t node);
  Chunk& ownChunk(std::size_t node, std::size_t chunk);
  void settle(std::size_t node, std::size_t chunk);
  static void recount(Node& node);
  static void recount(Root& root);
  static void addChunk(Node& node, ChunkPointer chunk, std::uint64_t identity = freshIdentity());
  static std::uint64_t freshIdentity();
  Node& nodeWithRoom();

  // One side of a comparison: a chunk that the other list does not hold.
  struct LooseChunk {
    std::uint64_t identity = 0;
    const Chunk* chunk = nullptr;
  };
  static std::vector<LooseChunk> looseChunks(const EntityList& list, const EntityList& other);

  // The steps between two lists, reported one by one. `placed` reports every entity whose chunk has another
  // identity than before, new ones included.
  struct Steps {
    std::function<void(const SketchEntity&)> removed;
    std::function<void(const SketchEntity&)> added;
    std::function<void(const SketchEntity& before, const SketchEntity& after)> changed;
    std::function<void(const SketchEntity&, std::uint64_t identity, std::size_t offset)> placed;
  };
  static void compare(const EntityList& before, const EntityList& after, const Steps& steps);

  std::shared_ptr<Root> root_;

  friend class Iterator;
  friend class EntityIndex;
};

struct EntitySplice {
  std::size_t at = 0;               ///< the position in the earlier list
  std::size_t removed = 0;          ///< so many of the earlier list go from there on,
  std::vector<SketchEntity> added;  ///< and these come in their place
  friend bool operator==(const EntitySplice&, const EntitySplice&) = default;
};

/// Walks the list in either direction, a chunk at a time.
class EntityList::Iterator {
 public:
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = SketchEntity;
  using difference_type = std::ptrdiff_t;
  using pointer = const SketchEntity*;
  using reference = const SketchEntity&;

  Iterator() = default;
  reference operator*() const { return *entity_; }
  pointer operator->() const { return entity_; }
  Iterator& operator++() {
    if (++entity_ == chunkEnd_) nextChunk();
    return *this;
  }
  Iterator operator++(int) {
    Iterator old = *this;
    ++*this;
    return old;
  }
  Iterator& operator--() {
    if (entity_ == chunkBegin_) previousChunk();
    --entity_;
    return *this;
  }
  Iterator operator--(int) {
    Iterator old = *this;
    --*this;
    return old;
  }
  /// The place counts beside the entity: a chunk may occur in a list twice.
  friend bool operator==(const Iterator& a, const Iterator& b) {
    return a.entity_ == b.entity_ && a.chunk_ == b.chunk_ && a.node_ == b.node_;
  }

 private:
  friend class EntityList;
  Iterator(const Root* root, bool atEnd);
  void nextChunk();
  void previousChunk();
  void enter(std::size_t node, std::size_t chunk);

  const Root* root_ = nullptr;
  std::size_t node_ = 0;
  std::size_t chunk_ = 0;
  const SketchEntity* chunkBegin_ = nullptr;
  const SketchEntity* chunkEnd_ = nullptr;
  const SketchEntity* entity_ = nullptr;
};

inline EntityList::Iterator EntityList::begin() const { return {root_.get(), false}; }
inline EntityList::Iterator EntityList::end() const { return {root_.get(), true}; }
inline auto EntityList::rbegin() const { return std::make_reverse_iterator(end()); }
inline auto EntityList::rend() const { return std::make_reverse_iterator(begin()); }

}  // namespace ostrelon
