// Chains on random documents, made of random pieces.
#include <gtest/gtest.h>

#include <array>

#include "console/command_chain.h"
#include "support/random_drawing.h"
#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using testing::DocumentState;
using testing::RandomDrawing;
using testing::TestSketch;

std::string whole(RandomDrawing& drawing, int limit) { return std::to_string(drawing.below(limit)); }

// Segments on a coarse grid, so that many of them continue each other.
std::string segment(RandomDrawing& drawing) {
  return whole(drawing, 3) + " 0 " + whole(drawing, 3) + " " + whole(drawing, 2);
}

std::string systemName(RandomDrawing& drawing) {
  constexpr std::array<std::string_view, 4> kNames{"W2-INT", "w2-ext", "CMU-8", "none"};
  return std::string(kNames.at(drawing.below(12) == 0 ? 3 : static_cast<std::size_t>(drawing.below(3))));
}

std::string piece(RandomDrawing& drawing) {
  switch (drawing.below(11)) {
    case 0:
    case 1:
      return "line " + segment(drawing);
    case 2:
      return "wall " + segment(drawing);
    case 3:
      return "WALL " + segment(drawing) + " " + systemName(drawing);
    case 4:
      return "circle 1 2 " + whole(drawing, 8);
    case 5:
      return "rect 0 0 4 " + whole(drawing, 8);
    case 6:
      return "select " + std::to_string(1 + drawing.below(8));
    case 7:
      return drawing.below(4) == 0 ? "select" : "s 1 " + std::to_string(1 + drawing.below(8));
    case 8:
      return "assign " + systemName(drawing);
    case 9:
      return "spec use " + systemName(drawing);
    default:
      return drawing.below(12) == 0 ? "clear" : "spec list";
  }
}

// What a failed chain may not touch beyond the document itself.
struct Surroundings {
  std::optional<SketchDraft> draft;
  std::optional<PolygonDraft> polygonDraft;
  std::optional<UUID> cuttingEdge;
  bool isInspectorVisible;
  std::vector<WallSystemSpec> systems;

  explicit Surroundings(const SketchViewModel& sketch)
      : draft(sketch.draft),
        polygonDraft(sketch.polygonDraft),
        cuttingEdge(sketch.trimCuttingEdgeEntityID),
        isInspectorVisible(sketch.isEntityInspectorVisible),
        systems(sketch.wallSystemSpecs) {}
  friend bool operator==(const Surroundings&, const Surroundings&) = default;
};

TEST(Chains, ABendOfEightDegreesMergesAndIsMeasuredAgainstTheMergedSegment) {
  TestSketch t;
  // tan 8° = 0.14054…
  EXPECT_EQ(t.reply("line 0 0 10 0; line 10 0 20 1.405"),
            "Chain OK (2 commands): 1 line added, 1 collinear merge.");
  EXPECT_EQ(std::get<LineEntity>(t.sketch.entities->back()).to, (SketchPoint{20, 1.405}));
  EXPECT_EQ(t.reply("line 0 0 10 0; line 10 0 20 1.406"),
            "Chain OK (2 commands): 2 lines added, 1 corner join.");
  // The third turns by 6° against the second, and by 9° against what the merge made of both.
  EXPECT_EQ(t.reply("line 0 0 10 0; line 10 0 20 1; line 20 1 30 3.1"),
            "Chain OK (3 commands): 2 lines added, 1 collinear merge, 1 corner join.");
}

TEST(Chains, AMergedWallIsSelectedAndKeepsItsPlace) {
  TestSketch t;
  t.run("wall 0 0 10 0; circle 1 1 1; select 2; wall 0 5 4 5; wall 4 5 9 5");
  ASSERT_EQ(t.sketch.entities->size(), 3u);
  EXPECT_EQ(std::get<WallEntity>(t.sketch.entities->back()).to, (SketchPoint{9, 5}));
  EXPECT_EQ(*t.sketch.selectedEntityIDs, std::unordered_set<UUID>{entityID(t.sketch.entities->back())});
}

}  // namespace
}  // namespace ostrelon
