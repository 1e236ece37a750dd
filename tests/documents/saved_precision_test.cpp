// What is said when a drawing loses by being saved.
#include "documents/saved_precision.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ostrelon {
namespace {

using ::testing::HasSubstr;

TEST(SavedPrecision, TellsWhatLiesTooFarAwayAndWhatFallsTogether) {
  const auto line = [](SketchPoint from, SketchPoint to) { return LineEntity{UUID::random(), from, to}; };
  const SavedPrecision near = savedPrecision({line({0, 0}, {16383, 1e-6}), line({5, 5}, {5, 5})});
  EXPECT_EQ(near.farText, "");
  EXPECT_EQ(near.merged, 0U);
  const SavedPrecision far = savedPrecision({line({16384, 0}, {0, 0}), line({16384, 0}, {16384.0001, 0}),
                                             CircleEntity{UUID::random(), {0, 0}, 1e-60}});
  EXPECT_THAT(far.farText,
              HasSubstr("up to 16384 feet from the origin, where a saved file keeps places 0.023"));
  EXPECT_EQ(far.merged, 2U);
}

}  // namespace
}  // namespace ostrelon
