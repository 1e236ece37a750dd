#include <algorithm>
#include <utility>

#include "documents/entity_rows.h"
#include "documents/json_reading.h"
#include "documents/plan_rows.h"
#include "documents/sketch_document_io.h"
#include "documents/verbose_document_reader.h"

namespace ostrelon::SketchDocumentIO {
namespace {

using Value = JsonReading::Value;

constexpr std::int64_t kCompactFormat = 2;
constexpr std::int64_t kVerboseFormat = 1;

// Chunks of a list that has undo snapshots beside it are kept small enough that each of the stored
// steps, which costs a chunk, costs little of the whole.
constexpr std::size_t kUsualChunk = 64;
constexpr std::size_t kSmallestChunk = 16;
constexpr std::size_t kWantedChunks = 400;
constexpr std::size_t kUsualRowBytes = 70;

// What the first look at a file finds: its format, and how the second is best done.
struct VersionPeek {
  std::optional<std::int64_t> v;
  std::optional<std::int64_t> formatVersion;
  bool hasUndo = false;
  bool readsInOrder = true;  // one "ws", and no rows before it
  std::size_t entityBytes = 0;
};

VersionPeek peek(JsonReading& reading) {
  VersionPeek found;
  bool sawRows = false;
  bool sawSystems = false;
  const char* entitiesStart = nullptr;
  const JsonPlace place;
  reading.forEachField(reading.root(), [&](std::string_view key, Value& value) {
    const char* start = JsonReading::start(value);
    if (entitiesStart != nullptr) {
      found.entityBytes = static_cast<std::size_t>(start - entitiesStart);
      entitiesStart = nullptr;
    }
    if (key == "v") {
      found.v = reading.optionalInteger(value, place.under("v"));
    } else if (key == "formatVersion") {
      found.formatVersion = reading.optionalInteger(value, place.under("formatVersion"));
    } else if (key == "ws") {
      if (sawRows || sawSystems) found.readsInOrder = false;
      sawSystems = true;
    } else if (key == "e") {
      sawRows = true;
      entitiesStart = start;
    } else if (key == "undo") {
      sawRows = true;
      found.hasUndo = *start == '[';
    }
  });
  if (entitiesStart != nullptr) found.entityBytes = reading.bytesFrom(entitiesStart);
  reading.expectEnd();
  return found;
}

WallSystemsV2 readWallSystems(JsonReading& reading, Value& value, const JsonPlace& place) {
  std::optional<std::int64_t> active;
  std::optional<std::vector<WallSystemSpec>> items;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "active") {
      active = reading.integer(field, here);
    } else if (key == "items") {
      items.emplace();
      JsonReading::Elements elements(reading, reading.array(field, here));
      Value element;
      while (elements.next(element)) {
        items->push_back(readWallSystem(reading, element, here.at(items->size())));
      }
    } else {
      reading.pass(field, here);
    }
  });
  if (!active) JsonReading::failMissing(place, "active");
  if (!items) JsonReading::failMissing(place, "items");
  return {*active, std::move(*items)};
}

// The wall systems alone, for a file that has them after the rows that need them.
WallSystemsV2 findWallSystems(JsonReading& reading) {
  WallSystemsV2 found;
  const JsonPlace place;
  reading.forEachField(reading.root(), [&](std::string_view key, Value& value) {
    if (key == "ws") found = readWallSystems(reading, value, place.under("ws"));
  });
  return found;
}

std::vector<double> readViewport(JsonReading& reading, Value& value, const JsonPlace& place) {
  std::vector<double> numbers;
  JsonReading::Elements elements(reading, reading.array(value, place));
  Value element;
  while (elements.next(element)) numbers.push_back(reading.number(element, place.at(numbers.size())));
  return numbers;
}

SketchDocumentV2 readCompactDocument(JsonReading& reading, const VersionPeek& shape) {
  SketchDocumentV2 document;
  if (!shape.readsInOrder) document.ws = findWallSystems(reading);
  const std::size_t rowsInChunk =
      shape.hasUndo
          ? std::clamp(shape.entityBytes / kUsualRowBytes / kWantedChunks, kSmallestChunk, kUsualChunk)
          : kUsualChunk;
  std::vector<UndoTwin> twins;  // the newest step's first
  EntityRows rows(reading, document.ws.items, rowsInChunk, shape.hasUndo);

  bool hasName = false;
  bool hasGrid = false;
  bool hasViewport = false;
  bool hasSystems = false;
  bool hasEntities = false;
  const JsonPlace root;
  reading.forEachField(reading.root(), [&](std::string_view key, Value& value) {
    const JsonPlace here = root.under(key);
    if (key == "name") {
      document.name = reading.text(value, here);
      hasName = true;
    } else if (key == "grid") {
      document.grid = reading.boolean(value, here);
      hasGrid = true;
    } else if (key == "vp") {
      document.vp = readViewport(reading, value, here);
      hasViewport = true;
    } else if (key == "ws") {
      WallSystemsV2 systems = readWallSystems(reading, value, here);
      if (shape.readsInOrder) document.ws = std::move(systems);
      hasSystems = true;
    } else if (key == "e") {
      document.e = rows.readList(value, here);
      hasEntities = true;
    } else if (key == "undo") {
      document.undo.reset();
      if (reading.isNull(value)) return;
      document.undo.emplace();
      JsonReading::Elements snapshots(reading, reading.array(value, here));
      Value snapshot;
      while (snapshots.next(snapshot)) {
        document.undo->push_back(rows.readList(snapshot, here.at(document.undo->size())));
      }
    } else if (key == "plan") {
      document.plan = {};
      twins.clear();
      if (reading.isNull(value)) return;
      ReadPlan read = readPlan(reading, value, here);
      document.plan = std::move(read.plan);
      twins = std::move(read.twins);
    } else if (key == "mergedCheckpointIDs") {
      document.mergedCheckpointIDs.clear();
      if (reading.isNull(value)) return;
      JsonReading::Elements ids(reading, reading.array(value, here));
      Value id;
      while (ids.next(id)) {
        document.mergedCheckpointIDs.push_back(
            reading.text(id, here.at(document.mergedCheckpointIDs.size())));
      }
    } else {
      reading.pass(value, here);
    }
  });
  if (!hasName) JsonReading::failMissing(root, "name");
  if (!hasGrid) JsonReading::failMissing(root, "grid");
  if (!hasViewport) JsonReading::failMissing(root, "vp");
  if (!hasSystems) JsonReading::failMissing(root, "ws");
  if (!hasEntities) JsonReading::failMissing(root, "e");
  reading.expectEnd();
  const std::size_t steps = document.undo ? document.undo->size() : 0;
  twins.resize(std::min(twins.size(), steps));
  if (!twins.empty()) {
    document.undoTwins.resize(steps);
    std::move(twins.begin(), twins.end(), document.undoTwins.rbegin());
  }
  return document;
}

}  // namespace

LoadedSketchDocument decodeDocument(std::string bytes) {
  JsonReading reading(bytes);
  const VersionPeek shape = peek(reading);
  if (shape.v == kCompactFormat) return {readCompactDocument(reading, shape)};
  if (shape.formatVersion == kVerboseFormat) return {readVerboseDocument(reading)};
  throw DocumentFormatError("Unsupported .ostrel format version.");
}

}  // namespace ostrelon::SketchDocumentIO
