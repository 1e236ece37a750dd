// Whole sessions at random: console lines, the pointer, keys, menus, time and files, some thousands of
// operations each. After every one of them what holds of any document holds, and observers have heard of
// what changed and of nothing else.
//
// The same few sessions with every run, others with `./test --long`; OSTRELON_SEED repeats one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <unordered_set>

#include "app/menu.h"
#include "automation/automation_session.h"
#include "documents/auto_save.h"
#include "documents/document_store.h"
#include "documents/sketch_document_io.h"
#include "interaction/canvas_gestures.h"
#include "interaction/key_routing.h"
#include "platform/unicode.h"
#include "support/random_drawing.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

constexpr int kSessions = 3;
constexpr int kOperations = 1500;
constexpr std::size_t kTold = 25;            // operations that a failure tells
constexpr std::size_t kLargestDrawing = 60;  // a larger one is cleared, so that sessions stay quick

// A field of the workspace, and the values in it by their names in the automation interface.
struct Part {
  FieldMask field;
  std::string_view values;
};

std::vector<Part> partsOf(const Workspace& w) {
  return {{w.sketch.drawing.bit(), "entities wallSystemSpecs activeWallSystemSpecID showGrid"},
          {w.sketch.selection.bit(), "selectedEntityIDs primarySelectedEntityID isEntityInspectorVisible"},
          {w.sketch.undoStack.bit(), "undoStack"},
          {w.sketch.isDirty.bit(), "isDocumentDirty"},
          {w.sketch.clipboard.bit(), "entityClipboard"},
          {w.messages.lines.bit(), "consoleLines"},
          {w.messages.toast.bit(), "documentToast"},
          {w.board.view.bit(), "viewport hasInitializedViewport canvasSize"},
          {w.board.tool.bit(), "selectedTool"},
          {w.board.gesture.bit(), "draft polygonDraft selectMarquee selectDrag handleDragReferenceAngle"},
          {w.board.snap.bit(),
           "activeAxisSnaps activeEntitySnapPoint activeGridSnapPoint activeEntitySnapSourcePoint "
           "snapGuideAnchor snapFeedback"},
          {w.board.tracking.bit(),
           "acquiredEntitySnap pendingTrackingAcquire trackingAcquireProgress trackingAcquireDwellStart"},
          {w.board.hover.bit(), "hoveredEntityID hoverViewPoint"},
          {w.board.lengthEditor.bit(), "isSegmentLengthEditing segmentLengthEditText segmentLengthEditError"},
          {w.board.cursor.bit(), "cursorSketchPoint"},
          {w.board.draftAxes.bit(), "lastDraftConstraintAxes"},
          {w.board.trimCuttingEdge.bit(), "trimCuttingEdgeEntityID"},
          {w.document.name.bit(), "documentName"},
          {w.document.fileURL.bit(), "documentFileURL"},
          {w.document.lastSavedAt.bit(), "lastSavedAt"},
          {w.document.history.bit(), "documentHistoryState"},
          {w.document.isSaveDialogActive.bit(), "isSaveDialogActive"},
          {w.console.input.bit(), "commandInput"},
          {w.console.isFocused.bit(), "isConsoleInputFocused"}};
}

// The values of each part as text.
std::vector<std::string> textsOf(const Workspace& workspace) {
  std::vector<std::string> texts;
  for (const Part& part : partsOf(workspace)) {
    // The transcript only grows and is emptied: its length and end tell of every change.
    if (part.field == workspace.messages.lines.bit()) {
      const auto& lines = *workspace.messages.lines;
      texts.push_back(std::to_string(lines.size()) + (lines.empty() ? "" : lines.back().text));
    } else {
      texts.push_back(stateOf(workspace, splitAtWhiteSpace(part.values)).dump());
    }
  }
  return texts;
}

// What a format 2 file gives back.
EntityList asSaved(const Workspace& workspace) {
  SketchDocumentV2 document;
  document.ws.items = workspace.sketch.drawing->wallSystemSpecs;
  document.e = workspace.sketch.entities();
  const auto text = SketchDocumentIO::encodeDocument(document);
  return std::get<SketchDocumentV2>(SketchDocumentIO::decodeDocument(text).document).e;
}

class RandomSession : public testing::TestApplication {
 public:
  explicit RandomSession(unsigned seed) : random_(seed), gestures_(workspace.board) {
    application.mainViewAppeared();
    application.settings().useDefaultProjectsFolder();
    workspace.board.resizeCanvas({900, 600});
    last_ = textsOf(workspace);
    observation_ = workspace.observe(kAllFields, [this](FieldMask changed) { hear(changed); });
    baseline_ = workspace.sketch.entities();
  }

  // One operation, and what must hold behind it.
  void step() {
    mayBeSaved_ = false;
    trace_ = "";
    const bool wasAtRest = isAtRest();
    const EntityList before = workspace.sketch.entities();
    const std::size_t steps = undoSteps();
    operate();
    recent_.push_back(trace_);
    if (recent_.size() > kTold) recent_.erase(recent_.begin());
    check();
    if (wasAtRest && isAtRest() && !mayBeSaved_ && undoSteps() == steps + 1 && random_.chance(3)) {
      undoAndRedo(before);
    }
  }
  /// The operations that led here, the last one last.
  std::string trace() const {
    std::string all;
    for (const std::string& operation : recent_) all += (all.empty() ? "" : "; ") + operation;
    return all;
  }

 private:
  int upTo(int most) { return random_.below(most + 1); }
  template <class T>
  const T& oneOf(const std::vector<T>& values) {
    return random_.oneOf(values);
  }
  // Few of them, so that entities meet and cross; now and then an odd one.
  std::string number() {
    static const std::vector<std::string> odd{"0", "-3", "1e3", "0.1", "12.5", "x", "1e300", "1/3"};
    return random_.chance(10) ? oneOf(odd) : std::to_string((upTo(20) - 10) * (random_.chance(3) ? 7 : 10));
  }
  std::string entityNumber() {
    return std::to_string(upTo(static_cast<int>(workspace.sketch.entities().size()) + 1));
  }
  SketchPoint viewPoint() {
    const SketchPoint place{upTo(20) * 50.0 - 50, upTo(14) * 50.0 - 50};
    return random_.chance(3) ? place + SketchPoint{upTo(100) / 10.0, upTo(100) / 10.0} : place;
  }

  // Commands that all are there: `submitLine` says when one is not.
  std::string consoleLine() {
    static const std::vector<std::string> patterns{"line # # # #",
                                                   "l # # # #",
                                                   "wall # # # #",
                                                   "wall # # # # CMU-8",
                                                   "circle # # #",
                                                   "rect # # # #",
                                                   "polygon # # # # # #",
                                                   "line",
                                                   "pl",
                                                   "select @",
                                                   "s @ @ @",
                                                   "select",
                                                   "co",
                                                   "copy",
                                                   "paste",
                                                   "move # #",
                                                   "m # #",
                                                   "nudge # #",
                                                   "length #",
                                                   "trim @ @ # #",
                                                   "tr",
                                                   "extend @ @",
                                                   "ex @",
                                                   "convert wall",
                                                   "type line",
                                                   "convert wall CMU-8",
                                                   "center h",
                                                   "center v",
                                                   "assign CMU-8",
                                                   "spec list",
                                                   "spec use W2-EXT",
                                                   "spec show",
                                                   "checkpoint m#",
                                                   "history",
                                                   "branch list",
                                                   "branch create b#",
                                                   "branch switch b10",
                                                   "branch switch main",
                                                   "zoom in",
                                                   "z out",
                                                   "zoom fit",
                                                   "zoom reset",
                                                   "clear",
                                                   "help",
                                                   "?",
                                                   "line 0 0 10 0; line 10 0 10 10",
                                                   "wall # # # #; wall # # # #; select @; assign CMU-8",
                                                   "line 0 0 1 1; clear",
                                                   "",
                                                   ";"};
    std::string line;
    for (const char character : oneOf(patterns)) {
      line += character == '#' ? number() : character == '@' ? entityNumber() : std::string(1, character);
    }
    const bool isDrafting = workspace.board.draft() != nullptr;
    return isDrafting && random_.chance(2) ? number() + (random_.chance(2) ? " " + number() : "") : line;
  }

  void submitLine(const std::string& line) {
    const SketchState before = workspace.sketch.state();
    const std::size_t steps = undoSteps();
    const SketchTool tool = workspace.board.tool;
    const std::size_t lines = workspace.messages.lines->size();
    const bool isNumber = line.find_first_not_of("0123456789.-+e/x ") == std::string::npos;
    submit(line);
    if (workspace.messages.lines->size() == lines) return;
    EXPECT_TRUE(isNumber || !lastLine().text.starts_with("Unknown command")) << line;
    if (!lastLine().isError) return;
    EXPECT_EQ(workspace.sketch.state(), before) << "refused, and changed";
    EXPECT_EQ(undoSteps(), steps);
    EXPECT_EQ(workspace.board.tool.get(), tool);
  }

  void operate() {
    switch (upTo(15)) {
      case 0:
      case 1:
      case 2:
      case 3: {
        const std::string line =
            workspace.sketch.entities().size() > kLargestDrawing ? "clear" : consoleLine();
        trace_ = "console: " + line;
        mayBeSaved_ = line.starts_with("checkpoint") || line.starts_with("branch");
        submitLine(line);
        return;
      }
      case 4: {
        const SketchPoint point = viewPoint();
        trace_ = "press";
        gestures_.press(point);
        return;
      }
      case 5:
      case 6:
        trace_ = "drag";
        gestures_.drag(viewPoint());
        return;
      case 7:
        trace_ = "release";
        gestures_.release(viewPoint(), upTo(3) == 0);
        return;
      case 8:
        trace_ = "hover";
        gestures_.hover(viewPoint());
        return;
      case 9:
        switch (upTo(4)) {
          case 0:
            trace_ = "leave";
            gestures_.leave();
            return;
          case 1:
            trace_ = "double click";
            gestures_.doubleClick();
            return;
          case 2:
            trace_ = "scroll";
            gestures_.scroll(upTo(60) - 30, upTo(60) - 30);
            return;
          case 3:
            trace_ = "magnify";
            gestures_.magnify(viewPoint(), upTo(10) / 10.0 - 0.5);
            return;
          default:
            trace_ = "context menu";
            gestures_.contextMenu(viewPoint());
            return;
        }
      case 10: {
        static const std::vector<KeyName> names{KeyName::escape,         KeyName::space,
                                                KeyName::deleteBackward, KeyName::forwardDelete,
                                                KeyName::returnKey,      KeyName::character};
        KeyEvent event;
        event.key = oneOf(names);
        event.characters = oneOf(std::vector<std::string>{"c", "l", "s", "z", "d", "q"});
        event.modifiers.command = upTo(5) == 0;
        event.textFocus = upTo(8) == 0;
        trace_ = "key " + std::to_string(static_cast<int>(event.key)) + event.characters;
        handleKey(event, workspace.board);
        return;
      }
      case 11: {
        static const std::vector<SketchTool> tools{
            SketchTool::select,    SketchTool::line,    SketchTool::wall, SketchTool::circle,
            SketchTool::rectangle, SketchTool::polygon, SketchTool::trim};
        trace_ = "tool";
        workspace.board.activateTool(oneOf(tools));
        return;
      }
      case 12: {
        const std::string title(oneOf(std::vector<std::string>{
            "Edit/Undo", "Edit/Redo", "Sketch/Duplicate", "Sketch/Inspect", "Sketch/Toggle Grid",
            "View/Zoom In", "View/Zoom to Fit", "Sketch/Clear Sketch", "File/Revert to Last Autosave"}));
        trace_ = "menu " + title;
        mayBeSaved_ = title.starts_with("File");
        (void)runMenuCommand(application, title);
        return;
      }
      case 13: {
        const double seconds = oneOf(std::vector<double>{0, 0.05, 0.3, 1, 3, 301});
        trace_ = "time " + std::to_string(seconds);
        mayBeSaved_ = true;
        scheduler.advance(Seconds(seconds));
        return;
      }
      case 14:
        files_();
        return;
      default:
        trace_ = "undo and redo";
        if (isAtRest() && undoSteps() > 0) {
          undoAndRedo(EntityList(workspace.sketch.undoStack->undoSnapshots().back().entities));
        }
        return;
    }
  }

  void files_() {
    mayBeSaved_ = true;
    const FilePath folder = home / "Documents/Ostrelon";
    const FilePath url = folder / (std::string("plan") + std::to_string(upTo(2)) + ".ostrel");
    switch (upTo(4)) {
      case 0:
        trace_ = "save";
        if (!saveToURL(workspace.document, application.settings(), url, upTo(1) == 0)) expectSame(url);
        return;
      case 1:
        trace_ = "open";
        openDocument(workspace.document, application.settings(), url);
        return;
      case 2:
        trace_ = "save command";
        saveCurrentDocument(workspace.document, application.settings(), true);
        settle();
        return;
      case 3:
        trace_ = "auto-save";
        autoSaveTick(workspace.document, application.settings());
        return;
      default:
        trace_ = "new document";
        if (upTo(3) == 0) workspace.document.begin();
        return;
    }
  }

  // Another program opens what was saved.
  void expectSame(const FilePath& url) {
    testing::TestApplication program;
    Workspace& other = program.workspace;
    other.document.open(url);
    EXPECT_EQ(toJson(other.sketch.entities()).dump(), toJson(asSaved(workspace)).dump());
    EXPECT_EQ(other.sketch.drawing->showGrid, workspace.sketch.drawing->showGrid);
    EXPECT_EQ(other.board.viewport(), workspace.board.viewport());
    EXPECT_EQ(other.sketch.drawing->activeWallSystemSpecID, workspace.sketch.drawing->activeWallSystemSpecID);
    EXPECT_EQ(other.document.name.get(), workspace.document.name.get());
    ASSERT_EQ(other.sketch.drawing->wallSystemSpecs.size(), workspace.sketch.drawing->wallSystemSpecs.size());
    const auto undoable = [](const Workspace& of) {
      return std::min<std::size_t>(of.sketch.undoStack->undoSnapshots().size(), kStoredUndoSnapshots);
    };
    EXPECT_LE(undoable(other), undoable(workspace));
    EXPECT_FALSE(workspace.document.isDirty());
  }

  bool isAtRest() const { return std::holds_alternative<std::monostate>(workspace.board.gesture.get()); }
  std::size_t undoSteps() const { return workspace.sketch.undoStack->undoSnapshots().size(); }
  // Back to `before`, the list of the step before, and forth again.
  void undoAndRedo(const EntityList& before) {
    const EntityList after = workspace.sketch.entities();
    workspace.board.undo();
    EXPECT_EQ(workspace.sketch.entities(), before) << "undo";
    workspace.board.redo();
    EXPECT_EQ(workspace.sketch.entities(), after) << "redo";
  }

  void hear(FieldMask changed) {
    const auto parts = partsOf(workspace);
    auto now = textsOf(workspace);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const bool isTold = (changed & parts[i].field) != 0;
      const bool hasChanged = now[i] != last_[i];
      EXPECT_TRUE(isTold || !hasChanged) << parts[i].values << " changed and was not told";
      // The undo steps are compared by their number, which stays the same when the oldest goes.
      const bool isCounted = parts[i].field == workspace.sketch.undoStack.bit();
      // A chain may lead back to the selection from which it went out.
      const bool isChain = trace_.find(';') != std::string::npos;
      EXPECT_TRUE(!isTold || hasChanged || isCounted || isChain)
          << parts[i].values << " was told and had not changed";
    }
    last_ = std::move(now);
  }

  void check() {
    EXPECT_EQ(textsOf(workspace), last_) << "changed and nobody was told";
    std::unordered_set<UUID> ids;
    for (const SketchEntity& entity : workspace.sketch.entities()) {
      EXPECT_TRUE(ids.insert(entityID(entity)).second) << "an identifier twice";
    }
    for (const UUID& id : workspace.sketch.selection->ids)
      EXPECT_TRUE(ids.contains(id)) << "selected and gone";
    const auto& primary = workspace.sketch.selection->primary;
    EXPECT_TRUE(!primary || workspace.sketch.selection->ids.empty() ||
                workspace.sketch.selection->ids.contains(*primary));
    EXPECT_FALSE(workspace.board.polygonDraft() != nullptr && workspace.board.tool != SketchTool::polygon);
    EXPECT_TRUE(std::isfinite(workspace.board.viewport().pan.x) &&
                std::isfinite(workspace.board.viewport().pan.y));
    EXPECT_TRUE(workspace.board.viewport().scale >= 0.05 && workspace.board.viewport().scale <= 200);
    EXPECT_TRUE(workspace.board.tracking->progress >= 0 && workspace.board.tracking->progress <= 1);
    // A document that is called clean holds what was saved, opened or begun last.
    if (mayBeSaved_ && !workspace.document.isDirty()) baseline_ = workspace.sketch.entities();
    if (trace_ == "new document" && !workspace.document.isDirty()) baseline_ = workspace.sketch.entities();
    EXPECT_TRUE(workspace.document.isDirty() || workspace.sketch.entities() == baseline_)
        << "changed and not dirty";
  }

  testing::RandomDrawing random_;
  CanvasGestures gestures_;
  std::vector<std::string> last_;
  Subscription observation_;
  EntityList baseline_;
  bool mayBeSaved_ = false;
  std::string trace_;
  std::vector<std::string> recent_;
};

TEST(RandomSessions, HoldWhatHoldsOfAnyDocumentAfterEveryOperation) {
  for (int session = 0; session < testing::rounds(kSessions); ++session) {
    const unsigned seed = testing::seed() + static_cast<unsigned>(session);
    RandomSession run(seed);
    for (int operation = 0; operation < kOperations; ++operation) {
      run.step();
      ASSERT_FALSE(::testing::Test::HasFailure())
          << "OSTRELON_SEED=" << seed << ", operation " << operation << ", " << run.trace();
    }
  }
}

}  // namespace
}  // namespace ostrelon
