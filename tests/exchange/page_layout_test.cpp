// Drawings on paper: scales as people write them, and what lands where.
#include "exchange/page_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numbers>

#include "interaction/canvas_transform.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;

double ratioOf(std::string_view text) {
  const auto scale = parseDrawingScale(text);
  return scale ? scale->ratio : 0;
}

TEST(DrawingScale, IsReadAsPeopleWriteIt) {
  for (const char* quarter : {"1:48", "1/4\"", "1/4in", "0.25 in", "1/4\" = 1'", "1/4\"=1'-0\"",
                              "1/4 inch to the foot", " 1/4 in = 1 ft ", "1/4″ = 1′"}) {
    EXPECT_DOUBLE_EQ(ratioOf(quarter), 48) << quarter;
  }
  EXPECT_DOUBLE_EQ(ratioOf("1 1/2\" = 1'-0\""), 8);
  EXPECT_DOUBLE_EQ(ratioOf("1-1/2in"), 8);
  EXPECT_DOUBLE_EQ(ratioOf("1\" = 20'"), 240);
  EXPECT_DOUBLE_EQ(ratioOf("1\" = 1'6\""), 18);
  EXPECT_DOUBLE_EQ(ratioOf("1:50"), 50);
  EXPECT_DOUBLE_EQ(ratioOf("2:1"), 0.5);
  for (const char* wrong : {"", "48", "1/4", "1:0", "0:1", "0\"", "1/0\"", "-1:48", "1:48x", "1\" = 20",
                            "1\" = ", "nan:1", "1:1e9", "1:99999999"}) {
    EXPECT_FALSE(parseDrawingScale(wrong)) << wrong;
  }
}

TEST(DrawingScale, CommonOnesHaveTheirNamesAndReadBack) {
  EXPECT_EQ(drawingScaleText({48}), "1/4\" = 1'-0\"");
  EXPECT_EQ(drawingScaleText({8}), "1 1/2\" = 1'-0\"");
  EXPECT_EQ(drawingScaleText({240}), "1\" = 20'");
  EXPECT_EQ(drawingScaleText({50}), "1:50");
  EXPECT_EQ(drawingScaleText({1}), "1:1");
  for (const DrawingScale scale : commonScales()) {
    EXPECT_EQ(parseDrawingScale(drawingScaleText(scale)), scale) << drawingScaleText(scale);
  }
}

TEST(PaperSizes, AreFoundByNameHoweverItIsWritten) {
  EXPECT_EQ(paperSizeNamed("arch-d")->height, 36 * 72);
  EXPECT_EQ(paperSizeNamed(" ansi c")->name, "ANSI C");
  EXPECT_NEAR(paperSizeNamed("A4")->width, 595.28, 0.01);
  for (const char* other : {"ANSI B", "Ledger", "11x17"}) EXPECT_EQ(paperSizeNamed(other)->name, "Tabloid");
  EXPECT_EQ(paperSizeNamed("ansi-a")->name, "Letter");
  EXPECT_EQ(paperSizeNamed("ISO A3")->name, "A3");
  EXPECT_FALSE(paperSizeNamed("napkin"));
}

SketchPoint onPage(const PageLayout& layout, int page, SketchPoint point) {
  return sketchPointToView(point, layout.viewport(page));
}

// The part of the drawing that a page shows.
SketchBox shownOn(const PageLayout& layout, int page) {
  const SketchViewport view = layout.viewport(page);
  const auto [width, height] = layout.page;
  return SketchBox::spanning(viewPointToSketch({layout.margin, layout.margin}, view),
                             viewPointToSketch({width - layout.margin, height - layout.margin}, view));
}

TEST(PageLayout, PutsADrawingInTheMiddleOfOneSheetAtTrueScale) {
  const PageLayout layout =
      layOutPages(SketchBox{0, 0, 40, 20}, {.paper = *paperSizeNamed("Letter"), .scale = DrawingScale{48}});
  EXPECT_EQ(layout.pageCount(), 1);
  EXPECT_EQ(layout.page, (SketchSize{792, 612})) << "40 feet are ten inches, so the sheet is turned";
  const SketchPoint lower = onPage(layout, 0, {0, 0});
  const SketchPoint upper = onPage(layout, 0, {40, 20});
  EXPECT_NEAR(upper.x - lower.x, 720, 1e-9);
  EXPECT_NEAR(lower.y - upper.y, 360, 1e-9);
  EXPECT_NEAR((lower.x + upper.x) / 2, 396, 1e-9);
  EXPECT_NEAR((lower.y + upper.y) / 2, 306, 1e-9);
  EXPECT_NEAR(shownOn(layout, 0).minX, 0, 1e-9) << "the printable part is just as wide as the drawing";
  EXPECT_NEAR(shownOn(layout, 0).maxX, 40, 1e-9);
}

TEST(PageLayout, GoesOnSeveralSheetsWhoseEdgesMeet) {
  const PageLayout layout =
      layOutPages(SketchBox{-50, -30, 50, 30}, {.paper = *paperSizeNamed("Letter"),
                                                .orientation = PageOrientation::portrait,
                                                .scale = DrawingScale{48}});
  EXPECT_EQ(layout.columns, 4) << "25 inches on sheets with 7.5 printable";
  EXPECT_EQ(layout.rows, 2) << "15 inches on sheets with 10 printable";
  SketchBox all = shownOn(layout, 0);
  for (int row = 0; row < layout.rows; ++row) {
    for (int column = 0; column < layout.columns; ++column) {
      const SketchBox here = shownOn(layout, row * layout.columns + column);
      EXPECT_NEAR(here.width(), 30, 1e-9);
      if (column > 0) {
        EXPECT_NEAR(here.minX, shownOn(layout, row * layout.columns + column - 1).maxX, 1e-9);
      }
      if (row > 0) {
        EXPECT_NEAR(here.maxY, shownOn(layout, (row - 1) * layout.columns + column).minY, 1e-9);
      }
      all = all.united(here);
    }
  }
  EXPECT_LE(all.minX, -50);
  EXPECT_GE(all.maxX, 50);
  EXPECT_NEAR(all.minX + all.maxX, 0, 1e-9) << "centred on the sheets put together";
}

TEST(PageLayout, WithoutAScaleFillsOneSheet) {
  const PaperSize letter = *paperSizeNamed("Letter");
  const PageLayout wide = layOutPages(SketchBox{0, 0, 100, 1}, {.paper = letter});
  EXPECT_EQ(wide.page.width, 792);
  EXPECT_DOUBLE_EQ(wide.pointsPerUnit, 7.2);
  EXPECT_EQ(layOutPages(SketchBox{5, 5, 5, 5}, {.paper = letter}).pageCount(), 1) << "a point";
  EXPECT_EQ(layOutPages(std::nullopt, {.paper = letter}).pageCount(), 1) << "nothing";
}

TEST(PageLayout, RefusesWhatCannotBeMeant) {
  try {
    layOutPages(SketchBox{0, 0, 1e9, 1e9}, {.paper = *paperSizeNamed("A4"), .scale = DrawingScale{48}});
    FAIL();
  } catch (const PageLayoutError& error) {
    EXPECT_THAT(error.what(), HasSubstr("more than 400 sheets of A4"));
  }
  EXPECT_THROW(layOutPages(std::nullopt, {.paper = *paperSizeNamed("A4"), .margin = 300}), PageLayoutError);
}

TEST(PaintedBounds, CountsWallsWithTheirThicknessAndArcsByWhatIsSeen) {
  const std::vector<WallSystemSpec> systems{{UUID::random(), "W", 4, 96, ""}};
  const EntityList entities{
      WallEntity{UUID::random(), {0, 0}, {10, 0}, systems[0].id},
      ArcEntity{UUID::random(), {0, 0}, 5, 0, std::numbers::pi / 2},
      PolygonEntity{UUID::random(), {}},
  };
  const auto box = paintedBounds(entities, systems);
  ASSERT_TRUE(box);
  EXPECT_EQ(box->minY, -2);
  EXPECT_NEAR(box->minX, 0, 1e-12);
  EXPECT_NEAR(box->maxY, 5, 1e-12);
  EXPECT_FALSE(paintedBounds({}, systems));
}

}  // namespace
}  // namespace ostrelon
