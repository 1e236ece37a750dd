#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <unordered_map>
#include <utility>

#include "core/undo_stack.h"
#include "documents/number_text.h"
#include "documents/plan_rows.h"
#include "documents/sketch_document_io.h"

namespace ostrelon::SketchDocumentIO {
namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 18;  // what is handed to the sink at once
constexpr std::size_t kLongestRow = 256;                  // of any entity but a polygon
constexpr std::size_t kLongestNumber = kLongestNumberText;
constexpr std::uint64_t kMostKeptOfUndo = std::uint64_t{1} << 25;

using SystemIndices = std::unordered_map<UUID, std::size_t>;

bool isWritable(double value) { return std::isfinite(static_cast<float>(value)); }
bool isWritable(SketchPoint point) { return isWritable(point.x) && isWritable(point.y); }

bool isWritable(const SketchEntity& entity) {
  return std::visit(
      Overloaded{
          [](const LineEntity& line) { return isWritable(line.from) && isWritable(line.to); },
          [](const WallEntity& wall) { return isWritable(wall.from) && isWritable(wall.to); },
          [](const CircleEntity& circle) { return isWritable(circle.center) && isWritable(circle.radius); },
          [](const ArcEntity& arc) {
            return isWritable(arc.center) && isWritable(arc.radius) && isWritable(arc.startAngle) &&
                   isWritable(arc.endAngle);
          },
          [](const RectangleEntity& rectangle) {
            return isWritable(rectangle.origin) && isWritable(rectangle.size.width) &&
                   isWritable(rectangle.size.height);
          },
          [](const PolygonEntity& polygon) {
            return std::all_of(polygon.vertices.begin(), polygon.vertices.end(),
                               [](SketchPoint vertex) { return isWritable(vertex); });
          },
      },
      entity);
}

// Writes into storage that the caller has reserved.
char* put(char* at, std::string_view text) { return std::copy(text.begin(), text.end(), at); }

char* putElement(char* at, double value) {
  *at++ = ',';
  return putNumber32(at, value);
}

char* putElement(char* at, SketchPoint point) { return putElement(putElement(at, point.x), point.y); }

constexpr std::array<std::array<char, 2>, 256> kHexadecimalPairs = [] {
  std::array<std::array<char, 2>, 256> pairs{};
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (std::size_t byte = 0; byte < pairs.size(); ++byte)
    pairs[byte] = {digits[byte >> 4], digits[byte & 15]};
  return pairs;
}();

char* putBytes(char* at, std::uint64_t value, int fromByte, int toByte) {
  for (int byte = fromByte; byte < toByte; ++byte) {
    const auto& pair = kHexadecimalPairs[(value >> (56 - 8 * byte)) & 0xFF];
    *at++ = pair[0];
    *at++ = pair[1];
  }
  return at;
}

char* putUUID(char* at, const UUID& id) {
  at = putBytes(at, id.high, 0, 4);
  *at++ = '-';
  at = putBytes(at, id.high, 4, 6);
  *at++ = '-';
  at = putBytes(at, id.high, 6, 8);
  *at++ = '-';
  at = putBytes(at, id.low, 0, 2);
  *at++ = '-';
  return putBytes(at, id.low, 2, 8);
}

char* putHead(char* at, char tag, const UUID& id) {
  at = put(at, "[\"");
  *at++ = tag;
  at = put(at, "\",\"");
  at = putUUID(at, id);
  *at++ = '"';
  return at;
}

// Appends the row of one entity, which must be writable.
void appendRow(std::string& text, const SketchEntity& entity, const SystemIndices& systems) {
  const auto* polygon = std::get_if<PolygonEntity>(&entity);
  const std::size_t vertices = polygon == nullptr ? 0 : polygon->vertices.size();
  const std::size_t start = text.size();
  text.resize(start + kLongestRow + 2 * kLongestNumber * vertices);
  char* at = text.data() + start;
  std::visit(
      Overloaded{
          [&](const LineEntity& line) {
            at = putElement(putElement(putHead(at, 'L', line.id), line.from), line.to);
          },
          [&](const WallEntity& wall) {
            at = putElement(putElement(putHead(at, 'W', wall.id), wall.from), wall.to);
            const auto system = systems.find(wall.systemSpecID);
            *at++ = ',';
            at = std::to_chars(at, at + kLongestNumber, system == systems.end() ? 0 : system->second).ptr;
          },
          [&](const CircleEntity& circle) {
            at = putElement(putElement(putHead(at, 'C', circle.id), circle.center), circle.radius);
          },
          [&](const ArcEntity& arc) {
            at = putElement(putElement(putHead(at, 'A', arc.id), arc.center), arc.radius);
            at = putElement(putElement(at, arc.startAngle), arc.endAngle);
          },
          [&](const RectangleEntity& rectangle) {
            at = putElement(putHead(at, 'R', rectangle.id), rectangle.origin);
            at = putElement(putElement(at, rectangle.size.width), rectangle.size.height);
          },
          [&](const PolygonEntity& shape) {
            at = put(putHead(at, 'P', shape.id), ",[");
            bool first = true;
            for (const SketchPoint& vertex : shape.vertices) {
              if (!first) *at++ = ',';
              first = false;
              at = putElement(putNumber32(at, vertex.x), vertex.y);
            }
            *at++ = ']';
          },
      },
      entity);
  *at++ = ']';
  text.resize(static_cast<std::size_t>(at - text.data()));
}

class DocumentWriter {
 public:
  DocumentWriter(const SketchDocumentV2& document, const Sink& sink, const FileLimits& limits)
      : document_(document), sink_(sink), limits_(limits) {
    for (std::size_t index = 0; index < document.ws.items.size(); ++index) {
      systems_.emplace(document.ws.items[index].id, index);
    }
    piece_.reserve(kPieceSize + kPieceSize / 4);
  }

  void write() {
    checkEntities();
    if (!isWritable(document_.plan)) {
      throw DocumentFormatError("A door, window or opening has a number that is not finite.");
    }
    append("{\"v\":2,\"name\":");
    append(quotedText(document_.name));
    append(document_.grid ? ",\"grid\":true" : ",\"grid\":false");
    writeViewport();
    writeWallSystems();
    std::size_t firstSnapshot = firstWritableSnapshot();
    const std::size_t snapshots = document_.undo ? document_.undo->size() : 0;
    for (std::size_t index = firstSnapshot; index < snapshots; ++index) {
      for (const auto& chunk : (*document_.undo)[index].chunks()) keptTexts_.try_emplace(chunk.get());
    }
    append(",\"e\":");
    writeEntities(document_.e);
    firstSnapshot = firstSnapshotThatFits(firstSnapshot);
    if (firstSnapshot < snapshots) {
      append(",\"undo\":[");
      for (std::size_t index = firstSnapshot; index < snapshots; ++index) {
        if (index > firstSnapshot) append(",");
        writeEntities((*document_.undo)[index]);
      }
      append("]");
    }
    writePlan(firstSnapshot);
    writeMergedCheckpoints();
    append("}");
    flush();
  }

 private:
  using Chunk = EntityList::Chunk;

  void checkEntities() {
    std::size_t index = 0;
    for (const SketchEntity& entity : document_.e) {
      if (!isWritable(entity)) {
        throw DocumentFormatError(entityLabel(entity, static_cast<int>(index) + 1) +
                                  " has a number that is not finite or too large for a document file.");
      }
      ++index;
    }
  }

  // Undo snapshots are written from here on: those before it, or one of them, cannot be, or are more
  // than a file keeps.
  std::size_t firstWritableSnapshot() const {
    if (!document_.undo) return 0;
    const std::vector<EntityList>& undo = *document_.undo;
    const std::size_t kept = std::min(undo.size(), kStoredUndoSnapshots);
    std::unordered_map<const Chunk*, bool> known;
    for (const auto& chunk : document_.e.chunks()) known.emplace(chunk.get(), true);
    const auto isWritableChunk = [&](const std::shared_ptr<const Chunk>& chunk) {
      const auto [found, isNew] = known.try_emplace(chunk.get(), true);
      if (isNew) {
        found->second = std::all_of(chunk->begin(), chunk->end(),
                                    [](const SketchEntity& entity) { return isWritable(entity); });
      }
      return found->second;
    };
    for (std::size_t index = undo.size(); index > undo.size() - kept; --index) {
      const auto chunks = undo[index - 1].chunks();
      if (!std::all_of(chunks.begin(), chunks.end(), isWritableChunk)) return index;
      if (index <= document_.undoTwins.size() && !isWritable(document_.undoTwins[index - 1])) return index;
    }
    return undo.size() - kept;
  }

  // The same of those that may be written: older ones would make the file larger than the limit. To be asked
  // when the entities have been written.
  std::size_t firstSnapshotThatFits(std::size_t firstWritable) {
    if (!document_.undo) return 0;
    constexpr std::string_view around = ",\"undo\":[]}";
    constexpr std::string_view aroundEach = "[],";
    std::uint64_t size = written_ + piece_.size() + around.size();
    for (std::size_t index = document_.undo->size(); index > firstWritable; --index) {
      size += aroundEach.size();
      for (const auto& chunk : (*document_.undo)[index - 1].chunks()) {
        size += sizeOf(*chunk) + 1;
        if (size > limits_.withUndo) break;
      }
      if (size > limits_.withUndo) return index;
    }
    return firstWritable;
  }

  // The bytes that a chunk of a snapshot takes.
  std::uint64_t sizeOf(const Chunk& chunk) {
    KeptText& kept = keptTexts_[&chunk];
    if (kept.size == 0 && !chunk.empty()) {
      scratch_.clear();
      appendRows(scratch_, chunk);
      kept.size = scratch_.size();
      if (keptOfUndo_ + kept.size <= kMostKeptOfUndo) {
        keptOfUndo_ += kept.size;
        kept.text = scratch_;
      }
    }
    return kept.size;
  }

  void writeViewport() {
    append(",\"vp\":[");
    bool first = true;
    for (const double number : document_.vp) {
      if (!std::isfinite(number)) {
        throw DocumentFormatError("The view has a number that is not finite; reset the view to save.");
      }
      std::array<char, kLongestNumber> text{};
      const char* end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
      if (!first) append(",");
      first = false;
      append({text.data(), static_cast<std::size_t>(end - text.data())});
    }
    append("]");
  }

  void writeWallSystems() {
    append(",\"ws\":{\"active\":");
    append(std::to_string(document_.ws.active));
    append(",\"items\":[");
    bool first = true;
    for (const WallSystemSpec& system : document_.ws.items) {
      if (!isWritable(system)) {
        throw DocumentFormatError("The wall system " + system.name +
                                  " has a number that is not finite or too large for a document file.");
      }
      if (!first) append(",");
      first = false;
      append(wallSystemText(system));
    }
    append("]}");
  }

  void writePlan(std::size_t firstSnapshot) {
    const std::vector<UndoTwin>& all = document_.undoTwins;
    const std::size_t first = std::min(firstSnapshot, all.size());
    const std::string text =
        planText(document_.plan, {all.begin() + static_cast<std::ptrdiff_t>(first), all.end()});
    if (!text.empty()) append(",\"plan\":" + text);
  }

  void writeMergedCheckpoints() {
    if (document_.mergedCheckpointIDs.empty()) return;
    std::string text;
    for (const std::string& id : document_.mergedCheckpointIDs) {
      text += (text.empty() ? "" : ",") + quotedText(id);
    }
    append(",\"mergedCheckpointIDs\":[" + text + "]");
  }

  // Snapshots share most of their chunks with the entities and with each other; what such a chunk
  // gave is kept and written again as it is.
  void writeEntities(const EntityList& entities) {
    append("[");
    bool first = true;
    for (const std::shared_ptr<const Chunk>& chunk : entities.chunks()) {
      if (chunk->empty()) continue;
      if (!first) append(",");
      first = false;
      const auto found = keptTexts_.find(chunk.get());
      if (found != keptTexts_.end() && !found->second.text.empty()) {
        append(found->second.text);
        continue;
      }
      const std::size_t start = piece_.size();
      appendRows(piece_, *chunk);
      if (found != keptTexts_.end() && found->second.size == 0) {
        found->second = {piece_.substr(start), piece_.size() - start};
      }
      flushIfFull();
    }
    append("]");
  }

  void appendRows(std::string& text, const Chunk& chunk) const {
    bool first = true;
    for (const SketchEntity& entity : chunk) {
      if (!first) text += ',';
      first = false;
      appendRow(text, entity, systems_);
    }
  }

  void append(std::string_view text) {
    piece_ += text;
    flushIfFull();
  }
  void flushIfFull() {
    if (piece_.size() >= kPieceSize) flush();
  }
  void flush() {
    written_ += piece_.size();
    if (written_ > limits_.whole) {
      throw DocumentFormatError(
          "The drawing is too large for a document file: it could not be opened again.");
    }
    sink_(piece_);
    piece_.clear();
  }

  // What a chunk of an undo snapshot gave; the text may be empty where it was too much to keep.
  struct KeptText {
    std::string text;
    std::uint64_t size = 0;
  };

  const SketchDocumentV2& document_;
  const Sink& sink_;
  const FileLimits limits_;
  SystemIndices systems_;
  std::unordered_map<const Chunk*, KeptText> keptTexts_;
  std::uint64_t keptOfUndo_ = 0;  // bytes kept of chunks that are in snapshots alone
  std::string scratch_;
  std::string piece_;
  std::uint64_t written_ = 0;
};

}  // namespace

void encodeDocument(const SketchDocumentV2& document, const Sink& sink, const FileLimits& limits) {
  DocumentWriter(document, sink, limits).write();
}

std::string encodeDocument(const SketchDocumentV2& document) {
  std::string text;
  encodeDocument(document, [&](std::string_view piece) { text += piece; });
  return text;
}

}  // namespace ostrelon::SketchDocumentIO
