// The values of a journal as bytes and back: numbers as they lie in memory, little-endian, texts and lists
// with their length in front.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "documents/journal.h"

namespace ostrelon {

static_assert(std::endian::native == std::endian::little, "numbers are written as they lie in memory");

/// The forms that can be read; written is always the current one. Whoever adds a member to a record of the
/// plan, or a kind of them, makes a new form and keeps reading the present ones: a journal is what is left of
/// somebody's work, whichever version wrote it.
enum class JournalForm : std::uint8_t {
  openingsOnly = 1,  ///< of a plan its look, its openings and further members
  current = 2,
};

/// The look of a plan, as bits.
enum JournalLook : std::uint8_t { kClean = 1, kFilled = 2, kWeights = 4, kDimensionStrings = 8 };

// --- Values to bytes

class JournalOutput {
 public:
  template <class T>
  void number(T value) {
    static_assert(std::is_arithmetic_v<T>);
    char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    bytes_.append(raw, sizeof(T));
  }
  void count(std::size_t value) { number(static_cast<std::uint32_t>(value)); }
  void text(std::string_view value) {
    count(value.size());
    bytes_ += value;
  }
  void date(Date value) { number(static_cast<std::int64_t>(value.time_since_epoch().count())); }
  void id(const UUID& value) {
    number(value.high);
    number(value.low);
  }
  void point(SketchPoint value) {
    number(value.x);
    number(value.y);
  }
  void entity(const SketchEntity& entity) {
    number(static_cast<std::uint8_t>(entity.index()));
    id(entityID(entity));
    std::visit(Overloaded{[&](const LineEntity& line) {
                            point(line.from);
                            point(line.to);
                          },
                          [&](const WallEntity& wall) {
                            point(wall.from);
                            point(wall.to);
                            id(wall.systemSpecID);
                          },
                          [&](const CircleEntity& circle) {
                            point(circle.center);
                            number(circle.radius);
                          },
                          [&](const ArcEntity& arc) {
                            point(arc.center);
                            number(arc.radius);
                            number(arc.startAngle);
                            number(arc.endAngle);
                          },
                          [&](const RectangleEntity& rectangle) {
                            point(rectangle.origin);
                            number(rectangle.size.width);
                            number(rectangle.size.height);
                          },
                          [&](const PolygonEntity& polygon) {
                            count(polygon.vertices.size());
                            for (const SketchPoint& vertex : polygon.vertices) point(vertex);
                          }},
               entity);
  }
  template <class Entities>
  void entities(const Entities& all) {
    count(all.size());
    for (const SketchEntity& one : all) entity(one);
  }
  void splices(const std::vector<EntitySplice>& all) {
    count(all.size());
    for (const EntitySplice& splice : all) {
      number(static_cast<std::uint64_t>(splice.at));
      number(static_cast<std::uint64_t>(splice.removed));
      entities(splice.added);
    }
  }
  void wallSystem(const WallSystemSpec& system) {
    id(system.id);
    text(system.name);
    number(system.thickness);
    number(system.height);
    text(system.assemblyNotes);
  }
  void wallSystem(const std::optional<WallSystemSpec>& system) {
    number(static_cast<std::uint8_t>(system.has_value()));
    if (system) wallSystem(*system);
  }
  void wallSystems(const std::vector<WallSystemSpec>& systems) {
    count(systems.size());
    for (const WallSystemSpec& system : systems) wallSystem(system);
  }
  // --- A record is its members one by one

  void value(const UUID& value) { id(value); }
  void value(SketchPoint value) { point(value); }
  void value(const std::string& value) { text(value); }
  void value(bool value) { number(static_cast<std::uint8_t>(value)); }
  void value(double value) { number(value); }
  void value(std::uint32_t value) { number(value); }
  template <class Enumeration>
  requires std::is_enum_v<Enumeration>
  void value(Enumeration value) { number(static_cast<std::uint8_t>(value)); }
  template <class T>
  void value(const std::optional<T>& optional) {
    value(optional.has_value());
    if (optional) value(*optional);
  }
  void value(const Opening& opening) {
    id(opening.id);
    id(opening.wallID);
    value(opening.kind);
    number(opening.distance);
    number(opening.width);
    value(opening.hinge);
    value(opening.swing);
  }
  template <HasFields Record>
  void value(const Record& record) {
    forEachField([this](std::string_view, const auto& member) { this->value(member); }, record);
  }

  template <class T>
  void splice(const ListSplice<T>& splice) {
    number(static_cast<std::uint64_t>(splice.at));
    number(static_cast<std::uint64_t>(splice.removed));
    count(splice.added.size());
    for (const T& one : splice.added) value(one);
  }
  void planChange(const PlanChange& change) {
    const PlanLook& look = change.look;
    number(static_cast<std::uint8_t>((look.cleanWalls ? kClean : 0) | (look.filledWalls ? kFilled : 0) |
                                     (look.lineWeights ? kWeights : 0) |
                                     (look.dimensionStrings ? kDimensionStrings : 0)));
    std::apply([this](const auto&... splices) { (splice(splices), ...); }, change.items);
    splice(change.further);
    value(change.sheet);
  }
  // What a step takes back beside the entities.
  void twin(const std::optional<PlanChange>& plan, const std::vector<WallSystemChange>& wallSystems) {
    number(static_cast<std::uint8_t>(plan.has_value()));
    if (plan) planChange(*plan);
    count(wallSystems.size());
    for (const WallSystemChange& change : wallSystems) {
      number(static_cast<std::uint64_t>(change.position));
      wallSystem(change.before);
      wallSystem(change.after);
    }
  }
  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

// --- Bytes to values. Once something does not fit, everything is empty and `isGood` false.

class JournalInput {
 public:
  explicit JournalInput(std::string_view bytes, JournalForm form = JournalForm::current)
      : bytes_(bytes), form_(form) {}

  bool isGood() const { return isGood_; }
  bool isAtEnd() const { return isGood_ && bytes_.empty(); }
  void fail() {
    isGood_ = false;
    bytes_ = {};
  }

  template <class T>
  T number() {
    T value{};
    if (bytes_.size() < sizeof(T)) {
      fail();
      return value;
    }
    std::memcpy(&value, bytes_.data(), sizeof(T));
    bytes_.remove_prefix(sizeof(T));
    return value;
  }
  // How many follow, each of at least so many bytes.
  std::size_t count(std::size_t leastBytes) {
    const auto value = number<std::uint32_t>();
    if (value > bytes_.size() / leastBytes) fail();
    return isGood_ ? value : 0;
  }
  std::string text() {
    const std::size_t size = count(1);
    std::string value(bytes_.substr(0, size));
    bytes_.remove_prefix(size);
    return value;
  }
  Date date() { return Date(std::chrono::microseconds(number<std::int64_t>())); }
  UUID id() {
    const auto high = number<std::uint64_t>();
    return {high, number<std::uint64_t>()};
  }
  SketchPoint point() {
    const auto x = number<double>();
    return {x, number<double>()};
  }
  SketchEntity entity() {
    const auto kind = number<std::uint8_t>();
    const UUID own = id();
    const SketchPoint first = kind == 5 ? SketchPoint() : point();
    switch (kind) {
      case 0:
        return LineEntity{own, first, point()};
      case 1: {
        const SketchPoint to = point();
        return WallEntity{own, first, to, id()};
      }
      case 2:
        return CircleEntity{own, first, number<double>()};
      case 3: {
        const auto radius = number<double>();
        const auto start = number<double>();
        return ArcEntity{own, first, radius, start, number<double>()};
      }
      case 4: {
        const auto width = number<double>();
        return RectangleEntity{own, first, {width, number<double>()}};
      }
      case 5: {
        std::vector<SketchPoint> vertices(count(sizeof(SketchPoint)));
        for (SketchPoint& vertex : vertices) vertex = point();
        return PolygonEntity{own, std::move(vertices)};
      }
      default:
        fail();
        return {};
    }
  }
  std::vector<SketchEntity> entities() {
    constexpr std::size_t kLeastBytes = 21;
    std::vector<SketchEntity> all(count(kLeastBytes));
    for (SketchEntity& one : all) one = entity();
    return all;
  }
  std::vector<EntitySplice> splices() {
    constexpr std::size_t kLeastBytes = 20;
    std::vector<EntitySplice> all(count(kLeastBytes));
    for (EntitySplice& splice : all) {
      splice.at = number<std::uint64_t>();
      splice.removed = number<std::uint64_t>();
      splice.added = entities();
    }
    return all;
  }
  WallSystemSpec wallSystem() {
    WallSystemSpec system;
    system.id = id();
    system.name = text();
    system.thickness = number<double>();
    system.height = number<double>();
    system.assemblyNotes = text();
    return system;
  }
  std::vector<WallSystemSpec> wallSystems() {
    constexpr std::size_t kLeastBytes = 40;
    std::vector<WallSystemSpec> all(count(kLeastBytes));
    for (WallSystemSpec& system : all) system = wallSystem();
    return all;
  }
  bool flag() { return number<std::uint8_t>() != 0; }
  // One of an enumeration whose values go from 0 up to this one.
  template <class Enumeration>
  Enumeration oneUpTo(Enumeration last) {
    const auto value = number<std::uint8_t>();
    if (value > static_cast<std::uint8_t>(last)) fail();
    return isGood_ ? static_cast<Enumeration>(value) : Enumeration{};
  }
  // --- A record is its members one by one

  void take(UUID& value) { value = id(); }
  void take(SketchPoint& value) { value = point(); }
  void take(std::string& value) { value = text(); }
  void take(bool& value) { value = flag(); }
  void take(double& value) { value = number<double>(); }
  void take(std::uint32_t& value) { value = number<std::uint32_t>(); }
  template <HasNamedCases Enumeration>
  void take(Enumeration& value) {
    value = oneUpTo(static_cast<Enumeration>(caseNamesOf(value).size() - 1));
  }
  template <class T>
  void take(std::optional<T>& value) {
    if (flag()) take(value.emplace());
  }
  void take(Opening& opening) {
    opening.id = id();
    opening.wallID = id();
    opening.kind = oneUpTo(OpeningKind::opening);
    opening.distance = number<double>();
    opening.width = number<double>();
    opening.hinge = oneUpTo(DoorHinge::right);
    opening.swing = oneUpTo(DoorSwing::out);
  }
  template <HasFields Record>
  void take(Record& record) {
    forEachField([this](std::string_view, auto& member) { this->take(member); }, record);
  }

  template <class T>
  void take(ListSplice<T>& splice) {
    constexpr std::size_t kLeastBytes = 4;  // of a text; everything else has more
    splice.at = number<std::uint64_t>();
    splice.removed = number<std::uint64_t>();
    const std::size_t added = count(kLeastBytes);
    // One by one: a count that lies must not take more memory than the bytes that are there.
    for (std::size_t i = 0; i < added && isGood_; ++i) take(splice.added.emplace_back());
  }
  PlanChange planChange() {
    PlanChange change;
    const auto look = number<std::uint8_t>();
    change.look = {(look & kClean) != 0, (look & kFilled) != 0, (look & kWeights) != 0,
                   (look & kDimensionStrings) != 0};
    if (form_ == JournalForm::openingsOnly) {
      take(std::get<ListSplice<Opening>>(change.items));
      take(change.further);
      return change;
    }
    std::apply([this](auto&... splices) { (take(splices), ...); }, change.items);
    take(change.further);
    take(change.sheet);
    return change;
  }
  JournalUndoStep twin() {
    constexpr std::size_t kLeastBytes = 10;
    JournalUndoStep step;
    if (flag()) step.plan = planChange();
    step.wallSystems.resize(count(kLeastBytes));
    for (WallSystemChange& change : step.wallSystems) {
      change.position = number<std::uint64_t>();
      if (flag()) change.before = wallSystem();
      if (flag()) change.after = wallSystem();
      if (!change.before && !change.after) fail();
    }
    return step;
  }

 private:
  std::string_view bytes_;
  JournalForm form_;
  bool isGood_ = true;
};

}  // namespace ostrelon
