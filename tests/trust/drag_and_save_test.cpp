// What comes between a drag's beginning and its end.
#include <gtest/gtest.h>

#include "documents/document_store.h"
#include "interaction/canvas_gestures.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

struct InterruptedDrag : ::testing::Test, testing::TestApplication {
  CanvasGestures gestures{sketch};

  InterruptedDrag() {
    sketch.updateCanvasSize({800, 600});
    sketch.addLine({0, 0}, {40, 0});
    gestures.press(viewPoint({20, 0}));
    gestures.drag(viewPoint({20, 30}));
  }
  SketchPoint viewPoint(SketchPoint point) const {
    const SketchViewport& view = sketch.viewport;
    return {view.pan.x + point.x * view.scale, view.pan.y - point.y * view.scale};
  }
};

TEST_F(InterruptedDrag, ASaveWithinItLeavesTheDocumentChangedWhenItIsCancelled) {
  const EntityList dragged = sketch.entities;
  ASSERT_EQ(saveToURL(sketch, application.settings(), home / "plan.ostrel", false), std::nullopt);
  ASSERT_FALSE(sketch.isDocumentDirty);
  sketch.cancelSelectDrag();
  ASSERT_NE(*sketch.entities, dragged);
  EXPECT_TRUE(sketch.isDocumentDirty) << "the file holds what was dragged";
}

TEST_F(InterruptedDrag, WhatWasAddedWithinItIsNotSelectedOnceItIsCancelled) {
  submit("wall 0 0 5 5");
  ASSERT_EQ(sketch.selectedEntityIDs->size(), 1U);
  sketch.cancelSelectDrag();
  EXPECT_EQ(sketch.entities->size(), 1U);
  EXPECT_TRUE(sketch.selectedEntityIDs->empty());
}

}  // namespace
}  // namespace ostrelon
