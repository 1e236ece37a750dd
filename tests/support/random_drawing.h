// Random documents for property tests. The seed belongs into the message of a failing test.
#pragma once

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/sketch_view_model.h"

namespace ostrelon::testing {

class RandomDrawing {
 public:
  explicit RandomDrawing(unsigned seed) : random(seed) {}

  /// From 0 up to the limit, which must be above 0.
  int below(int limit) {
    if (limit < 1) throw std::invalid_argument("There is no number below " + std::to_string(limit));
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
  }
  double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
  /// Mostly whole coordinates, so that entities meet, touch and coincide.
  double coordinate() { return below(4) == 0 ? number(-20, 20) : below(41) - 20; }
  SketchPoint point() { return {coordinate(), coordinate()}; }

  SketchEntity entity(const SketchViewModel& sketch) {
    const UUID id = UUID::random();
    switch (below(6)) {
      case 0:
        return LineEntity{id, point(), point()};
      case 1: {
        const auto& specs = *sketch.wallSystemSpecs;
        const bool isKnown = below(8) != 0 && !specs.empty();
        return WallEntity{id, point(), point(),
                          isKnown ? specs[static_cast<std::size_t>(below(static_cast<int>(specs.size())))].id
                                  : UUID::random()};
      }
      case 2:
        return CircleEntity{id, point(), number(0.1, 15)};
      case 3:
        return ArcEntity{id, point(), number(0.1, 15), number(-7, 7), number(-7, 7)};
      case 4:
        return RectangleEntity{id, point(), {static_cast<double>(below(20) - 4), number(0.5, 15)}};
      default: {
        std::vector<SketchPoint> vertices;
        for (int i = below(6); i >= 0; --i) vertices.push_back(point());
        return PolygonEntity{id, PolygonVertices(std::move(vertices))};
      }
    }
  }

  std::mt19937 random;
};

}  // namespace ostrelon::testing
