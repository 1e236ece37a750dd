// Whole sessions at random: console lines, the pointer, keys, menus, time and files, some thousands of
// operations each. After every one of them what holds of any document holds, and observers have heard of
// what changed and of nothing else.
//
// The same few sessions with every run; OSTRELON_SESSIONS asks for so many that never were, OSTRELON_SEED
// repeats one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>
#include <unordered_set>

#include "app/menu.h"
#include "automation/automation_session.h"
#include "documents/auto_save.h"
#include "documents/document_store.h"
#include "interaction/canvas_gestures.h"
#include "interaction/key_routing.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

constexpr int kSessions = 3;
constexpr int kOperations = 1500;
constexpr std::size_t kTold = 25;            // operations that a failure tells
constexpr std::size_t kLargestDrawing = 60;  // a larger one is cleared, so that sessions stay quick

// The fields in the order of `SketchField`.
constexpr std::array kFieldNames{"entities",
                                 "wallSystemSpecs",
                                 "activeWallSystemSpecID",
                                 "selectedEntityIDs",
                                 "primarySelectedEntityID",
                                 "selectMarquee",
                                 "selectedTool",
                                 "consoleLines",
                                 "commandInput",
                                 "isConsoleInputFocused",
                                 "showGrid",
                                 "documentName",
                                 "documentFileURL",
                                 "isDocumentDirty",
                                 "lastSavedAt",
                                 "documentToast",
                                 "documentHistoryState",
                                 "draft",
                                 "polygonDraft",
                                 "hoveredEntityID",
                                 "hoverViewPoint",
                                 "cursorSketchPoint",
                                 "selectDrag",
                                 "isEntityInspectorVisible",
                                 "activeAxisSnaps",
                                 "activeEntitySnapPoint",
                                 "activeGridSnapPoint",
                                 "activeEntitySnapSourcePoint",
                                 "snapGuideAnchor",
                                 "snapFeedback",
                                 "acquiredEntitySnap",
                                 "pendingTrackingAcquire",
                                 "trackingAcquireProgress",
                                 "lastDraftConstraintAxes",
                                 "trackingAcquireDwellStart",
                                 "handleDragReferenceAngle",
                                 "trimCuttingEdgeEntityID",
                                 "viewport",
                                 "hasInitializedViewport",
                                 "canvasSize",
                                 "isSegmentLengthEditing",
                                 "segmentLengthEditText",
                                 "segmentLengthEditError",
                                 "undoStack",
                                 "selectDragUndoBaseline",
                                 "entityClipboard",
                                 "isSaveDialogActive"};
constexpr auto kFieldCount = static_cast<std::size_t>(SketchField::count_);
static_assert(kFieldNames.size() == kFieldCount);

// Each field as text.
using Fields = std::array<std::string, kFieldCount>;

Fields fieldsOf(const SketchViewModel& sketch) {
  Fields fields;
  for (std::size_t field = 0; field < kFieldCount; ++field) {
    const std::string name = kFieldNames[field];
    // The transcript only grows and is emptied: its length and end tell of every change.
    if (name == "consoleLines") {
      const auto& lines = *sketch.consoleLines;
      fields[field] = std::to_string(lines.size()) + (lines.empty() ? "" : lines.back().text);
    } else {
      fields[field] = stateOf(sketch, std::vector{name})[name].dump();
    }
  }
  return fields;
}

// Through memory: g++ 12 leaves the two conversions out where it takes a pair of numbers at once.
double narrow(double value) {
  const volatile auto narrowed = static_cast<float>(value);
  return narrowed;
}
SketchPoint narrow(SketchPoint point) { return {narrow(point.x), narrow(point.y)}; }

// What a format 2 file gives back.
SketchEntity narrow(const SketchEntity& entity) {
  return std::visit(Overloaded{
                        [](const LineEntity& line) -> SketchEntity {
                          return LineEntity{line.id, narrow(line.from), narrow(line.to)};
                        },
                        [](const WallEntity& wall) -> SketchEntity {
                          return WallEntity{wall.id, narrow(wall.from), narrow(wall.to), wall.systemSpecID};
                        },
                        [](const CircleEntity& circle) -> SketchEntity {
                          return CircleEntity{circle.id, narrow(circle.center), narrow(circle.radius)};
                        },
                        [](const ArcEntity& arc) -> SketchEntity {
                          return ArcEntity{arc.id, narrow(arc.center), narrow(arc.radius),
                                           narrow(arc.startAngle), narrow(arc.endAngle)};
                        },
                        [](const RectangleEntity& rectangle) -> SketchEntity {
                          return RectangleEntity{
                              rectangle.id,
                              narrow(rectangle.origin),
                              {narrow(rectangle.size.width), narrow(rectangle.size.height)}};
                        },
                        [](const PolygonEntity& polygon) -> SketchEntity {
                          std::vector<SketchPoint> vertices;
                          for (const SketchPoint& vertex : polygon.vertices)
                            vertices.push_back(narrow(vertex));
                          // A file holds fewer than three vertices, and the reader takes them for none.
                          if (vertices.size() < 3) vertices.clear();
                          return PolygonEntity{polygon.id, std::move(vertices)};
                        },
                    },
                    entity);
}

class RandomSession : public testing::TestApplication {
 public:
  explicit RandomSession(unsigned seed) : random_(seed), gestures_(sketch) {
    application.mainViewAppeared();
    application.settings().useDefaultProjectsFolder();
    sketch.updateCanvasSize({900, 600});
    last_ = fieldsOf(sketch);
    observation_ = sketch.observe(kAllFields, [this](const SketchChange& change) { hear(change); });
    baseline_ = sketch.entities;
  }

  // One operation, and what must hold behind it.
  void step() {
    mayBeSaved_ = false;
    trace_ = "";
    operate();
    recent_.push_back(trace_);
    if (recent_.size() > kTold) recent_.erase(recent_.begin());
    check();
  }
  /// The operations that led here, the last one last.
  std::string trace() const {
    std::string all;
    for (const std::string& operation : recent_) all += (all.empty() ? "" : "; ") + operation;
    return all;
  }

 private:
  int upTo(int most) { return std::uniform_int_distribution(0, most)(random_); }
  template <class T>
  const T& oneOf(const std::vector<T>& values) {
    return values[static_cast<std::size_t>(upTo(static_cast<int>(values.size()) - 1))];
  }
  std::string number() {
    static const std::vector<std::string> odd{"0", "-3", "1e3", "0.1", "12.5", "x", "1e300", "1/3"};
    return upTo(9) == 0 ? oneOf(odd) : std::to_string(upTo(400) - 200) + "." + std::to_string(upTo(99));
  }
  std::string entityNumber() { return std::to_string(upTo(static_cast<int>(sketch.entities->size()) + 1)); }
  SketchPoint viewPoint() { return {upTo(1000) - 50.0, upTo(700) - 50.0}; }

  std::string consoleLine() {
    static const std::vector<std::string> patterns{"line # # # #",
                                                   "l # # # #",
                                                   "wall # # # #",
                                                   "circle # # #",
                                                   "rect # # # #",
                                                   "polygon # # # # # #",
                                                   "arc # # # # #",
                                                   "select @",
                                                   "select all",
                                                   "select none",
                                                   "select @ @ @",
                                                   "delete",
                                                   "delete @",
                                                   "duplicate",
                                                   "copy",
                                                   "paste",
                                                   "move # #",
                                                   "nudge # #",
                                                   "undo",
                                                   "redo",
                                                   "history",
                                                   "length #",
                                                   "trim @ @ # #",
                                                   "extend @ @",
                                                   "convert wall",
                                                   "convert line @",
                                                   "align left",
                                                   "spec list",
                                                   "spec add T# # #",
                                                   "assign CMU-8",
                                                   "checkpoint m#",
                                                   "branch list",
                                                   "branch create b#",
                                                   "branch switch b1",
                                                   "branch switch main",
                                                   "zoom in",
                                                   "zoom fit",
                                                   "zoom reset",
                                                   "clear",
                                                   "line 0 0 10 0; line 10 0 10 10",
                                                   "line 0 0 1 1; nonsense",
                                                   "grid",
                                                   "tool wall",
                                                   "help",
                                                   "list",
                                                   "12'6\"",
                                                   "45",
                                                   "<30",
                                                   "close",
                                                   "inspect",
                                                   "",
                                                   ";",
                                                   "spec use 1",
                                                   "wall # # # # CMU-8"};
    std::string line;
    for (const char character : oneOf(patterns)) {
      if (character == '#') {
        line += number();
      } else if (character == '@') {
        line += entityNumber();
      } else {
        line += character;
      }
    }
    return line;
  }

  void operate() {
    switch (upTo(15)) {
      case 0:
      case 1:
      case 2:
      case 3: {
        const std::string line = sketch.entities->size() > kLargestDrawing ? "clear" : consoleLine();
        trace_ = "console: " + line;
        mayBeSaved_ = line.starts_with("checkpoint") || line.starts_with("branch");
        submit(line);
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
        handleKey(event, sketch);
        return;
      }
      case 11: {
        static const std::vector<SketchTool> tools{
            SketchTool::select,    SketchTool::line,    SketchTool::wall, SketchTool::circle,
            SketchTool::rectangle, SketchTool::polygon, SketchTool::trim};
        trace_ = "tool";
        sketch.activateTool(oneOf(tools));
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
        undoAndRedo();
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
        if (!saveToURL(sketch, application.settings(), url, upTo(1) == 0)) expectSame(url);
        return;
      case 1:
        trace_ = "open";
        openDocument(sketch, application.settings(), url);
        return;
      case 2:
        trace_ = "save command";
        saveCurrentDocument(sketch, application.settings(), true);
        settle();
        return;
      case 3:
        trace_ = "auto-save";
        autoSaveTick(sketch, application.settings());
        return;
      default:
        trace_ = "new document";
        if (upTo(3) == 0) sketch.newDocument();
        return;
    }
  }

  // Another program opens what was saved.
  void expectSame(const FilePath& url) {
    testing::TestApplication other;
    other.sketch.openDocumentFile(url);
    std::vector<SketchEntity> expected;
    for (const SketchEntity& entity : *sketch.entities) expected.push_back(narrow(entity));
    EXPECT_EQ(toJson(*other.sketch.entities).dump(), toJson(EntityList(expected)).dump());
    EXPECT_EQ(other.sketch.showGrid.get(), sketch.showGrid.get());
    EXPECT_EQ(other.sketch.viewport.get(), sketch.viewport.get());
    EXPECT_EQ(other.sketch.activeWallSystemSpecID.get(), sketch.activeWallSystemSpecID.get());
    EXPECT_EQ(other.sketch.documentName.get(), sketch.documentName.get());
    ASSERT_EQ(other.sketch.wallSystemSpecs->size(), sketch.wallSystemSpecs->size());
    const auto undoable = [](const SketchViewModel& of) {
      return std::min<std::size_t>(of.undoStack().undoSnapshots().size(), 20);
    };
    EXPECT_LE(undoable(other.sketch), undoable(sketch));
    EXPECT_FALSE(sketch.isDocumentDirty);
  }

  void undoAndRedo() {
    const bool isAtRest = !sketch.draft->has_value() && !sketch.polygonDraft->has_value() &&
                          !sketch.selectDrag->has_value() && !sketch.selectMarquee->has_value();
    if (!isAtRest || sketch.undoStack().undoSnapshots().empty()) return;
    const EntityList before = sketch.entities;
    sketch.undo();
    sketch.redo();
    EXPECT_EQ(sketch.entities.get(), before) << "undo then redo";
  }

  void hear(const SketchChange& change) {
    Fields now = fieldsOf(sketch);
    for (std::size_t field = 0; field < kFieldCount; ++field) {
      const bool isTold = (change.fields & fieldBit(static_cast<unsigned>(field))) != 0;
      const bool hasChanged = now[field] != last_[field];
      EXPECT_TRUE(isTold || !hasChanged) << kFieldNames[field] << " changed and was not told";
      // The undo steps are compared by their number, which stays the same when the oldest goes.
      const bool isCounted = field == static_cast<std::size_t>(SketchField::undoStack);
      if (isTold && !hasChanged && !isCounted) {
        ADD_FAILURE() << kFieldNames[field] << " was told and had not changed";
      }
    }
    last_ = std::move(now);
  }

  void check() {
    Fields now = fieldsOf(sketch);
    for (std::size_t field = 0; field < kFieldCount; ++field) {
      EXPECT_EQ(now[field], last_[field]) << kFieldNames[field] << " changed and nobody was told";
    }
    last_ = std::move(now);
    std::unordered_set<UUID> ids;
    for (const SketchEntity& entity : *sketch.entities) {
      EXPECT_TRUE(ids.insert(entityID(entity)).second) << "an identifier twice";
    }
    for (const UUID& id : *sketch.selectedEntityIDs) EXPECT_TRUE(ids.contains(id)) << "selected and gone";
    // A document that is called clean holds what was saved, opened or begun last.
    if (mayBeSaved_ && !sketch.isDocumentDirty) baseline_ = sketch.entities;
    if (trace_ == "new document" && !sketch.isDocumentDirty) baseline_ = sketch.entities;
    EXPECT_TRUE(sketch.isDocumentDirty || *sketch.entities == baseline_) << "changed and not dirty";
  }

  std::mt19937 random_;
  CanvasGestures gestures_;
  Fields last_;
  Subscription observation_;
  EntityList baseline_;
  bool mayBeSaved_ = false;
  std::string trace_;
  std::vector<std::string> recent_;
};

int environment(const char* name, int otherwise) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? otherwise : std::atoi(value);
}

TEST(RandomSessions, HoldWhatHoldsOfAnyDocumentAfterEveryOperation) {
  const int asked = environment("OSTRELON_SEED", 0);
  const int wanted = environment("OSTRELON_SESSIONS", 0);
  const int sessions = asked != 0 ? 1 : wanted != 0 ? wanted : kSessions;
  std::random_device device;
  for (int session = 0; session < sessions; ++session) {
    const unsigned seed = asked != 0    ? static_cast<unsigned>(asked)
                          : wanted != 0 ? device() & 0x7FFFFFFF
                                        : static_cast<unsigned>(session) + 1;
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
