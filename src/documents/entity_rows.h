// Reads the entity rows of a format 2 file: the document's own list and its undo snapshots.
//
// A snapshot repeats nearly all rows of the list before it, byte for byte. Rows are collected in
// chunks, and where the text of a known chunk comes again the chunk itself is taken again, so that
// snapshots cost little time to read and little memory to hold.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/entity_list.h"
#include "core/wall_system.h"
#include "documents/json_reading.h"

namespace ostrelon {

class EntityRows {
 public:
  /// `rowsInChunk`: small chunks share more of lists that differ in places. `sharesChunks`: whether
  /// more than one list will be read.
  EntityRows(JsonReading& reading, const std::vector<WallSystemSpec>& systems, std::size_t rowsInChunk,
             bool sharesChunks)
      : reading_(reading), systems_(systems), rowsInChunk_(rowsInChunk), sharesChunks_(sharesChunks) {}

  EntityList readList(JsonReading::Value& value, const JsonPlace& place);

 private:
  using Value = JsonReading::Value;
  using Chunk = EntityList::Chunk;
  using Elements = JsonReading::Elements;

  struct KnownChunk {
    std::string_view text;  // from the first row to the token after the last
    std::shared_ptr<const Chunk> chunk;
  };

  void remember(KnownChunk chunk);
  const KnownChunk* knownChunkAt(const char* rowStart) const;
  SketchEntity readRow(Value& row, const JsonPlace& place);
  PolygonVertices readVertices(Value& value, const JsonPlace& place, const UUID& id);
  UUID systemAt(std::int64_t index) const;

  JsonReading& reading_;
  const std::vector<WallSystemSpec>& systems_;
  std::size_t rowsInChunk_;
  bool sharesChunks_;
  /// By the beginning of the first row, which holds its identifier; the chunks that were read last, in the
  /// order of their reading.
  std::unordered_map<std::string_view, std::vector<KnownChunk>> knownChunks_;
  std::unordered_map<UUID, PolygonVertices> knownVertices_;
  EntityList lastList_;
};

}  // namespace ostrelon
