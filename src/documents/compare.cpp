#include "documents/compare.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <unordered_set>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

bool sameNumber(double a, double b, NumberPrecision precision) {
  if (a == b) return true;
  if (precision == NumberPrecision::asInFiles && static_cast<float>(a) == static_cast<float>(b)) return true;
  return std::isnan(a) && std::isnan(b);
}

// Compares two records of one kind, all but their identifiers.
struct ShapeComparison {
  NumberPrecision precision;
  const WallSystemPairs& pairs;

  bool same(double a, double b) const { return sameNumber(a, b, precision); }
  bool same(SketchPoint a, SketchPoint b) const { return same(a.x, b.x) && same(a.y, b.y); }

  bool operator()(const LineEntity& a, const LineEntity& b) const {
    return same(a.from, b.from) && same(a.to, b.to);
  }
  bool operator()(const WallEntity& a, const WallEntity& b) const {
    if (!same(a.from, b.from) || !same(a.to, b.to)) return false;
    if (a.systemSpecID == b.systemSpecID) return true;
    const auto pair = pairs.find(b.systemSpecID);
    return pair != pairs.end() && pair->second == a.systemSpecID;
  }
  bool operator()(const CircleEntity& a, const CircleEntity& b) const {
    return same(a.center, b.center) && same(a.radius, b.radius);
  }
  bool operator()(const ArcEntity& a, const ArcEntity& b) const {
    return same(a.center, b.center) && same(a.radius, b.radius) && same(a.startAngle, b.startAngle) &&
           same(a.endAngle, b.endAngle);
  }
  bool operator()(const RectangleEntity& a, const RectangleEntity& b) const {
    return same(a.origin, b.origin) && same(a.size.width, b.size.width) && same(a.size.height, b.size.height);
  }
  bool operator()(const PolygonEntity& a, const PolygonEntity& b) const {
    return std::equal(a.vertices.begin(), a.vertices.end(), b.vertices.begin(), b.vertices.end(),
                      [&](SketchPoint p, SketchPoint q) { return same(p, q); });
  }
};

// --- Matching by identifier

using Entities = std::vector<const SketchEntity*>;

// Finds entities by a 64-bit key, each once, in the order in which they were added.
class TakeOnce {
 public:
  explicit TakeOnce(std::size_t count) : slots_(std::bit_ceil(count * 2 + 2)), mask_(slots_.size() - 1) {}

  void add(std::uint64_t key, const SketchEntity* entity) {
    std::size_t at = key & mask_;
    while (slots_[at].isUsed) at = (at + 1) & mask_;
    slots_[at] = {key, entity, true};
  }
  // The first entity of this key that `fits`, which is not given again; null when there is none.
  template <class Fits>
  const SketchEntity* take(std::uint64_t key, Fits fits) {
    for (std::size_t at = key & mask_; slots_[at].isUsed; at = (at + 1) & mask_) {
      Slot& slot = slots_[at];
      if (slot.entity != nullptr && slot.key == key && fits(*slot.entity)) {
        return std::exchange(slot.entity, nullptr);
      }
    }
    return nullptr;
  }
  // Those that nobody has taken, in no order.
  Entities rest() const {
    Entities left;
    for (const Slot& slot : slots_) {
      if (slot.entity != nullptr) left.push_back(slot.entity);
    }
    return left;
  }

 private:
  struct Slot {
    std::uint64_t key = 0;
    const SketchEntity* entity = nullptr;
    bool isUsed = false;
  };
  std::vector<Slot> slots_;
  std::size_t mask_;
};

std::uint64_t keyOf(const UUID& id) { return std::hash<UUID>()(id); }

// Walks both lists in step. What does not meet its like within the reach of a few steps is left for
// `matchByIdentifier`.
class StepByStep {
 public:
  template <class Matched>
  void walk(const EntityList& before, const EntityList& after, Matched matched) {
    // So many steps ahead are looked at in all, which keeps a list in another order from costing squares.
    budget_ = before.size() + after.size() + kLookAhead.back();
    auto a = before.begin();
    auto b = after.begin();
    while (a != before.end() && b != after.end()) {
      if (entityID(*a) == entityID(*b)) {
        matched(*a, *b);
        ++a;
        ++b;
        continue;
      }
      std::size_t skipA = 1;
      std::size_t skipB = 1;
      for (const std::size_t reach : kLookAhead) {
        if (budget_ < reach) break;
        if (const auto found = distanceTo(entityID(*a), b, after.end(), reach)) {
          skipA = 0;
          skipB = *found;
          break;
        }
        if (const auto found = distanceTo(entityID(*b), a, before.end(), reach)) {
          skipA = *found;
          skipB = 0;
          break;
        }
      }
      for (; skipA > 0; --skipA) before_.push_back(&*a++);
      for (; skipB > 0; --skipB) after_.push_back(&*b++);
    }
    for (; a != before.end(); ++a) before_.push_back(&*a);
    for (; b != after.end(); ++b) after_.push_back(&*b);
  }

  const Entities& onlyBefore() const { return before_; }
  const Entities& onlyAfter() const { return after_; }

 private:
  static constexpr std::array<std::size_t, 4> kLookAhead{8, 128, 2048, 32768};

  std::optional<std::size_t> distanceTo(const UUID& id, EntityList::Iterator from,
                                        const EntityList::Iterator& end, std::size_t reach) {
    std::size_t steps = 0;
    for (; steps < reach && from != end; ++steps, ++from) {
      if (entityID(*from) == id) break;
    }
    budget_ -= std::min(budget_, steps);
    if (steps == reach || from == end) return std::nullopt;
    return steps;
  }

  std::size_t budget_ = 0;
  Entities before_;
  Entities after_;
};

class Matching {
 public:
  Matching(const Drawing& before, const Drawing& after, NumberPrecision precision,
           DrawingDifference& difference)
      : before_(before.entities),
        after_(after.entities),
        pairs_(wallSystemPairs(before.wallSystemSpecs, after.wallSystemSpecs)),
        precision_(precision),
        difference_(difference) {}

  void run() {
    if (before_.sharesAllStorage(after_)) return;
    if (shareMostStorage()) {
      takeListDifference();
      return;
    }
    StepByStep steps;
    std::size_t common = 0;
    steps.walk(before_, after_, [&](const SketchEntity& a, const SketchEntity& b) {
      ++common;
      note(a, b);
    });
    const std::size_t wanted = std::min(before_.size(), after_.size());
    common += matchByIdentifier(steps.onlyBefore(), steps.onlyAfter());
    if (common * 2 >= wanted) return;
    difference_.removed.clear();
    difference_.added.clear();
    difference_.changed.clear();
    matchByShape();
  }

 private:
  bool isSame(const SketchEntity& a, const SketchEntity& b) const {
    return isSameShape(a, b, precision_, pairs_);
  }
  void note(const SketchEntity& a, const SketchEntity& b) {
    if (!isSame(a, b)) difference_.changed.emplace_back(a, b);
  }

  // Whether one list has come from the other by edits that left most chunks as they were.
  bool shareMostStorage() const {
    const auto first = before_.chunks();
    const auto second = after_.chunks();
    std::unordered_set<const void*> known;
    known.reserve(first.size());
    for (const auto& chunk : first) known.insert(chunk.get());
    const auto shared = std::count_if(second.begin(), second.end(),
                                      [&](const auto& chunk) { return known.contains(chunk.get()); });
    return static_cast<std::size_t>(shared) * 2 > std::max(first.size(), second.size());
  }

  void takeListDifference() {
    EntityList::Difference exact = EntityList::difference(before_, after_);
    difference_.removed = std::move(exact.removed);
    difference_.added = std::move(exact.added);
    for (const auto& [a, b] : exact.changed) note(a, b);
  }

  // Gives the number of pairs.
  std::size_t matchByIdentifier(const Entities& before, const Entities& after) {
    TakeOnce table(before.size());
    for (const SketchEntity* entity : before) table.add(keyOf(entityID(*entity)), entity);
    std::size_t common = 0;
    for (const SketchEntity* entity : after) {
      const UUID& id = entityID(*entity);
      const SketchEntity* match =
          table.take(keyOf(id), [&](const SketchEntity& other) { return entityID(other) == id; });
      if (match == nullptr) {
        difference_.added.push_back(*entity);
      } else {
        ++common;
        note(*match, *entity);
      }
    }
    for (const SketchEntity* entity : table.rest()) difference_.removed.push_back(*entity);
    return common;
  }

  void matchByShape() {
    TakeOnce table(before_.size());
    for (const SketchEntity& entity : before_) table.add(shapeKey(entity, {}), &entity);
    Entities others;
    for (const SketchEntity& entity : after_) {
      const std::uint64_t key = shapeKey(entity, pairs_);
      const UUID& id = entityID(entity);
      const auto fits = [&](const SketchEntity& other) { return isSame(other, entity); };
      const SketchEntity* match =
          table.take(key, [&](const SketchEntity& other) { return entityID(other) == id && fits(other); });
      if (match == nullptr) match = table.take(key, fits);
      if (match == nullptr) {
        others.push_back(&entity);
      } else if (entityID(*match) != id) {
        difference_.renamed.emplace(id, entityID(*match));
      }
    }
    matchByIdentifier(table.rest(), others);
  }

  // Equal for entities of the same shape, whichever the precision.
  static std::uint64_t shapeKey(const SketchEntity& entity, const WallSystemPairs& pairs) {
    std::uint64_t key = entity.index();
    const auto addBits = [&](std::uint64_t bits) {
      key = (key ^ bits) * 0x9E3779B97F4A7C15ULL;
      key ^= key >> 29;
    };
    const auto add = [&](double number) {
      const auto narrow = static_cast<float>(number);
      // Both zeros are one number, and so is whatever is none.
      addBits(narrow == 0 ? 0 : std::isnan(narrow) ? 1 : std::bit_cast<std::uint32_t>(narrow));
    };
    const auto addPoint = [&](SketchPoint point) {
      add(point.x);
      add(point.y);
    };
    std::visit(Overloaded{[&](const LineEntity& line) {
                            addPoint(line.from);
                            addPoint(line.to);
                          },
                          [&](const WallEntity& wall) {
                            addPoint(wall.from);
                            addPoint(wall.to);
                            const auto pair = pairs.find(wall.systemSpecID);
                            addBits(keyOf(pair == pairs.end() ? wall.systemSpecID : pair->second));
                          },
                          [&](const CircleEntity& circle) {
                            addPoint(circle.center);
                            add(circle.radius);
                          },
                          [&](const ArcEntity& arc) {
                            addPoint(arc.center);
                            add(arc.radius);
                            add(arc.startAngle);
                            add(arc.endAngle);
                          },
                          [&](const RectangleEntity& rectangle) {
                            addPoint(rectangle.origin);
                            add(rectangle.size.width);
                            add(rectangle.size.height);
                          },
                          [&](const PolygonEntity& polygon) {
                            for (const SketchPoint vertex : polygon.vertices) addPoint(vertex);
                          }},
               entity);
    return key;
  }

  const EntityList& before_;
  const EntityList& after_;
  const WallSystemPairs pairs_;
  const NumberPrecision precision_;
  DrawingDifference& difference_;
};

const WallSystemSpec* findSystem(const std::vector<WallSystemSpec>& systems, const UUID& id) {
  const auto found = std::find_if(systems.begin(), systems.end(),
                                  [&](const WallSystemSpec& system) { return system.id == id; });
  return found == systems.end() ? nullptr : &*found;
}

void compareSystems(const std::vector<WallSystemSpec>& before, const std::vector<WallSystemSpec>& after,
                    NumberPrecision precision, DrawingDifference& difference) {
  const WallSystemPairs pairs = wallSystemPairs(before, after);
  std::unordered_set<UUID> met;
  for (const WallSystemSpec& system : after) {
    const auto pair = pairs.find(system.id);
    const WallSystemSpec* old = findSystem(before, pair == pairs.end() ? system.id : pair->second);
    if (old == nullptr) {
      difference.addedSystems.push_back(system);
    } else if (met.insert(old->id).second && !isSameWallSystem(*old, system, precision)) {
      difference.changedSystems.emplace_back(*old, system);
    }
  }
  for (const WallSystemSpec& system : before) {
    if (!met.contains(system.id)) difference.removedSystems.push_back(system);
  }
}

}  // namespace

WallSystemPairs wallSystemPairs(const std::vector<WallSystemSpec>& first,
                                const std::vector<WallSystemSpec>& second) {
  std::unordered_map<std::string, UUID> free;  // by name, those that the second drawing does not have
  for (const WallSystemSpec& system : first) {
    if (findSystem(second, system.id) == nullptr) free.emplace(lowerCased(system.name), system.id);
  }
  WallSystemPairs pairs;
  for (const WallSystemSpec& system : second) {
    if (findSystem(first, system.id) != nullptr) continue;
    const auto alike = free.find(lowerCased(system.name));
    if (alike == free.end()) continue;
    pairs.emplace(system.id, alike->second);
    free.erase(alike);
  }
  return pairs;
}

bool isSameShape(const SketchEntity& a, const SketchEntity& b, NumberPrecision precision,
                 const WallSystemPairs& pairs) {
  if (a.index() != b.index()) return false;
  const ShapeComparison comparison{precision, pairs};
  return std::visit(
      [&](const auto& first) { return comparison(first, std::get<std::remove_cvref_t<decltype(first)>>(b)); },
      a);
}

bool isSameWallSystem(const WallSystemSpec& a, const WallSystemSpec& b, NumberPrecision precision) {
  return a.name == b.name && sameNumber(a.thickness, b.thickness, precision) &&
         sameNumber(a.height, b.height, precision) && a.assemblyNotes == b.assemblyNotes;
}

DrawingDifference compareDrawings(const Drawing& before, const Drawing& after, NumberPrecision precision) {
  DrawingDifference difference;
  compareSystems(before.wallSystemSpecs, after.wallSystemSpecs, precision, difference);
  Matching(before, after, precision, difference).run();
  difference.plan = comparePlans(before.plan, after.plan, difference.renamed);
  return difference;
}

}  // namespace ostrelon
