// Finding entities fast: by identifier, and by place.
//
// The index follows one list through its edits. `update` costs what changed since the last call, not what the
// list holds, so it can be called before every look-up. It answers exactly what a walk over the list answers;
// order is always given by the positions in the list.
//
// Identifiers are found through a hash table of small slots, a position through the chunk that holds the
// entity. Places are found through grids of one level for each power of four in size: an entity is kept in a
// single cell, that of its middle, on the level whose cells are at least as wide as the entity, so a window
// asks for the cells it touches and one more all round. Entities that are not finite, or far beyond any
// drawing, are kept in a side list that every query looks through.
//
// Under 60 bytes an entity. Lists that hold an identifier twice are answered by a walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/entity_bounds.h"
#include "core/entity_list.h"

namespace ostrelon {

class EntityIndex {
 public:
  /// Follows the list. The index keeps a copy, which shares the list's storage.
  void update(const EntityList& list);
  const EntityList& list() const { return list_; }
  /// Two entities of the list have the same identifier; finding one by it then costs a walk.
  bool hasDuplicates() const { return hasDuplicates_; }

  /// The first position of the identifier.
  std::optional<std::size_t> positionOf(const UUID& id) const;
  /// The entity, or null. Valid until the next update.
  const SketchEntity* find(const UUID& id) const;

  /// What one place of the list holds.
  struct Candidate {
    const SketchEntity* entity = nullptr;
    std::uint32_t slot = 0;
  };
  /// All entities whose bounds touch the box (edges included), and perhaps a few beside them, in no
  /// order. Appends to `candidates`. False, with nothing appended, when a walk over the list would be
  /// cheaper or the box is not finite: the caller then walks.
  bool candidatesIn(const SketchBox& box, std::vector<Candidate>& candidates) const;
  /// The same, and false also where there would be more than `most` of them.
  bool candidatesIn(const SketchBox& box, std::vector<Candidate>& candidates, std::size_t most) const;
  /// The candidates with their positions, in the order of the list.
  std::vector<std::pair<std::size_t, const SketchEntity*>> inListOrder(
      const std::vector<Candidate>& candidates) const;
  /// The position of a candidate.
  std::size_t positionOf(const Candidate& candidate) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  static constexpr int kLevels = 24;
  static constexpr int kOutsideLevel = kLevels;

  // An entity as the index knows it.
  struct Slot {
    UUID id;
    std::uint32_t place = 0;  // the chunk's number and, as a hint, the offset in it
    std::uint32_t next = kNone;
    float minX = 0, minY = 0, maxX = 0, maxY = 0;  // rounded outwards
  };
  struct ChunkPlace {
    std::uint64_t identity = 0;
    std::uint32_t node = kNone;  // kNone: not in the list any more
    std::uint32_t chunk = 0;
  };
  struct CellPlace {
    int level = kOutsideLevel;
    std::int32_t x = 0;
    std::int32_t y = 0;
  };

  void rebuild(EntityList list);
  void followChunks(const EntityList& before);
  void placeChunks(std::size_t node);
  std::uint32_t chunkNumber(std::uint64_t identity);

  void addSlot(const SketchEntity& entity, std::uint32_t place);
  void removeSlot(const UUID& id);
  void setBounds(Slot& slot, const SketchEntity& entity);
  std::uint32_t slotOf(const UUID& id) const;
  std::pair<std::size_t, const SketchEntity*> locate(const Slot& slot) const;

  static CellPlace cellOf(const Slot& slot);
  static std::uint64_t keyOf(const CellPlace& place);
  std::uint64_t keyOfCell(std::size_t cell) const;
  std::size_t findCell(std::uint64_t key) const;
  void closeGap(std::size_t cell);
  void growCells();
  void link(std::uint32_t slot);
  void unlink(std::uint32_t slot);
  void growTable();

  EntityList list_;
  bool hasDuplicates_ = false;

  std::vector<Slot> slots_;
  std::uint32_t freeSlot_ = kNone;
  std::size_t used_ = 0;
  std::vector<std::uint32_t> table_;  // slot numbers by the hash of the identifier; kNone where empty

  std::vector<ChunkPlace> chunks_;
  std::unordered_map<std::uint64_t, std::uint32_t> chunkNumbers_;

  // The first slot of each cell, by the hash of the cell; the slot itself tells which cell it is.
  std::vector<std::uint32_t> cells_;
  std::size_t usedCells_ = 0;
  std::uint32_t outsideFirst_ = kNone;
  std::vector<std::uint32_t> levelCounts_ = std::vector<std::uint32_t>(kLevels + 1, 0);
};

}  // namespace ostrelon
