#include "interaction/canvas_renderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "core/sketch_view_model.h"
#include "interaction/canvas_clipping.h"
#include "interaction/segment_label.h"
#include "support/recording_painter.h"
#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using testing::PaintCall;
using testing::RecordingPainter;
using testing::TestSketch;
using Points = std::vector<SketchPoint>;

const ThemePalette& colors() { return lightPalette(); }

/// A sketch on a canvas of 400 by 300 with the origin in its middle at 4 view points a unit.
class CanvasRenderer : public ::testing::Test, protected TestSketch {
 protected:
  CanvasRenderer() { sketch.updateCanvasSize({400, 300}); }

  CanvasFrame frame() const { return {{*sketch.viewport, *sketch.canvasSize}, colors()}; }
  std::vector<PaintCall> paint(CanvasLayer layer) const {
    RecordingPainter painter;
    paintLayer(painter, layer, sketch, frame());
    return painter.calls;
  }
  std::vector<PaintCall> paintEntity(const SketchEntity& entity) const {
    RecordingPainter painter;
    paintEntities(painter, frame(), EntityList{entity}, *sketch.wallSystemSpecs);
    return painter.calls;
  }
  const UUID& lastID() const { return entityID(sketch.entities->back()); }
};

// --- Grid

TEST_F(CanvasRenderer, PaintsMinorLinesMajorLinesAndAxesInOneStrokeEach) {
  const auto calls = paint(CanvasLayer::grid);
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].stroke, (Stroke{.color = colors().border, .width = 1.0}));
  EXPECT_EQ(calls[1].stroke, (Stroke{.color = colors().mutedForeground, .opacity = 0.35, .width = 1.25}));
  EXPECT_EQ(calls[2].stroke, (Stroke{.color = colors().foreground, .opacity = 0.25, .width = 1.5}));
  // Step 10; x is seen from -50 to 50 and painted from -70 to 70, y from -37.5 to 37.5 and -60 to 60.
  EXPECT_EQ(calls[0].pieces.size(), 15u + 13u);
  EXPECT_EQ(calls[0].pieces.front(), (Points{{200 - 280, 150 + 240}, {200 - 280, 150 - 240}}));
  EXPECT_EQ(calls[0].pieces.back(), (Points{{200 - 280, 150 - 240}, {200 + 280, 150 - 240}}));
  // Major lines at -100, -50, 0, 50 both ways.
  EXPECT_EQ(calls[1].pieces.size(), 4u + 4u);
  EXPECT_EQ(calls[1].pieces.front().front().x, 200 - 400);
  EXPECT_EQ(calls[2].pieces, (std::vector<Points>{{{200, 390}, {200, -90}}, {{-80, 150}, {480, 150}}}));
}

TEST_F(CanvasRenderer, PaintsNoAxisThatLiesOutsideAndNoGridThatIsOff) {
  sketch.setViewport(-5000, 150, 4);
  EXPECT_EQ(paint(CanvasLayer::grid)[2].pieces.size(), 1u);
  sketch.setShowGrid(false);
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

// --- Entities

TEST_F(CanvasRenderer, PaintsEveryKindOfEntityWithTheBaseStroke) {
  const Stroke base{
      .color = colors().foreground, .width = 1.5, .cap = LineCap::round, .join = LineJoin::round};
  const auto only = [&](const SketchEntity& entity) {
    auto calls = paintEntity(entity);
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls.at(0).stroke, base);
    return calls.at(0);
  };
  EXPECT_EQ(only(LineEntity{{}, {0, 0}, {10, 5}}).pieces[0], (Points{{200, 150}, {240, 130}}));
  EXPECT_EQ(only(CircleEntity{{}, {1, 2}, 3}).ellipse, (CanvasEllipse{{204, 142}, 12}));

  const auto rectangle = only(RectangleEntity{{}, {10, 5}, {-10, -5}});
  EXPECT_EQ(rectangle.pieces[0], (Points{{200, 150}, {240, 150}, {240, 130}, {200, 130}}));
  EXPECT_TRUE(rectangle.closed[0]);

  const auto polygon = only(PolygonEntity{{}, {{0, 0}, {10, 0}, {0, 5}}});
  EXPECT_EQ(polygon.pieces[0], (Points{{200, 150}, {240, 150}, {200, 130}}));
  EXPECT_TRUE(polygon.closed[0]);

  // A quarter, through 0: from straight down to straight right, 33 points.
  const auto arc = only(ArcEntity{{}, {0, 0}, 10, -std::numbers::pi / 2, 0});
  ASSERT_EQ(arc.pieces[0].size(), 33u);
  EXPECT_NEAR(arc.pieces[0].front().y, 190, 1e-9);
  EXPECT_NEAR(arc.pieces[0][16].x, 200 + 40 * std::sqrt(0.5), 1e-9);
  EXPECT_NEAR(arc.pieces[0].back().x, 240, 1e-9);
  EXPECT_FALSE(arc.closed[0]);
  EXPECT_TRUE(paintEntity(ArcEntity{{}, {0, 0}, 10, 1, 1 + 1e-7}).empty());
}

TEST_F(CanvasRenderer, PaintsAWallAsAFilledBandWithADashedMiddle) {
  const auto& system = sketch.wallSystemSpecs->at(2);  // 8 thick
  auto calls = paintEntity(WallEntity{{}, {0, 0}, {20, 0}, system.id});
  ASSERT_EQ(calls.size(), 3u);
  const Points band{{200, 134}, {280, 134}, {280, 166}, {200, 166}};
  EXPECT_EQ(calls[0].kind, PaintCall::Kind::fill);
  EXPECT_EQ(calls[0].pieces[0], band);
  EXPECT_EQ(calls[0].fill, (Fill{colors().muted, 0.55}));
  EXPECT_EQ(calls[1].pieces[0], band);
  EXPECT_TRUE(calls[1].closed[0]);
  EXPECT_EQ(calls[1].stroke.width, 1.5);
  EXPECT_EQ(calls[2].pieces[0], (Points{{200, 150}, {280, 150}}));
  EXPECT_EQ(calls[2].stroke, (Stroke{.color = colors().foreground, .width = 0.75, .dash = {4, 3}}));

  calls = paintEntity(WallEntity{{}, {0, 0}, {20, 0}, UUID::random()});
  EXPECT_EQ(calls[1].pieces[0][0], (SketchPoint{200, 150 - 12})) << "an unknown system is 6 thick";
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
  const auto& system = sketch.wallSystemSpecs->at(0);
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
  paintEntities(painter, now, entities, *sketch.wallSystemSpecs);
  const SketchBox box = now.clipBox().grown(1);
  EXPECT_GT(painter.calls.size(), 20u);
  for (const auto& call : painter.calls) {
    for (const auto& piece : call.pieces) {
      for (const SketchPoint point : piece) EXPECT_TRUE(box.contains(point)) << point.x << ", " << point.y;
    }
    if (call.shape == PaintCall::Shape::ellipse) {
      EXPECT_TRUE(box.contains(call.ellipse.center));
    }
  }
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

// --- Drafts and snaps

TEST_F(CanvasRenderer, PaintsGuidesThroughTheAnchorUnderTheEntities) {
  EXPECT_TRUE(paint(CanvasLayer::snapGuides).empty());
  sketch.publishSnap(
      {.point = {5, 5},
       .axes = {AxisSnap::horizontal, AxisSnap::vertical, AxisSnap::diagonalUp, AxisSnap::diagonalDown}},
      SketchPoint{2, 1});
  const auto calls = paint(CanvasLayer::snapGuides);
  ASSERT_EQ(calls.size(), 4u);
  for (const auto& call : calls) {
    EXPECT_EQ(call.stroke,
              (Stroke{.color = colors().active, .opacity = 0.85, .width = 1.25, .dash = {6, 4}}));
  }
  // Seen: x from -50 to 50, y from -37.5 to 37.5; guides reach 40 units beyond.
  EXPECT_EQ(calls[0].pieces[0], (Points{{200 - 360, 146}, {200 + 360, 146}}));
  EXPECT_EQ(calls[1].pieces[0], (Points{{208, 150 + 310}, {208, 150 - 310}}));
  EXPECT_EQ(calls[2].pieces[0], (Points{{200 - 360, 150 + 364}, {200 + 360, 150 - 356}}));
  EXPECT_EQ(calls[3].pieces[0], (Points{{200 - 360, 150 - 372}, {200 + 360, 150 + 348}}));
}

TEST_F(CanvasRenderer, PreviewsWhatADraftWouldAdd) {
  const auto previewed = [this](SketchTool tool, SketchPoint to) {
    sketch.activateTool(tool);
    sketch.beginDraft({0, 0});
    sketch.setDraftCurrent(to);
    return paint(CanvasLayer::drafts);
  };
  const Stroke stroke{
      .color = colors().active, .width = 1.25, .cap = LineCap::round, .join = LineJoin::round};
  EXPECT_EQ(previewed(SketchTool::line, {10, 0}).at(0).stroke, stroke);
  EXPECT_TRUE(previewed(SketchTool::line, {0.9, 0}).empty()) << "too short to be added";
  EXPECT_EQ(previewed(SketchTool::circle, {3, 4}).at(0).ellipse.radius, 20);
  EXPECT_TRUE(previewed(SketchTool::rectangle, {10, 0.5}).empty());
  EXPECT_TRUE(previewed(SketchTool::rectangle, {10, 5}).at(0).closed[0]);

  const auto wall = previewed(SketchTool::wall, {20, 0});
  ASSERT_EQ(wall.size(), 3u);
  EXPECT_EQ(wall[0].fill, (Fill{colors().muted, 0.55}));
  EXPECT_EQ(wall[1].pieces[0][0], (SketchPoint{200, 150 - 9})) << "the active system is 4.5 thick";
  EXPECT_EQ(wall[1].stroke, stroke);
  EXPECT_EQ(wall[2].stroke.color, colors().active);

  sketch.activateTool(SketchTool::polygon);
  sketch.setShowGrid(false);
  sketch.addPolygonVertex({0, 0});
  sketch.addPolygonVertex({10, 0});
  sketch.updatePolygonDraft({10, 10});
  const auto polygon = paint(CanvasLayer::drafts);
  ASSERT_EQ(polygon.size(), 3u);
  EXPECT_EQ(polygon[0].pieces[0], (Points{{200, 150}, {240, 150}, {240, 110}}));
  EXPECT_FALSE(polygon[0].closed[0]);
  EXPECT_EQ(polygon[0].stroke, stroke);
  EXPECT_EQ(polygon[2].ellipse, (CanvasEllipse{{240, 150}, 3}));
  EXPECT_EQ(polygon[2].fill, Fill{colors().active});
}

TEST_F(CanvasRenderer, MarksTheSnappedPoints) {
  const EntitySnapTarget target{.point = {5, 5}, .entityName = "Line 1"};
  sketch.publishSnap({.point = {5, 5}, .entitySnap = target, .entitySnapSourcePoint = SketchPoint{5, 5.4}});
  auto calls = paint(CanvasLayer::markers);
  ASSERT_EQ(calls.size(), 2u) << "a source so near is the same point";
  EXPECT_EQ(calls[0].rect, (SketchBox{215, 125, 225, 135}));
  EXPECT_EQ(calls[0].fill, Fill{colors().active});
  EXPECT_EQ(calls[1].stroke, (Stroke{.color = colors().active, .opacity = 0.9, .width = 1}));

  sketch.publishSnap({.point = {5, 5}, .entitySnap = target, .entitySnapSourcePoint = SketchPoint{5, 6}});
  calls = paint(CanvasLayer::markers);
  ASSERT_EQ(calls.size(), 4u);
  EXPECT_EQ(calls[0].rect.center(), (SketchPoint{220, 126})) << "the source comes first";

  sketch.publishSnap({.point = {10, 10}, .gridSnap = GridSnapTarget{{10, 10}, {}, false}});
  calls = paint(CanvasLayer::markers);
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].rect, (SketchBox{235, 105, 245, 115}));
  EXPECT_EQ(calls[0].stroke, (Stroke{.color = kThemeGreen, .opacity = 0.9, .width = 1.5}));
}

TEST_F(CanvasRenderer, PulsesWhilePointIsAboutToLockAndMarksTheLock) {
  sketch.activateTool(SketchTool::line);
  const EntitySnapTarget target{.point = {0, 0}, .entityName = "Line 1"};
  sketch.startTrackingDwell(target, scheduler.now());
  sketch.advanceTrackingDwell(advanced(scheduler.now(), Seconds(0.3125)));
  auto calls = paint(CanvasLayer::dwellPulse);
  ASSERT_EQ(calls.size(), 2u);
  // Progress 0.3125: the swing is sin(2.5π) = 1, at its full height.
  EXPECT_EQ(calls[0].rect, SketchBox::centered({200, 150}, 5.625));
  EXPECT_NEAR(calls[0].fill.opacity, 0.490625, 1e-12);
  EXPECT_NEAR(calls[1].ellipse.radius, 5.625 + 3 + 4 + 0.9375, 1e-9);
  EXPECT_NEAR(calls[1].stroke.opacity, 0.9, 1e-12);
  EXPECT_EQ(calls[1].stroke.width, 1.75);
  EXPECT_TRUE(paint(CanvasLayer::lock).empty());

  sketch.lockTrackingTarget(target);
  EXPECT_TRUE(paint(CanvasLayer::dwellPulse).empty());
  calls = paint(CanvasLayer::lock);
  ASSERT_EQ(calls.size(), 4u);
  EXPECT_EQ(calls[0].pieces[0], (Points{{0, 150}, {400, 150}}));
  EXPECT_EQ(calls[1].pieces[0], (Points{{200, 0}, {200, 300}}));
  EXPECT_EQ(calls[1].stroke, (Stroke{.color = colors().active, .opacity = 0.9, .width = 1.5}));
  EXPECT_EQ(calls[2].rect, SketchBox::centered({200, 150}, 6.5));
  EXPECT_EQ(calls[2].fill, (Fill{colors().active, 0.85}));
  EXPECT_EQ(calls[3].stroke, (Stroke{.color = colors().active, .width = 1.5}));

  sketch.beginDraft({20, 0});
  sketch.setDraftCurrent({20, 10});
  sketch.lockTrackingTarget(target);
  calls = paint(CanvasLayer::lock);
  ASSERT_EQ(calls.size(), 5u);
  EXPECT_EQ(calls[2].pieces[0], (Points{{200, 150}, {280, 110}}));
  EXPECT_EQ(calls[2].stroke.width, 2.0);
}

// --- Highlights and the selection

TEST_F(CanvasRenderer, HighlightsTheHoveredEntityUnlessItIsSelected) {
  sketch.addLine({0, 0}, {10, 0});
  sketch.hoverMoved(SketchPoint{220, 150});
  auto calls = paint(CanvasLayer::hover);
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].pieces[0], (Points{{200, 150}, {240, 150}}));
  EXPECT_EQ(calls[0].stroke, (Stroke{.color = colors().active, .width = 1.75, .dash = {5, 4}}));
  EXPECT_TRUE(paint(CanvasLayer::trim).empty()) << "that layer is the trim tool's";
  sketch.selectSingleEntity(lastID());
  EXPECT_TRUE(paint(CanvasLayer::hover).empty());
}

TEST_F(CanvasRenderer, HighlightsTheCuttingEdgeThenTheTrimTarget) {
  sketch.addLine({0, -10}, {0, 10});
  sketch.addLine({-20, 0}, {20, 0});
  sketch.activateTool(SketchTool::trim);
  sketch.handleTrimClick({0, 8});
  sketch.hoverMoved(SketchPoint{260, 150});
  const auto calls = paint(CanvasLayer::trim);
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].stroke.width, 2.25);
  EXPECT_FALSE(calls[0].stroke.isDashed());
  EXPECT_EQ(calls[0].pieces[0][0], (SketchPoint{200, 190}));
  EXPECT_EQ(calls[1].stroke.width, 1.75);
  EXPECT_EQ(calls[1].stroke.dash, (LineDash{5, 4}));
  EXPECT_TRUE(paint(CanvasLayer::hover).empty());
}

TEST_F(CanvasRenderer, PaintsASelectionInThreePassesAndHandlesForOne) {
  const Stroke glow{
      .color = colors().active, .opacity = 0.24, .width = 7, .cap = LineCap::round, .join = LineJoin::round};
  sketch.addRectangle({0, 0}, {10, 5});
  sketch.selectSingleEntity(lastID());
  auto calls = paint(CanvasLayer::selection);
  ASSERT_EQ(calls.size(), 3u + 2 * 4);
  EXPECT_EQ(calls[0].fill, (Fill{colors().active, 0.14}));
  EXPECT_EQ(calls[1].stroke, glow);
  EXPECT_EQ(calls[2].stroke.opacity, 1);
  EXPECT_EQ(calls[2].stroke.width, 2.75);
  EXPECT_EQ(calls[3].ellipse, (CanvasEllipse{{200, 150}, 6}));
  EXPECT_EQ(calls[3].fill, Fill{colors().active});
  EXPECT_EQ(calls[4].stroke, (Stroke{.color = colors().card, .width = 2}));

  sketch.addLine({0, 0}, {5, 5});
  sketch.selectSingleEntity(lastID());
  calls = paint(CanvasLayer::selection);
  ASSERT_EQ(calls.size(), 2u + 2 * 2) << "a line has nothing to fill";
  EXPECT_EQ(calls[0].stroke, glow);

  sketch.selectAll();
  EXPECT_EQ(paint(CanvasLayer::selection).size(), 3u + 2) << "several have no handles";
}

TEST_F(CanvasRenderer, PaintsTheTwoMarqueesApart) {
  sketch.beginMarquee({100, 100}, {180, 160});
  auto calls = paint(CanvasLayer::marquee);
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].fill, (Fill{colors().foreground, 0.04}));
  EXPECT_EQ(calls[1].stroke,
            (Stroke{.color = colors().foreground, .opacity = 0.9, .width = 1.25, .dash = {4, 3}}));
  EXPECT_EQ(calls[1].pieces[0][0], (SketchPoint{100, 160}));
  EXPECT_EQ(calls[1].pieces[0][2], (SketchPoint{180, 100}));
  sketch.updateMarquee({20, 160});
  calls = paint(CanvasLayer::marquee);
  EXPECT_EQ(calls[0].fill, (Fill{colors().active, 0.08}));
  EXPECT_EQ(calls[1].stroke.color, colors().active);
}

TEST_F(CanvasRenderer, PaintsItsLayersInOrderInOnePass) {
  sketch.addLine({0, 0}, {10, 0});
  sketch.selectSingleEntity(lastID());
  sketch.publishSnap(
      {.point = {5, 0}, .axes = {AxisSnap::horizontal}, .gridSnap = GridSnapTarget{{5, 0}, {}, false}},
      SketchPoint{0, 0});
  RecordingPainter all;
  paintCanvas(all, sketch, frame());
  RecordingPainter layers;
  paintBackground(layers, frame());
  for (const CanvasLayer layer : {CanvasLayer::grid, CanvasLayer::snapGuides, CanvasLayer::entities,
                                  CanvasLayer::selection, CanvasLayer::segmentLabel, CanvasLayer::markers}) {
    const std::size_t before = layers.calls.size();
    paintLayer(layers, layer, sketch, frame());
    EXPECT_GT(layers.calls.size(), before);
  }
  ASSERT_EQ(all.calls.size(), layers.calls.size());
  for (std::size_t i = 0; i < all.calls.size(); ++i) {
    EXPECT_EQ(all.calls[i].kind, layers.calls[i].kind) << i;
    EXPECT_EQ(all.calls[i].stroke, layers.calls[i].stroke) << i;
    EXPECT_EQ(all.calls[i].fill, layers.calls[i].fill) << i;
  }
}

// --- The segment label

TEST_F(CanvasRenderer, LabelsTheSegmentBeingDrawn) {
  sketch.activateTool(SketchTool::line);
  const auto labelOf = [this](SketchPoint to) {
    sketch.beginDraft({0, 0});
    sketch.setDraftCurrent(to);
    return segmentLabel(sketch, sketch.viewport);
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

  labelOf({10, 0});
  const auto calls = paint(CanvasLayer::segmentLabel);
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].fill, (Fill{colors().card, 0.96}));
  EXPECT_EQ(calls[0].cornerRadius, 5);
  EXPECT_EQ(calls[1].stroke, (Stroke{.color = colors().border, .width = 1}));
  EXPECT_EQ(calls[2].text, "10'");
}

}  // namespace
}  // namespace ostrelon
