#include "shell/canvas_widget.h"

#include <gtest/gtest.h>

#include <QNativeGestureEvent>
#include <QPaintEvent>
#include <QPointingDevice>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <random>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "interaction/canvas_renderer.h"
#include "shell/golden_picture.h"
#include "shell/pixel_canvas_painter.h"
#include "support/random_drawing.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::looksAlike;
using testing::looksLikeGolden;

/// A canvas of 640 by 440 in a window that is shown on no display; the origin is at (320, 220), at 4
/// view points a unit.
class CanvasWidgetTest : public ::testing::Test, protected testing::TestWorkspace {
 protected:
  CanvasWidgetTest() : canvas(board) {
    canvas.resize(640, 440);
    canvas.show();
    (void)QTest::qWaitForWindowExposed(&canvas);
    setShowGrid(sketch, false);
    addLine(sketch, {-40, 0}, {40, 0});
    addRectangle(sketch, {-20, 10}, {20, 20});
  }

  void press(QPointF at, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mousePress(&canvas, Qt::LeftButton, modifiers, at.toPoint());
  }
  void release(QPointF at, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseRelease(&canvas, Qt::LeftButton, modifiers, at.toPoint());
  }
  /// The pointer moves with these buttons held. Fractions of a view point pass, as on a real desktop.
  void move(QPointF at, Qt::MouseButtons buttons) {
    QMouseEvent event(QEvent::MouseMove, at, canvas.mapToGlobal(at), Qt::NoButton, buttons, {});
    QApplication::sendEvent(&canvas, &event);
  }
  void pinch(QPointF at, double magnification) {
    QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, at, at,
                              canvas.mapToGlobal(at), magnification, {});
    QApplication::sendEvent(&canvas, &event);
  }
  void wheel(QPointF at, QPoint angle, Qt::KeyboardModifiers modifiers = {}, QPoint pixels = {}) {
    QWheelEvent event(at, canvas.mapToGlobal(at), pixels, angle, {}, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &event);
  }
  const SketchEntity& line() const { return sketch.entities().front(); }
  bool isSelected(const SketchEntity& entity) const {
    return sketch.selection->ids.contains(entityID(entity));
  }
  QImage shown() {
    canvas.finishPainting();
    return canvas.grab().toImage();
  }

  CanvasWidget canvas;
};

TEST_F(CanvasWidgetTest, ReportsItsSize) {
  EXPECT_EQ(board.view->canvasSize, (SketchSize{640, 440}));
  QSignalSpy resized(&canvas, &CanvasWidget::resized);
  canvas.resize(500, 300);
  EXPECT_EQ(board.view->canvasSize, (SketchSize{500, 300}));
  EXPECT_EQ(resized.count(), 1);
}

TEST_F(CanvasWidgetTest, ADoubleClickClosesAPolygonBehindItsOwnVertices) {
  board.activateTool(SketchTool::polygon);
  for (const QPointF at : {QPointF(100, 100), QPointF(200, 100)}) {
    press(at);
    release(at);
  }
  // As a desktop sends it: press, release, double click, release.
  press({200, 200});
  release({200, 200});
  EXPECT_TRUE(board.polygonDraft() != nullptr);
  QMouseEvent second(QEvent::MouseButtonDblClick, QPointF(200, 200), canvas.mapToGlobal(QPointF(200, 200)),
                     Qt::LeftButton, Qt::LeftButton, {});
  QApplication::sendEvent(&canvas, &second);
  EXPECT_TRUE(board.polygonDraft() != nullptr) << "it is told with the second release";
  release({200, 200});
  EXPECT_FALSE(board.polygonDraft() != nullptr);
  ASSERT_EQ(sketch.entities().size(), 3u);
  EXPECT_GE(std::get<PolygonEntity>(sketch.entities().back()).vertices.size(), 3u);
}

TEST_F(CanvasWidgetTest, TheCoordinatesFollowDragsAndMarquees) {
  for (const QPointF from : {QPointF(330, 220), QPointF(420, 400)}) {
    press(from);
    move(from + QPointF(20, 20), Qt::LeftButton);
    move(from + QPointF(40, 8), Qt::LeftButton);
    EXPECT_TRUE(board.selectDrag() != nullptr || board.marquee() != nullptr);
    EXPECT_EQ(*board.cursor, (SketchPoint{(from.x() + 40 - 320) / 4, (220 - from.y() - 8) / 4}));
    release(from + QPointF(40, 8));
  }
}

TEST_F(CanvasWidgetTest, FollowsThePointerAndForgetsItWhenItLeaves) {
  move({320, 222}, Qt::NoButton);
  EXPECT_EQ(board.hover->entityID, entityID(line()));
  EXPECT_EQ(*board.cursor, (SketchPoint{0, -0.5}));
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&canvas, &leave);
  EXPECT_FALSE(board.hover->entityID.has_value());
  EXPECT_FALSE(board.cursor->has_value());
}

TEST_F(CanvasWidgetTest, TheWheelScrollsAndZoomsWithCtrl) {
  const SketchPoint pan = board.viewport().pan;
  wheel({100, 100}, {0, -120}, {}, {3, -7});
  EXPECT_EQ(board.viewport().pan, (pan + SketchPoint{3, -7}))
      << "what the device tells in pixels is taken as it is";
  wheel({100, 100}, {0, 120});
  EXPECT_GT(board.viewport().pan.y, pan.y);
  const SketchPoint before = board.viewport().pan;
  wheel({100, 100}, {0, 120}, Qt::ShiftModifier);
  EXPECT_EQ(board.viewport().pan.y, before.y);
  EXPECT_GT(board.viewport().pan.x, before.x);

  const SketchPoint under = viewPointToSketch({100, 100}, board.viewport());
  wheel({100, 100}, {0, 120}, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(board.viewport().scale, 5);
  wheel({100, 100}, {0, -240}, Qt::ControlModifier);
  EXPECT_NEAR(board.viewport().scale, 3.2, 1e-12);
  const SketchPoint stillUnder = viewPointToSketch({100, 100}, board.viewport());
  EXPECT_NEAR(stillUnder.x, under.x, 1e-9);
  EXPECT_NEAR(stillUnder.y, under.y, 1e-9);
}

TEST_F(CanvasWidgetTest, APinchZoomsAboutThePointer) {
  const SketchPoint under = viewPointToSketch({200, 150}, board.viewport());
  pinch({200, 150}, 0.5);
  EXPECT_DOUBLE_EQ(board.viewport().scale, 6);
  EXPECT_NEAR(viewPointToSketch({200, 150}, board.viewport()).x, under.x, 1e-9);
  pinch({200, 150}, -1);
  EXPECT_DOUBLE_EQ(board.viewport().scale, 6);
}

TEST_F(CanvasWidgetTest, TheMiddleButtonDragsTheView) {
  const SketchPoint pan = board.viewport().pan;
  QTest::mousePress(&canvas, Qt::MiddleButton, {}, QPoint(100, 100));
  move({130, 90}, Qt::MiddleButton);
  QTest::mouseRelease(&canvas, Qt::MiddleButton, {}, QPoint(130, 90));
  move({200, 200}, Qt::NoButton);
  EXPECT_EQ(board.viewport().pan, (pan + SketchPoint{30, -10}));
  EXPECT_TRUE(sketch.selection->ids.empty());
}

TEST_F(CanvasWidgetTest, ASecondaryClickSelectsAndAsksForTheMenu) {
  int menus = 0;
  QObject::connect(&canvas, &CanvasWidget::contextMenuRequested, &canvas,
                   [&menus](const ContextMenu&, const QPoint&) { ++menus; });
  QContextMenuEvent onLine(QContextMenuEvent::Mouse, QPoint(320, 220), canvas.mapToGlobal(QPoint(320, 220)));
  QApplication::sendEvent(&canvas, &onLine);
  EXPECT_EQ(menus, 1);
  EXPECT_TRUE(isSelected(line()));
  QContextMenuEvent onNothing(QContextMenuEvent::Mouse, QPoint(600, 400),
                              canvas.mapToGlobal(QPoint(600, 400)));
  QApplication::sendEvent(&canvas, &onNothing);
  EXPECT_EQ(menus, 1);
  EXPECT_TRUE(sketch.selection->ids.empty());
}

// --- What it shows

/// The same state, painted anew in one pass.
QImage paintedAnew(const Board& board, QSize size) {
  QImage image(size, QImage::Format_RGB32);
  PixelCanvasPainter painter(image, 1);
  CanvasFrame frame{{board.viewport(), board.view->canvasSize}, lightPalette()};
  frame.gridPixelRatio = 1;
  paintCanvas(painter, board, frame);
  return image;
}

TEST_F(CanvasWidgetTest, ItsKeptPicturesFollowEveryKindOfChange) {
  const auto isUpToDate = [this](const std::string& after) {
    return looksAlike(shown(), paintedAnew(board, canvas.size()), "canvas-after-" + after);
  };
  setShowGrid(sketch, true);
  EXPECT_TRUE(isUpToDate("start"));
  addWall(sketch, std::nullopt, {-60, -30}, {50, -40});
  EXPECT_TRUE(isUpToDate("adding"));
  board.pan(37, -21);
  EXPECT_TRUE(isUpToDate("a-pan"));
  board.pan(-12.5, 8.25);
  EXPECT_TRUE(isUpToDate("a-pan-by-fractions"));
  board.pan(-1000, 0);
  board.pan(990, 0);
  EXPECT_TRUE(isUpToDate("leaving-and-returning"));
  board.zoom(1.25, {100, 100});
  EXPECT_TRUE(isUpToDate("a-zoom"));
  nudgeSelectedEntity(sketch, 3, 12);
  EXPECT_TRUE(isUpToDate("a-move"));
  WallSystemSpec thick = sketch.drawing->wallSystemSpecs.front();
  thick.thickness = 12;
  updateWallSystemSpec(sketch, thick);
  EXPECT_TRUE(isUpToDate("a-thicker-system"));
  board.undo();
  EXPECT_TRUE(isUpToDate("undo"));
  canvas.resize(500, 380);
  EXPECT_TRUE(isUpToDate("a-resize"));
  for (int i = 0; i < 40; ++i) addCircle(sketch, {-60.0 + 3 * i, -20}, 4);
  selectAll(sketch);
  EXPECT_TRUE(isUpToDate("selecting-many"));
}

TEST_F(CanvasWidgetTest, ShowsWhatIsDraggedWhereItIs) {
  const auto isUpToDate = [this](const std::string& after) {
    return looksAlike(shown(), paintedAnew(board, canvas.size()), "canvas-while-" + after);
  };
  press({320, 220});
  move({340, 250}, Qt::LeftButton);
  move({350, 260}, Qt::LeftButton);
  EXPECT_TRUE(isUpToDate("dragging-one"));
  release({350, 260});
  EXPECT_TRUE(isUpToDate("having-dragged-one"));
  for (int i = 0; i < 40; ++i) addCircle(sketch, {-60.0 + 3 * i, -20}, 4);
  selectAll(sketch);
  press({80, 284});
  move({110, 300}, Qt::LeftButton);
  move({120, 310}, Qt::LeftButton);
  ASSERT_TRUE(board.selectDrag() != nullptr);
  EXPECT_TRUE(isUpToDate("dragging-many"));
  release({120, 310});
  EXPECT_TRUE(isUpToDate("having-dragged-many"));
}

// So many that a thread of its own paints them.
TEST_F(CanvasWidgetTest, ItsKeptPicturesFollowALargeDrawing) {
  const unsigned seed = testing::seed();
  SCOPED_TRACE(::testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  std::vector<SketchEntity> many;
  for (int i = 0; i < 12'000; ++i) {
    const SketchPoint at{below(4000) / 10.0 - 200, below(3000) / 10.0 - 150};
    if (i % 2 == 0) many.push_back(LineEntity{UUID::random(), at, at + SketchPoint{3, 2}});
    if (i % 2 == 1) many.push_back(CircleEntity{UUID::random(), at, 2});
  }
  addEntities(sketch, std::move(many));
  for (int i = 0; i < 30; ++i) {
    switch (below(6)) {
      case 0:
        board.zoom(below(2) == 0 ? 0.8 : 1.25, {300, 200});
        break;
      case 1:
      case 2:
        board.pan(below(300) - 150, below(300) - 150);
        break;
      case 3:
        addWall(sketch, std::nullopt, {below(200) - 100.0, 0}, {0, below(200) - 100.0});
        break;
      case 4:
        selectEntities(sketch, {below(12'000), below(12'000)});
        deleteSelection(sketch, messages);
        break;
      case 5:
        board.undo();
        break;
    }
    // Sometimes it gets no further than beginning before the next change comes.
    if (below(2) == 0) {
      canvas.repaint();
      continue;
    }
    ASSERT_TRUE(looksAlike(shown(), paintedAnew(board, canvas.size()), "canvas-large")) << "after step " << i;
  }
  EXPECT_TRUE(looksAlike(shown(), paintedAnew(board, canvas.size()), "canvas-large"));
  EXPECT_TRUE(canvas.isExact());
}

/// What a widget is asked to repaint.
class PaintWatch final : public QObject {
 public:
  explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
  QRegion painted;

 protected:
  bool eventFilter(QObject* /*object*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted += static_cast<QPaintEvent*>(event)->region();
    return false;
  }
};

TEST_F(CanvasWidgetTest, AMoveOfThePointerRepaintsWhatItChangesAndLittleMore) {
  setShowGrid(sketch, true);
  addCircle(sketch, {30, -20}, 12);
  PaintWatch watch(canvas);
  const auto settle = [&] {
    QApplication::processEvents();
    QApplication::processEvents();
  };
  for (const SketchTool tool :
       {SketchTool::select, SketchTool::line, SketchTool::wall, SketchTool::polygon, SketchTool::trim}) {
    board.activateTool(tool);
    if (tool != SketchTool::select) press({201, 141});
    if (tool == SketchTool::polygon || tool == SketchTool::trim) release({201, 141});
    // What the window still has to paint of its own accord, on a slow machine some time later, is not
    // counted.
    do {
      watch.painted = {};
      QTest::qWait(20);
    } while (!watch.painted.isEmpty() || !canvas.isExact());
    QImage before = shown();
    for (const QPointF at : {QPointF(320, 221), QPointF(250, 142), QPointF(282, 222), QPointF(440, 300),
                             QPointF(560, 140.5), QPointF(90, 400)}) {
      watch.painted = {};
      move(at, tool == SketchTool::line || tool == SketchTool::wall ? Qt::LeftButton : Qt::NoButton);
      settle();
      const QRegion painted = watch.painted;
      const QImage after = shown();
      QRegion changed;
      for (int y = 0; y < after.height(); ++y) {
        for (int x = 0; x < after.width(); ++x) {
          if (before.pixel(x, y) != after.pixel(x, y)) changed += QRect(x, y, 1, 1);
        }
      }
      EXPECT_TRUE((changed - painted).isEmpty())
          << rawValue(tool) << " at " << at.x() << ", " << at.y() << ": left out "
          << (changed - painted).boundingRect().x() << ", " << (changed - painted).boundingRect().y();
      qint64 area = 0;
      for (const QRect& rect : painted) area += qint64{rect.width()} * rect.height();
      EXPECT_LT(area, qint64{canvas.width()} * canvas.height() / 2) << rawValue(tool);
      before = after;
    }
    if (tool == SketchTool::line || tool == SketchTool::wall) release({90, 400});
  }
}

TEST_F(CanvasWidgetTest, ShowsADifferenceAsAPictureOfItDoes) {
  const QImage plain = shown();
  const Drawing before = sketch.drawing;
  addLine(sketch, {-40, -20}, {40, -20});
  sketch.edit([](Drawing& drawing) { drawing.entities.remove(1); });
  const Drawing& after = sketch.drawing;
  const auto layers = std::make_shared<const DifferenceLayers>(
      differenceLayers(compareDrawings(before, after), before.wallSystemSpecs, after.wallSystemSpecs));
  const auto expected = [&](double blend) {
    QImage image(640, 440, QImage::Format_RGB32);
    PixelCanvasPainter painter(image, 1);
    const CanvasFrame frame{{board.viewport(), {640, 440}}, lightPalette()};
    paintBackground(painter, frame);
    paintDifference(painter, frame, *layers, after.entities, blend);
    return image;
  };
  for (const double blend : {kBothSides, 0.0, 1.0}) {
    canvas.setDifference(CanvasDifference{layers, blend, std::nullopt});
    EXPECT_TRUE(looksAlike(shown(), expected(blend), "difference")) << blend;
    board.pan(20, 10);
    EXPECT_TRUE(looksAlike(shown(), expected(blend), "difference-moved")) << blend;
    board.pan(-20, -10);
  }
  sketch.edit([&](Drawing& drawing) { drawing = before; });
  canvas.setDifference(std::nullopt);
  EXPECT_TRUE(looksAlike(shown(), plain, "difference-ended"));
}

}  // namespace
}  // namespace ostrelon
