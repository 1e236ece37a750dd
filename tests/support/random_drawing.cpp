#include "support/random_drawing.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

namespace ostrelon::testing {
namespace {

constexpr unsigned kSeed = 20260101;
constexpr int kLong = 20;

bool isLong() { return std::getenv("OSTRELON_LONG") != nullptr; }  // NOLINT(concurrency-mt-unsafe)

}  // namespace

unsigned seed() {
  const char* asked = std::getenv("OSTRELON_SEED");  // NOLINT(concurrency-mt-unsafe)
  if (asked != nullptr) return static_cast<unsigned>(std::stoul(asked));
  return isLong() ? std::random_device{}() & 0x7FFFFFFF : kSeed;
}

int rounds(int usual) { return isLong() ? usual * kLong : usual; }

int RandomDrawing::below(int limit) {
  if (limit < 1) throw std::invalid_argument("There is no number below " + std::to_string(limit));
  return std::uniform_int_distribution<int>(0, limit - 1)(random);
}

double RandomDrawing::coordinate() {
  if (spread_ == Spread::meeting) return chance(4) ? number(-20, 20) : below(41) - 20;
  if (spread_ == Spread::scattered) return number(-500, 500);
  switch (below(12)) {
    case 0:
      return below(100'000);
    case 1:
      return -0.0;
    case 2:
      return std::numeric_limits<float>::denorm_min();
    case 3:
      return -std::numeric_limits<float>::max();
    case 4:
      return static_cast<float>(std::ldexp(number(-1, 1), below(250) - 130));
    default:
      return static_cast<float>(number(-1000, 1000));
  }
}

SketchPoint RandomDrawing::point() {
  const double x = coordinate();
  return {x, coordinate()};
}

double RandomDrawing::size() {
  if (spread_ == Spread::floats) return coordinate();
  return spread_ == Spread::meeting ? number(0.1, 15) : std::pow(4.0, number(-4, 5));
}

SketchEntity RandomDrawing::entity(const std::vector<WallSystemSpec>& systems, UUID id) {
  const SketchPoint at = point();
  const double reach = size();
  const auto beside = [&] {
    return spread_ == Spread::scattered ? at + SketchPoint{number(-reach, reach), number(-reach, reach)}
                                        : point();
  };
  const auto angle = [&] { return spread_ == Spread::floats ? coordinate() : number(-7, 7); };
  if (spread_ == Spread::scattered && chance(100)) {
    return CircleEntity{id, {1e300, std::nan("")}, std::numeric_limits<double>::infinity()};
  }
  switch (below(6)) {
    case 0:
      return LineEntity{id, at, beside()};
    case 1: {
      const bool isKnown = spread_ == Spread::floats || !chance(8);
      return WallEntity{id, at, beside(), isKnown ? oneOf(systems).id : UUID::random()};
    }
    case 2:
      return CircleEntity{id, at, reach};
    case 3: {
      const double start = angle();
      return ArcEntity{id, at, reach, start, angle()};
    }
    case 4:
      return RectangleEntity{
          id, at, {spread_ == Spread::meeting ? static_cast<double>(below(20) - 4) : -reach, size()}};
    default: {
      // A file holds no polygon of one or two vertices.
      int count = spread_ == Spread::meeting ? 1 + below(6) : 3 + below(8);
      if (spread_ == Spread::floats && chance(20)) count = 0;
      std::vector<SketchPoint> vertices;
      for (; count > 0; --count) vertices.push_back(beside());
      return PolygonEntity{id, PolygonVertices(std::move(vertices))};
    }
  }
}

std::vector<SketchEntity> RandomDrawing::entities(int count) {
  std::vector<SketchEntity> all;
  for (; count > 0; --count) all.push_back(entity());
  return all;
}

SketchDocumentV2 RandomDrawing::document(int mostEntities) {
  static const std::vector<std::string> texts{"",         "Plan",     "2×4 stud wall", "a\"b\\c\n\t\x01",
                                              "🏠 façade", "</script>"};
  SketchDocumentV2 document;
  document.name = oneOf(texts);
  document.grid = chance(2);
  document.vp = {std::ldexp(number(-1, 1), 40), number(-1, 1), number(0.1, 1.1)};
  for (int count = 1 + below(4); count > 0; --count) {
    document.ws.items.push_back({UUID::random(), oneOf(texts), coordinate(), coordinate(), oneOf(texts)});
  }
  document.ws.active = below(static_cast<int>(document.ws.items.size()));
  for (int count = below(mostEntities); count > 0; --count) document.e.append(entity(document.ws.items));
  if (chance(2)) document.undo = snapshots(document);
  if (chance(2)) document.plan = plan(document.e);
  if (document.undo && chance(2)) {
    document.undoTwins.resize(document.undo->size());
    for (UndoTwin& twin : document.undoTwins) {
      if (chance(4)) twin.plan = plan(document.e);
      if (chance(8)) twin.wallSystems = {{document.ws.items.front(), std::nullopt, 3}};
    }
    document.undoTwins.front().plan = Plan();  // a list of empty twins is none
  }
  if (chance(8)) document.mergedCheckpointIDs = {oneOf(texts), "cp-1"};
  return document;
}

Plan RandomDrawing::plan(const EntityList& entities) {
  Plan plan;
  plan.look = {chance(2), chance(2), chance(2), chance(4)};
  std::vector<Opening> openings;
  for (int count = below(4); count > 0; --count) {
    const bool isInWall = !entities.empty() && !chance(8);
    const auto at = static_cast<std::size_t>(below(std::max(1, static_cast<int>(entities.size()))));
    openings.push_back({UUID::random(), isInWall ? entityID(entities[at]) : UUID::random(),
                        static_cast<OpeningKind>(below(3)), number(-1, 9), number(0.1, 5)});
    if (openings.back().kind == OpeningKind::door && chance(2)) openings.back().hinge = DoorHinge::right;
  }
  plan.openings = std::move(openings);
  const auto place = [&] { return SketchPoint{number(-9, 9), number(-9, 9)}; };
  const auto held = [&] {
    DimensionEnd end{place(), static_cast<AnchorKind>(below(11)), UUID::random(), 0, chance(4)};
    if (chance(2)) end.corner = static_cast<std::uint32_t>(below(4));
    return end;
  };
  if (chance(2)) plan.roomNames = {RoomName{UUID::random(), place(), "Bath \"1\"", place()}};
  if (chance(2)) plan.roomDividers = {RoomDivider{UUID::random(), place(), place()}};
  if (chance(2)) {
    plan.dimensions = {
        Dimension{UUID::random(), held(), held(), static_cast<DimensionDirection>(below(3)), number(-3, 3)}};
  }
  if (chance(2)) plan.notes = {Note{UUID::random(), place(), "Verify\non site", {}}};
  if (chance(4)) plan.notes = {Note{UUID::random(), place(), {}, place()}};
  if (chance(4)) plan.sheet.north = number(-180, 180);
  if (chance(4)) plan.sheet.client = "M. Weber";
  if (chance(4)) plan.further = {R"("levels":[ {"n":"Bad \"1\""} ])", "\"a\\tb\":null"};
  return plan;
}

std::vector<EntityList> RandomDrawing::snapshots(const SketchDocumentV2& document) {
  std::vector<EntityList> lists{document.e};
  for (int count = below(20); count > 0; --count) {
    EntityList list = lists.back();
    const auto any = [&] {
      return static_cast<std::size_t>(below(std::max(1, static_cast<int>(list.size()))));
    };
    const auto fresh = [&] { return entity(document.ws.items); };
    switch (list.empty() ? 0 : below(4)) {
      case 0:
        list.append(fresh());
        break;
      case 1:
        list.remove(any());
        break;
      case 2:
        list.insert(any(), {fresh(), fresh()});
        break;
      default:
        list.replace(any(), fresh());
    }
    lists.push_back(std::move(list));
  }
  return lists;
}

}  // namespace ostrelon::testing
