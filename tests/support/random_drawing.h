// Random entities and documents for property tests. The seed belongs into the message of a failing test.
#pragma once

#include <random>
#include <vector>

#include "core/wall_system.h"
#include "documents/sketch_document.h"

namespace ostrelon::testing {

/// The seed of a test's random data: the same with every `./test`, another one with every `./test --long`,
/// and that of the variable OSTRELON_SEED where it is set.
unsigned seed();
/// So many rounds, and 20 times as many with `./test --long`.
int rounds(int usual);

/// Where the numbers of a random drawing lie.
enum class Spread {
  meeting,    ///< few places, mostly whole, so that entities meet, touch and coincide
  scattered,  ///< far and wide, of sizes over many powers of four; now and then no numbers at all
  floats,     ///< any value of 32 bits: whole, ordinary, tiny, huge, or a negative zero
};

class RandomDrawing {
 public:
  explicit RandomDrawing(unsigned seed, Spread spread = Spread::meeting) : random(seed), spread_(spread) {}

  /// From 0 up to the limit, which must be above 0.
  int below(int limit);
  bool chance(int oneIn) { return below(oneIn) == 0; }
  template <class T>
  const T& oneOf(const std::vector<T>& values) {
    return values.at(static_cast<std::size_t>(below(static_cast<int>(values.size()))));
  }
  double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
  double coordinate();
  SketchPoint point();
  SketchEntity entity(const std::vector<WallSystemSpec>& systems = defaultWallSystems(),
                      UUID id = UUID::random());
  std::vector<SketchEntity> entities(int count);
  /// A document with undo snapshots and awkward texts, as a file gives it back.
  SketchDocumentV2 document(int mostEntities = 1500);

  /// Openings in walls, and now and then in none, of these entities; some look, and members of later
  /// versions.
  Plan plan(const EntityList& entities);

  std::mt19937 random;

 private:
  double size();
  std::vector<EntityList> snapshots(const SketchDocumentV2& document);

  Spread spread_;
};

}  // namespace ostrelon::testing
