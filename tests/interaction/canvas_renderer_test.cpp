#include "interaction/canvas_renderer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "interaction/canvas_clipping.h"
#include "interaction/segment_label.h"
#include "support/recording_painter.h"
#include "support/temporary_folder.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::RecordingPainter;
using testing::TestWorkspace;
using Points = std::vector<SketchPoint>;

const ThemePalette& colors() { return lightPalette(); }

/// A sketch on a canvas of 400 by 300 with the origin in its middle at 4 view points a unit.
class CanvasRenderer : public ::testing::Test, protected TestWorkspace {
 protected:
  CanvasRenderer() { board.resizeCanvas({400, 300}); }

  CanvasFrame frame() const { return {{board.viewport(), board.view->canvasSize}, colors()}; }
  std::vector<RecordingPainter::Call> paint(CanvasLayer layer) const {
    RecordingPainter painter;
    paintLayer(painter, layer, board, frame());
    return painter.calls;
  }
  std::vector<RecordingPainter::Call> paintEntity(const SketchEntity& entity) const {
    RecordingPainter painter;
    paintEntities(painter, frame(), EntityList{entity}, sketch.drawing->wallSystemSpecs);
    return painter.calls;
  }
  const UUID& lastID() const { return entityID(sketch.entities().back()); }
};

TEST_F(CanvasRenderer, PaintsNoAxisThatLiesOutsideAndNoGridThatIsOff) {
  board.setViewport({{-5000, 150}, 4});
  EXPECT_EQ(paint(CanvasLayer::grid)[2].pieces.size(), 1u);
  setShowGrid(sketch, false);
  EXPECT_TRUE(paint(CanvasLayer::grid).empty());
}

TEST_F(CanvasRenderer, NeverHangsOnAViewFarBeyondAnySketch) {
  for (const double pan : {1e9, 1e17, 1e300, std::numeric_limits<double>::infinity(), std::nan("")}) {
    for (const double scale : {0.05, 4.0, 200.0, 1e-300}) {
      const CanvasFrame far{{{{pan, -pan}, scale}, {1920, 1080}}, colors()};
      RecordingPainter painter;
      paintGrid(painter, far);
      for (const auto& call : painter.calls) EXPECT_LT(call.pieces.size(), 50'000u);
    }
  }
}

TEST_F(CanvasRenderer, PutsGridLinesOnPixelCentresWhereAsked) {
  CanvasFrame snapped = frame();
  snapped.transform.viewport.pan = {200.3, 150.8};
  snapped.gridPixelRatio = 2;
  RecordingPainter painter;
  paintGrid(painter, snapped);
  EXPECT_EQ(painter.calls[2].pieces[0][0].x, 200.25);
  EXPECT_EQ(painter.calls[2].pieces[1][0].y, 150.75);
}

TEST_F(CanvasRenderer, LeavesOutWhatIsNotSeenAndShowsTinyThingsAsDots) {
  EXPECT_TRUE(paintEntity(LineEntity{{}, {1000, 0}, {1010, 0}}).empty());
  EXPECT_TRUE(paintEntity(PolygonEntity{{}, {}}).empty());
  const auto dot = paintEntity(RectangleEntity{{}, {0, 0}, {0.1, 0.1}});
  ASSERT_EQ(dot.size(), 1u);
  EXPECT_EQ(dot[0].pieces[0][0], dot[0].pieces[0][1]);
}

TEST_F(CanvasRenderer, CopesWithNumbersThatNoPainterCounts) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  const double nan = std::nan("");
  const auto& system = sketch.drawing->wallSystemSpecs.at(0);
  EntityList entities;
  for (const double big : {1e5, 1e9, 1e17, 1e300, inf, nan}) {
    for (const SketchPoint far : {SketchPoint{big, 0}, SketchPoint{-big, big}, SketchPoint{0, -big}}) {
      entities.append(LineEntity{{}, {0, 0}, far});
      entities.append(LineEntity{{}, far * -1, far});
      entities.append(WallEntity{{}, {0, 0}, far, system.id});
      entities.append(CircleEntity{{}, far, big});
      entities.append(CircleEntity{{}, {0, 0}, big});
      entities.append(ArcEntity{{}, far, big, 0, 3});
      entities.append(ArcEntity{{}, {0, 0}, 10, big, -big});
      entities.append(RectangleEntity{{}, {0, 0}, {far.x, far.y}});
      entities.append(PolygonEntity{{}, {{0, 0}, far, {10, big}, {-big, 3}}});
    }
  }
  RecordingPainter painter;
  const CanvasFrame now = frame();
  paintEntities(painter, now, entities, sketch.drawing->wallSystemSpecs);
  const SketchBox box = now.clipBox().grown(1);
  EXPECT_GT(painter.calls.size(), 20u);
  for (const auto& call : painter.calls) {
    for (const auto& piece : call.pieces) {
      for (const SketchPoint point : piece) EXPECT_TRUE(box.contains(point)) << point.x << ", " << point.y;
    }
    if (call.isEllipse) {
      EXPECT_TRUE(box.contains(call.ellipse.center));
    }
  }
}

TEST_F(CanvasRenderer, PaintsCleanWallsAsOneOutline) {
  const auto& systems = sketch.drawing->wallSystemSpecs;
  const EntityList corner{WallEntity{UUID::random(), {0, 0}, {30, 0}, systems[0].id},
                          WallEntity{UUID::random(), {0, 0}, {0, 30}, systems[0].id}};
  RecordingPainter painter;
  paintEntities(painter, frame(), corner, systems, {}, drawingLook({true, true, true}, corner, systems));
  ASSERT_EQ(painter.calls.size(), 2u) << "one area, and no line down the middle";
  EXPECT_EQ(painter.calls[0].pieces.size(), 2u);
  EXPECT_EQ(painter.calls[1].pieces.size(), 6u) << "two faces each, a cap each, nothing in the corner";
  EXPECT_NEAR(painter.calls[1].stroke.width, 0.5 * 96 / 25.4, 1e-9);
}

TEST_F(CanvasRenderer, PaintsTheSeenPartOfAGiantCircle) {
  // Its edge runs through the origin of the sketch.
  const double radius = 1e9;
  const auto calls = paintEntity(CircleEntity{{}, {radius, 0}, radius});
  ASSERT_EQ(calls.size(), 1u);
  bool passesMiddle = false;
  for (const auto& piece : calls[0].pieces) {
    for (std::size_t i = 0; i + 1 < piece.size(); ++i) {
      const auto seen = clippedSegment({piece[i], piece[i + 1]}, {199, 149, 201, 151});
      passesMiddle |= seen.has_value();
    }
  }
  EXPECT_TRUE(passesMiddle);
  // The half of the box right of the edge is inside.
  const SketchBox box{0, 0, 400, 300};
  const auto disc = clippedDisc({200 + 4 * radius, 150}, 4 * radius, box);
  EXPECT_NEAR(polygonArea(disc), 200 * 300, 200);
  EXPECT_EQ(clippedDisc({200, 150}, 1e9, box).size(), 4u);
  EXPECT_TRUE(clippedDisc({1e9, 150}, 1e8, box).empty());
}

TEST_F(CanvasRenderer, CutsDashedLinesWithoutMovingTheirDashes) {
  // 80,000 view points long; the canvas begins 40,000 along it.
  const auto calls = paintEntity(WallEntity{{}, {-10000, 0}, {10000, 0}, UUID::random()});
  const auto& line = calls.back();
  ASSERT_TRUE(line.stroke.isDashed());
  const double cut = line.pieces[0][0].x;
  EXPECT_GT(cut, -2000);
  EXPECT_NEAR(line.stroke.dashOffset, std::fmod(cut - (200 - 40000), 7), 1e-6);
}

TEST_F(CanvasRenderer, LabelsTheSegmentBeingDrawn) {
  board.activateTool(SketchTool::line);
  const auto labelOf = [this](SketchPoint to) {
    board.beginDraft({0, 0});
    board.setDraftCurrent(to);
    return segmentLabel(board, board.viewport());
  };
  const auto level = labelOf({10, 0});
  ASSERT_TRUE(level);
  EXPECT_EQ(level->text, "10'");
  EXPECT_EQ(level->pill.center(), (SketchPoint{220, 150 - 46}));
  EXPECT_EQ(level->pill.height(), 20);
  EXPECT_EQ(level->pill.width(), 36) << "the smallest pill";
  EXPECT_EQ(labelOf({-10, 0})->pill.center(), (SketchPoint{180, 150 - 46})) << "always upwards";
  EXPECT_EQ(labelOf({0, 10})->pill.center(), (SketchPoint{246, 130})) << "to the right of a vertical";
  EXPECT_EQ(labelOf({0, -10})->pill.center(), (SketchPoint{246, 170}));
  EXPECT_NEAR(labelOf({10, -10})->pill.center().x, 220 + 46 * std::sqrt(0.5), 1e-9);
  EXPECT_EQ(labelOf({1234.5, 0})->pill.width(), 7 * 7 + 14) << "1234'6\" has seven characters";
  EXPECT_FALSE(labelOf({0, 0}));
}

// --- Scenes, each with its text in golden/; OSTRELON_UPDATE_GOLDEN=1 writes them

struct Scene {
  const char* name;
  void (*make)(Board& board);
};

const EntitySnapTarget kCorner{.point = {5, 5}, .entityName = "Line 1"};

UUID idAt(const Board& board, std::size_t position) { return entityID(board.sketch().entities()[position]); }

void draft(Board& board, SketchTool tool, SketchPoint to) {
  board.activateTool(tool);
  board.beginDraft({0, 0});
  board.setDraftCurrent(to);
}

const std::vector<Scene>& scenes() {
  static const std::vector<Scene> all{
      {"grid", [](Board& b) { setShowGrid(b.sketch(), true); }},
      {"entities",
       [](Board& b) {
         b.restoreSnapshot(
             {LineEntity{{}, {0, 0}, {10, 5}}, CircleEntity{{}, {1, 2}, 3},
              RectangleEntity{{}, {10, 5}, {-10, -5}}, PolygonEntity{{}, {{0, 0}, {10, 0}, {0, 5}}},
              ArcEntity{{}, {0, 0}, 10, -std::numbers::pi / 2, 0}, ArcEntity{{}, {0, 0}, 10, 1, 1 + 1e-7},
              WallEntity{{}, {0, 0}, {20, 0}, b.sketch().drawing->wallSystemSpecs.at(2).id},
              WallEntity{{}, {0, 9}, {20, 9}, UUID{}}});
       }},
      {"openings",
       [](Board& b) {
         b.sketch().edit([](Drawing& drawing) {
           const UUID wall = UUID::random();
           drawing.wallSystemSpecs[0].thickness = 1;
           drawing.entities = {WallEntity{wall, {0, 0}, {20, 0}, drawing.wallSystemSpecs[0].id}};
           using Kind = OpeningKind;
           drawing.plan.openings = {
               {UUID::random(), wall, Kind::door, 2, 3, DoorHinge::right, DoorSwing::out},
               {UUID::random(), wall, Kind::window, 7, 4},
               {UUID::random(), wall, Kind::opening, 12, 3},
               {UUID::random(), wall, Kind::door, 18, 3}};
         });
       }},
      {"opening_selected",
       [](Board& b) {
         b.sketch().edit([](Drawing& drawing) {
           const UUID wall = UUID::random();
           drawing.wallSystemSpecs[0].thickness = 1;
           drawing.entities = {WallEntity{wall, {0, 0}, {20, 0}, drawing.wallSystemSpecs[0].id}};
           drawing.plan.openings = {{UUID::random(), wall, OpeningKind::door, 2, 3}};
         });
         b.selectAtPoint({3, 0}, false);
       }},
      {"opening_dragged",
       [](Board& b) {
         b.sketch().edit([](Drawing& drawing) {
           const UUID wall = UUID::random();
           drawing.wallSystemSpecs[0].thickness = 1;
           drawing.entities = {WallEntity{wall, {0, 0}, {20, 0}, drawing.wallSystemSpecs[0].id}};
           drawing.plan.openings = {{UUID::random(), wall, OpeningKind::window, 2, 3},
                                    {UUID::random(), wall, OpeningKind::opening, 14, 3}};
         });
         b.beginSelectDrag({3, 0});
         b.updateSelectDrag({8, 1});
       }},
      {"guides",
       [](Board& b) {
         b.publishSnap({.point = {5, 5},
                        .axes = {AxisSnap::horizontal, AxisSnap::vertical, AxisSnap::diagonalUp,
                                 AxisSnap::diagonalDown}},
                       SketchPoint{2, 1});
       }},
      {"draft_line",
       [](Board& b) {
         draft(b, SketchTool::line, {10, 0});
       }},
      {"draft_too_short",
       [](Board& b) {
         draft(b, SketchTool::line, {0.9, 0});
       }},
      {"draft_circle",
       [](Board& b) {
         draft(b, SketchTool::circle, {3, 4});
       }},
      {"draft_rectangle",
       [](Board& b) {
         draft(b, SketchTool::rectangle, {10, 5});
       }},
      {"draft_rectangle_too_thin",
       [](Board& b) {
         draft(b, SketchTool::rectangle, {10, 0.5});
       }},
      {"draft_wall",
       [](Board& b) {
         draft(b, SketchTool::wall, {20, 0});
       }},
      {"draft_polygon",
       [](Board& b) {
         b.activateTool(SketchTool::polygon);
         b.addPolygonVertex({0, 0});
         b.addPolygonVertex({10, 0});
         b.updatePolygonDraft({10, 10});
       }},
      {"marker_at_its_source",
       [](Board& b) {
         b.publishSnap(
             {.point = {5, 5}, .entitySnap = kCorner, .entitySnapSourcePoint = SketchPoint{5, 5.4}});
       }},
      {"marker_and_source",
       [](Board& b) {
         b.publishSnap({.point = {5, 5}, .entitySnap = kCorner, .entitySnapSourcePoint = SketchPoint{5, 6}});
       }},
      {"marker_of_the_grid",
       [](Board& b) {
         b.publishSnap({.point = {10, 10}, .gridSnap = GridSnapTarget{{10, 10}, {}, false}});
       }},
      {"pulse",
       [](Board& b) {
         b.activateTool(SketchTool::line);
         b.startTrackingDwell(kCorner, Date());
         b.advanceTrackingDwell(advanced(Date(), Seconds(0.3125)));
       }},
      {"lock", [](Board& b) { b.lockTrackingTarget(kCorner); }},
      {"lock_and_draft",
       [](Board& b) {
         draft(b, SketchTool::line, {20, 10});
         b.lockTrackingTarget(kCorner);
       }},
      {"hover",
       [](Board& b) {
         addLine(b.sketch(), {0, 0}, {10, 0});
         b.hoverMoved(SketchPoint{220, 150});
       }},
      {"hover_on_the_selected",
       [](Board& b) {
         addLine(b.sketch(), {0, 0}, {10, 0});
         selectAll(b.sketch());
         b.hoverMoved(SketchPoint{220, 150});
       }},
      {"trim",
       [](Board& b) {
         addLine(b.sketch(), {0, -10}, {0, 10});
         addLine(b.sketch(), {-20, 0}, {20, 0});
         b.activateTool(SketchTool::trim);
         b.trimAt({0, 8});
         b.hoverMoved(SketchPoint{260, 150});
       }},
      {"selected_rectangle",
       [](Board& b) {
         addRectangle(b.sketch(), {0, 0}, {10, 5});
         selectSingleEntity(b.sketch(), idAt(b, 0));
       }},
      {"selected_line",
       [](Board& b) {
         addLine(b.sketch(), {0, 0}, {5, 5});
         selectSingleEntity(b.sketch(), idAt(b, 0));
       }},
      {"selected_both",
       [](Board& b) {
         addRectangle(b.sketch(), {0, 0}, {10, 5});
         addLine(b.sketch(), {0, 0}, {5, 5});
         selectAll(b.sketch());
       }},
      {"marquee_window",
       [](Board& b) {
         b.beginMarquee({100, 100}, {180, 160});
       }},
      {"marquee_crossing",
       [](Board& b) {
         b.beginMarquee({100, 100}, {180, 160});
         b.updateMarquee({20, 160});
       }},
  };
  return all;
}

TEST(CanvasScenes, ArePaintedAsTheirGoldenTextsSay) {
  for (const Scene& scene : scenes()) {
    SCOPED_TRACE(scene.name);
    TestWorkspace on;
    on.board.resizeCanvas({400, 300});
    setShowGrid(on.sketch, false);
    scene.make(on.board);
    RecordingPainter painter;
    paintCanvas(painter, on.board, {{on.board.viewport(), on.board.view->canvasSize}, colors()});
    const std::string golden =
        std::string(OSTRELON_SOURCE_DIR "/tests/interaction/golden/") + scene.name + ".txt";
    if (std::getenv("OSTRELON_UPDATE_GOLDEN") != nullptr) testing::writeBytes(golden, painter.text());
    EXPECT_EQ(painter.text(), testing::readBytes(golden));
  }
}

}  // namespace
}  // namespace ostrelon
