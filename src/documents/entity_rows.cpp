#include "documents/entity_rows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace ostrelon {
namespace {

// Tag and identifier: ["L","8E11…  The parser's padding makes so many bytes readable anywhere.
constexpr std::size_t kRowBeginning = 42;
constexpr std::size_t kSmallestPolygon = 6;   // numbers
constexpr std::size_t kLongestToldTag = 100;  // bytes; a longer one would only fill the transcript
// States of a chunk that are remembered: a step that changed it may have come between two that did not.
constexpr std::size_t kKnownStates = 4;

}  // namespace

EntityList EntityRows::readList(Value& value, const JsonPlace& place) {
  Elements rows(reading_, reading_.array(value, place));
  std::vector<std::shared_ptr<const Chunk>> chunks;
  std::shared_ptr<Chunk> building;
  const char* buildingStart = nullptr;
  const char* buildingEnd = nullptr;
  const bool hasKnownChunks = !knownChunks_.empty();
  std::size_t rowsToPass = 0;  // of a chunk that has been taken as a whole

  const auto finishChunk = [&] {
    if (!building) return;
    building->shrink_to_fit();
    if (sharesChunks_) {
      const std::string_view text(buildingStart, static_cast<std::size_t>(buildingEnd - buildingStart));
      remember({text, building});
    }
    chunks.push_back(std::exchange(building, nullptr));
  };

  Value row;
  for (std::size_t index = 0; rows.next(row); ++index) {
    if (rowsToPass > 0) {
      --rowsToPass;
      continue;
    }
    const char* rowStart = JsonReading::start(row);
    if (hasKnownChunks) {
      if (const KnownChunk* known = knownChunkAt(rowStart)) {
        finishChunk();
        chunks.push_back(known->chunk);
        rowsToPass = known->chunk->size() - 1;
        continue;
      }
    }
    if (!building) {
      building = std::make_shared<Chunk>();
      building->reserve(rowsInChunk_);
      buildingStart = rowStart;
    }
    building->push_back(readRow(row, place.at(index)));
    if (sharesChunks_) buildingEnd = reading_.here();
    if (building->size() == rowsInChunk_) finishChunk();
  }
  finishChunk();
  if (!sharesChunks_) return EntityList::fromChunks(std::move(chunks));
  lastList_ = EntityList::fromChunks(std::move(chunks), lastList_);
  return lastList_;
}

void EntityRows::remember(KnownChunk chunk) {
  std::vector<KnownChunk>& alike = knownChunks_[{chunk.text.data(), kRowBeginning}];
  if (alike.size() == kKnownStates) alike.erase(alike.begin());
  alike.push_back(std::move(chunk));
}

const EntityRows::KnownChunk* EntityRows::knownChunkAt(const char* rowStart) const {
  const std::size_t bytesLeft = reading_.bytesFrom(rowStart);
  if (bytesLeft < kRowBeginning) return nullptr;
  const auto alike = knownChunks_.find({rowStart, kRowBeginning});
  if (alike == knownChunks_.end()) return nullptr;
  const auto isHere = [&](const KnownChunk& known) {
    return known.text.size() <= bytesLeft && std::memcmp(rowStart, known.text.data(), known.text.size()) == 0;
  };
  const auto found = std::find_if(alike->second.rbegin(), alike->second.rend(), isHere);
  return found == alike->second.rend() ? nullptr : &*found;
}

SketchEntity EntityRows::readRow(Value& row, const JsonPlace& place) {
  Elements elements(reading_, reading_.array(row, place));
  Value element;
  const auto next = [&] {
    if (!elements.next(element)) JsonReading::fail(place, "the row is too short");
  };
  const auto number = [&] {
    next();
    return reading_.number32(element, place);
  };
  const auto point = [&] {
    const double x = number();
    return SketchPoint{x, number()};
  };

  next();
  std::string tagText;
  const char tag = reading_.letter(element, place, tagText);
  if (std::string_view("LWCARP").find(tag) == std::string_view::npos || tag == '\0') {
    if (tag != '\0') tagText = tag;
    if (tagText.size() > kLongestToldTag) tagText = "(" + std::to_string(tagText.size()) + " bytes)";
    throw DocumentFormatError("Unknown entity tag: " + tagText);
  }
  next();
  const UUID id = reading_.uuid(element, place);

  SketchEntity entity;
  switch (tag) {
    case 'L': {
      const SketchPoint from = point();
      entity = LineEntity{id, from, point()};
      break;
    }
    case 'W': {
      const SketchPoint from = point();
      const SketchPoint to = point();
      next();
      entity = WallEntity{id, from, to, systemAt(reading_.integer(element, place))};
      break;
    }
    case 'C': {
      const SketchPoint center = point();
      entity = CircleEntity{id, center, number()};
      break;
    }
    case 'A': {
      const SketchPoint center = point();
      const double radius = number();
      const double startAngle = number();
      entity = ArcEntity{id, center, radius, startAngle, number()};
      break;
    }
    case 'R': {
      const SketchPoint origin = point();
      const double width = number();
      entity = RectangleEntity{id, origin, {width, number()}};
      break;
    }
    default:
      next();
      entity = PolygonEntity{id, readVertices(element, place, id)};
      break;
  }
  while (elements.next(element)) reading_.pass(element, place);
  return entity;
}

PolygonVertices EntityRows::readVertices(Value& value, const JsonPlace& place, const UUID& id) {
  Elements numbers(reading_, reading_.array(value, place));
  std::vector<SketchPoint> vertices;
  std::size_t count = 0;
  Value element;
  for (; numbers.next(element); ++count) {
    const double number = reading_.number32(element, place);
    if (count % 2 == 0) {
      vertices.push_back({number, 0});
    } else {
      vertices.back().y = number;
    }
  }
  // Half a vertex, or fewer than three, is a polygon that is there but has no shape.
  if (count % 2 != 0 || count < kSmallestPolygon) return {};
  if (!sharesChunks_) {
    vertices.shrink_to_fit();
    return vertices;
  }
  PolygonVertices& known = knownVertices_[id];
  if (known.list() != vertices) {
    vertices.shrink_to_fit();
    known = std::move(vertices);
  }
  return known;
}

UUID EntityRows::systemAt(std::int64_t index) const {
  if (systems_.empty()) return UUID::random();
  if (index < 0 || static_cast<std::uint64_t>(index) >= systems_.size()) return systems_.front().id;
  return systems_[static_cast<std::size_t>(index)].id;
}

}  // namespace ostrelon
