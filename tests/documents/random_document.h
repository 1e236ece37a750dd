// Documents with every kind of entity and with awkward numbers and texts, from a seed.
#pragma once

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "documents/sketch_document.h"

namespace ostrelon::testing {

class RandomDocument {
 public:
  explicit RandomDocument(std::uint32_t seed) : random_(seed) {}

  SketchDocumentV2 make(std::size_t mostEntities = 1500) {
    SketchDocumentV2 document;
    document.name = text();
    document.grid = chance(2);
    document.vp = {std::ldexp(unit(), 40), unit(), 0.1 + std::abs(unit())};
    const std::size_t systems = 1 + below(4);
    for (std::size_t index = 0; index < systems; ++index) {
      document.ws.items.push_back({UUID::random(), text(), number(), number(), text()});
    }
    document.ws.active = static_cast<std::int64_t>(below(systems));
    std::vector<SketchEntity> entities;
    for (std::size_t count = below(mostEntities); count > 0; --count) entities.push_back(entity(document));
    document.e = EntityList(std::move(entities));
    if (chance(2)) document.undo = snapshots(document);
    return document;
  }

  SketchEntity entity(const SketchDocumentV2& document) {
    const UUID id = UUID::random();
    switch (below(6)) {
      case 0:
        return LineEntity{id, point(), point()};
      case 1:
        return WallEntity{id, point(), point(), document.ws.items[below(document.ws.items.size())].id};
      case 2:
        return CircleEntity{id, point(), number()};
      case 3:
        return ArcEntity{id, point(), number(), number(), number()};
      case 4:
        return RectangleEntity{id, point(), {number(), number()}};
      default: {
        std::vector<SketchPoint> vertices(3 + below(8));
        for (SketchPoint& vertex : vertices) vertex = point();
        return PolygonEntity{id, chance(20) ? PolygonVertices() : PolygonVertices(vertices)};
      }
    }
  }

  std::size_t below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
  }
  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }

 private:
  double unit() { return std::uniform_real_distribution<double>(-1, 1)(random_); }
  /// A 32-bit value: whole, ordinary, tiny, huge, or a negative zero.
  double number() {
    switch (below(12)) {
      case 0:
        return static_cast<double>(below(100'000));
      case 1:
        return -0.0;
      case 2:
        return std::numeric_limits<float>::denorm_min();
      case 3:
        return -std::numeric_limits<float>::max();
      case 4:
        return static_cast<float>(std::ldexp(unit(), static_cast<int>(below(250)) - 130));
      default:
        return static_cast<float>(unit() * 1000);
    }
  }
  SketchPoint point() {
    const double x = number();
    return {x, number()};
  }
  std::string text() {
    static const std::vector<std::string> kTexts{"",         "Plan",     "2×4 stud wall", "a\"b\\c\n\t\x01",
                                                 "🏠 façade", "</script>"};
    return kTexts[below(kTexts.size())];
  }
  std::vector<EntityList> snapshots(const SketchDocumentV2& document) {
    std::vector<EntityList> lists{document.e};
    for (std::size_t count = 1 + below(25); count > 1; --count) {
      EntityList list = lists.back();
      const std::size_t size = list.size();
      switch (size == 0 ? 0 : below(4)) {
        case 0:
          list.append(entity(document));
          break;
        case 1:
          list.remove(below(size));
          break;
        case 2:
          list.insert(below(size), {entity(document), entity(document)});
          break;
        default:
          list.replace(below(size), entity(document));
      }
      lists.push_back(std::move(list));
    }
    if (lists.size() > 20) lists.erase(lists.begin(), lists.end() - 20);
    return lists;
  }

  std::mt19937 random_;
};

}  // namespace ostrelon::testing
