// The differences of two drawings in words.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>
#include <unordered_map>

#include "core/circle.h"
#include "core/entity_bounds.h"
#include "core/length_text.h"
#include "documents/told_difference.h"

namespace ostrelon {
namespace {

constexpr double kUntold = 1e-6;  // a part of the size of an entity that is no difference in words

std::string angleWords(double radians) {
  double degrees = std::round(degreesOf(radians) * 100) / 100;
  if (degrees == 0) degrees = 0;  // never "-0"
  return fmt::format("{:g}°", degrees);
}

class Phrases {
 public:
  Phrases(const SketchEntity& before, const SketchEntity& after) {
    const SketchBox box = entityBounds(before).united(entityBounds(after));
    const double size =
        std::max({std::abs(box.minX), std::abs(box.minY), std::abs(box.maxX), std::abs(box.maxY), 1.0});
    tolerance_ = size * kUntold;
  }

  bool isNone(double value) const { return std::abs(value) <= tolerance_; }
  bool isNone(SketchPoint vector) const { return isNone(vector.x) && isNone(vector.y); }

  void add(ChangeKind kind, std::string words) { phrases_.push_back({kind, std::move(words)}); }

  void moved(SketchPoint by) {
    if (isNone(by)) return;
    std::string words;
    if (!isNone(by.x)) words = differenceLengthText(by.x) + (by.x > 0 ? " right" : " left");
    if (!isNone(by.y)) {
      words += std::string(words.empty() ? "" : " and ") + differenceLengthText(by.y) +
               (by.y > 0 ? " up" : " down");
    }
    add(ChangeKind::moved, "moved " + words);
  }

  // A size that has become larger or smaller, each with its word.
  void resized(double by, std::string_view larger, std::string_view smaller) {
    if (!isNone(by))
      add(ChangeKind::resized, fmt::format("{} {}", differenceLengthText(by), by > 0 ? larger : smaller));
  }

  void segment(SketchPoint from, SketchPoint to, SketchPoint newFrom, SketchPoint newTo) {
    const SketchPoint fromMoved = newFrom - from;
    const SketchPoint toMoved = newTo - to;
    const SketchPoint middleMoved = middleOf(newFrom, newTo) - middleOf(from, to);
    const SketchPoint old = to - from;
    const SketchPoint now = newTo - newFrom;
    const double turn = std::atan2(cross(old, now), dot(old, now));
    const bool isTurned = !isNone(std::sin(turn / 2) * std::max(lengthOf(old), lengthOf(now)));
    // Who pulls one end of a segment, or both ends alike, has not moved it.
    if (!isNone(fromMoved) && !isNone(toMoved) && !isNone(middleMoved)) {
      moved(isTurned ? middleMoved : fromMoved);
    }
    if (isTurned) add(ChangeKind::reshaped, "turned " + angleWords(turn));
    resized(lengthOf(now) - lengthOf(old), "longer", "shorter");
  }

  void polygon(const PolygonVertices& before, const PolygonVertices& after) {
    if (before.size() != after.size()) {
      add(ChangeKind::reshaped, fmt::format("{} vertices instead of {}", after.size(), before.size()));
      return;
    }
    std::size_t count = 0;
    bool isWhole = true;
    for (std::size_t i = 0; i < before.size(); ++i) {
      const SketchPoint by = after[i] - before[i];
      if (!isNone(by)) ++count;
      if (!isNone(by - (after[0] - before[0]))) isWhole = false;
    }
    if (count == 0) return;
    if (isWhole) {
      moved(after[0] - before[0]);
    } else {
      add(ChangeKind::reshaped, fmt::format("{} of {} vertices moved", count, before.size()));
    }
  }

  void arcAngles(const ArcEntity& before, const ArcEntity& after) {
    const auto reach = [&](double a, double b) { return std::sin((a - b) / 2) * after.radius; };
    if (isNone(reach(before.startAngle, after.startAngle)) && isNone(reach(before.endAngle, after.endAngle)))
      return;
    add(ChangeKind::reshaped,
        fmt::format("from {} to {} instead of {} to {}", angleWords(after.startAngle),
                    angleWords(after.endAngle), angleWords(before.startAngle), angleWords(before.endAngle)));
  }

  std::vector<ChangePhrase> take() { return std::move(phrases_); }

 private:
  double tolerance_ = 0;
  std::vector<ChangePhrase> phrases_;
};

struct Segment {
  SketchPoint from;
  SketchPoint to;
};

std::optional<Segment> segmentOf(const SketchEntity& entity) {
  if (const auto* line = std::get_if<LineEntity>(&entity)) return Segment{line->from, line->to};
  if (const auto* wall = std::get_if<WallEntity>(&entity)) return Segment{wall->from, wall->to};
  return std::nullopt;
}

// Two records of one kind.
void addShapePhrases(Phrases& phrases, const SketchEntity& before, const SketchEntity& after) {
  std::visit(
      Overloaded{
          [](const LineEntity&) {}, [](const WallEntity&) {},  // told as segments
          [&](const CircleEntity& a) {
            const auto& b = std::get<CircleEntity>(after);
            phrases.moved(b.center - a.center);
            phrases.resized(b.radius - a.radius, "larger in radius", "smaller in radius");
          },
          [&](const ArcEntity& a) {
            const auto& b = std::get<ArcEntity>(after);
            phrases.moved(b.center - a.center);
            phrases.resized(b.radius - a.radius, "larger in radius", "smaller in radius");
            phrases.arcAngles(a, b);
          },
          [&](const RectangleEntity& a) {
            const auto& b = std::get<RectangleEntity>(after);
            const SketchBox old = SketchBox::spanning(a.origin, a.size);
            const SketchBox now = SketchBox::spanning(b.origin, b.size);
            const SketchPoint least{now.minX - old.minX, now.minY - old.minY};
            const SketchPoint most{now.maxX - old.maxX, now.maxY - old.maxY};
            // Who pulls one side has not moved it.
            phrases.moved({phrases.isNone(most.x) ? 0 : least.x, phrases.isNone(most.y) ? 0 : least.y});
            phrases.resized(now.width() - old.width(), "wider", "narrower");
            phrases.resized(now.height() - old.height(), "taller", "lower");
          },
          [&](const PolygonEntity& a) {
            phrases.polygon(a.vertices, std::get<PolygonEntity>(after).vertices);
          }},
      before);
}

std::string systemName(const SketchEntity& wall, const Drawing& drawing) {
  return drawing.wallSystemName(wall).value_or("an unknown system");
}

// The 1-based numbers of these entities in their list.
using Numbers = std::unordered_map<UUID, std::size_t>;

template <class Entities, class EntityOf>
Numbers numbersOf(const Entities& entities, EntityOf entityOf, const EntityList& list) {
  Numbers numbers;
  for (const auto& entity : entities) numbers.emplace(entityID(entityOf(entity)), 0);
  std::size_t left = numbers.size();
  std::size_t number = 0;
  for (auto entity = list.begin(); left > 0 && entity != list.end(); ++entity) {
    ++number;
    const auto found = numbers.find(entityID(*entity));
    if (found == numbers.end() || found->second != 0) continue;
    found->second = number;
    --left;
  }
  return numbers;
}

// The entities in the order of their numbers, each with its label: "Wall 18".
template <class Entity, class EntityOf, class Line>
void addLines(std::vector<ToldDifference>& lines, std::size_t limit, DifferenceKind kind,
              const std::vector<Entity>& entities, EntityOf entityOf, const EntityList& list, Line line) {
  if (entities.empty() || lines.size() >= limit) return;
  const Numbers numbers = numbersOf(entities, entityOf, list);
  std::vector<std::pair<std::size_t, const Entity*>> ordered;
  ordered.reserve(entities.size());
  for (const Entity& entity : entities) ordered.emplace_back(numbers.at(entityID(entityOf(entity))), &entity);
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [number, entity] : ordered) {
    if (lines.size() >= limit) return;
    const SketchEntity& shown = entityOf(*entity);
    lines.push_back({kind, false, entityID(shown),
                     fmt::format("{} {}: {}", entityTypeLabel(shown), number, line(*entity))});
  }
}

std::string systemChange(const WallSystemSpec& before, const WallSystemSpec& after) {
  std::vector<std::string> words;
  if (before.name != after.name) words.push_back("renamed from " + before.name);
  const auto number = [&](std::string_view what, double old, double now) {
    if (old == now) return;
    words.push_back(fmt::format("{} {} instead of {}", what, plainDecimalText(now), plainDecimalText(old)));
  };
  number("thickness", before.thickness, after.thickness);
  number("height", before.height, after.height);
  if (before.assemblyNotes != after.assemblyNotes) words.emplace_back("other notes");
  return fmt::format("{}", fmt::join(words, ", "));
}

}  // namespace

std::string differenceLengthText(double value) {
  const double size = std::abs(value);
  std::string text = formatFeetInches(size);
  const auto read = parseFeetInches(text);
  if (read && std::abs(*read - size) * 1200 <= 1) return text;
  return fmt::format("{:.6g}'", size);
}

std::string differenceCountText(std::size_t added, std::size_t removed, std::size_t changed) {
  std::vector<std::string> counts;
  if (added > 0) counts.push_back(fmt::format("{} added", added));
  if (removed > 0) counts.push_back(fmt::format("{} removed", removed));
  if (changed > 0) counts.push_back(fmt::format("{} changed", changed));
  return fmt::format("{}", fmt::join(counts, ", "));
}

std::vector<ChangePhrase> changePhrases(const SketchEntity& before, const SketchEntity& after,
                                        const Drawing& drawingBefore, const Drawing& drawingAfter) {
  Phrases phrases(before, after);
  if (before.index() != after.index()) {
    std::string words = fmt::format("converted from {} to {}", entityKindName(before), entityKindName(after));
    if (std::holds_alternative<WallEntity>(after)) words += " of " + systemName(after, drawingAfter);
    phrases.add(ChangeKind::converted, std::move(words));
  } else {
    addShapePhrases(phrases, before, after);
  }
  const auto old = segmentOf(before);
  const auto now = segmentOf(after);
  if (old && now) phrases.segment(old->from, old->to, now->from, now->to);
  const auto* oldWall = std::get_if<WallEntity>(&before);
  const auto* newWall = std::get_if<WallEntity>(&after);
  if (oldWall != nullptr && newWall != nullptr && oldWall->systemSpecID != newWall->systemSpecID) {
    const std::string oldName = systemName(before, drawingBefore);
    const std::string newName = systemName(after, drawingAfter);
    // Systems of one name under two identifiers are told where they are compared themselves.
    if (oldName != newName) {
      phrases.add(ChangeKind::otherWallSystem, fmt::format("{} instead of {}", newName, oldName));
    }
  }
  return phrases.take();
}

std::string differenceCounts(const DrawingDifference& difference) {
  std::vector<std::string> parts;
  const auto add = [&](std::string_view what, const std::string& counts) {
    if (!counts.empty()) parts.push_back(std::string(what) + counts);
  };
  add("", differenceCountText(difference.added.size(), difference.removed.size(), difference.changed.size()));
  add("wall systems: ", differenceCountText(difference.addedSystems.size(), difference.removedSystems.size(),
                                            difference.changedSystems.size()));
  add("", planDifferenceCounts(difference.plan));
  if (parts.empty()) return "No differences.";
  std::string text = fmt::format("{}.", fmt::join(parts, "; "));
  if (text.front() >= 'a' && text.front() <= 'z') text.front() = static_cast<char>(text.front() - 'a' + 'A');
  return text;
}

std::vector<ToldDifference> toldDifferences(const DrawingDifference& difference, const Drawing& before,
                                            const Drawing& after, std::size_t limit) {
  using Kind = DifferenceKind;
  std::vector<ToldDifference> lines;
  const auto systemLine = [&](Kind kind, const WallSystemSpec& system, std::string_view words) {
    if (lines.size() >= limit) return;
    lines.push_back({kind, true, system.id, fmt::format("Wall system {}: {}", system.name, words)});
  };
  for (const WallSystemSpec& system : difference.removedSystems) systemLine(Kind::removed, system, "removed");
  for (const auto& [old, now] : difference.changedSystems)
    systemLine(Kind::changed, now, systemChange(old, now));
  for (const WallSystemSpec& system : difference.addedSystems) systemLine(Kind::added, system, "added");

  const auto itself = [](const SketchEntity& entity) -> const SketchEntity& { return entity; };
  const auto newer = [](const DrawingDifference::EntityPair& pair) -> const SketchEntity& {
    return pair.second;
  };
  addLines(lines, limit, Kind::removed, difference.removed, itself, before.entities,
           [&](const SketchEntity& entity) {
             return "removed, " + entityDescription(entity, before.wallSystemName(entity));
           });
  addLines(lines, limit, Kind::changed, difference.changed, newer, after.entities,
           [&](const DrawingDifference::EntityPair& pair) {
             std::vector<std::string> words;
             for (ChangePhrase& phrase : changePhrases(pair.first, pair.second, before, after)) {
               words.push_back(std::move(phrase.words));
             }
             return words.empty() ? "changed by less than can be told"
                                  : fmt::format("{}", fmt::join(words, ", "));
           });
  addLines(lines, limit, Kind::added, difference.added, itself, after.entities,
           [&](const SketchEntity& entity) {
             return "added, " + entityDescription(entity, after.wallSystemName(entity));
           });
  for (PlanDifferenceLine& line : planDifferenceLines(difference.plan, before, after, limit - lines.size())) {
    lines.push_back({line.kind, line.wallID == UUID(), line.wallID, std::move(line.text)});
  }
  return lines;
}

std::vector<std::string> differenceLines(const DrawingDifference& difference, const Drawing& before,
                                         const Drawing& after, std::size_t limit) {
  std::vector<std::string> lines;
  for (ToldDifference& told : toldDifferences(difference, before, after, limit)) {
    lines.push_back(std::move(told.text));
  }
  return lines;
}

}  // namespace ostrelon
