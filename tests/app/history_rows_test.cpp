// What the history of a document lists, and what can be done with it.
#include "app/history_rows.h"

#include <gmock/gmock.h>

#include "app/history_actions.h"
#include "documents/document_history.h"
#include "documents/document_name.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct HistoryRowsTest : ::testing::Test, testing::TestApplication {
  FilePath file(const char* name) { return home / "Documents" / (std::string(name) + ".ostrel"); }
  void SetUp() override { std::filesystem::create_directories(home / "Documents"); }

  void saveAs(const char* name) {
    document.save(file(name));
    document.refreshHistory();
  }
  void checkpoint(const char* message) {
    scheduler.advance(Seconds(60));
    document.saveCheckpoint(message);
  }
  std::vector<HistoryGroup> groups() { return historyGroups(files, historyQuery(application)).groups; }
  /// "main: b a", a group a line.
  std::vector<std::string> told() {
    std::vector<std::string> lines;
    for (const HistoryGroup& group : groups()) {
      lines.push_back(group.title + ":");
      for (const HistoryRow& row : group.rows) lines.back() += " " + row.title;
    }
    return lines;
  }
  HistoryRow row(const std::string& title) {
    for (const HistoryGroup& group : groups()) {
      for (const HistoryRow& found : group.rows) {
        if (found.title == title) return found;
      }
    }
    ADD_FAILURE() << title;
    return {};
  }
  Drawing drawingOf(const HistoryRow& row) { return readHistoryDrawing(files, row.source).drawing; }
};

TEST_F(HistoryRowsTest, ListsBranchesNewestFirstAndOtherDocumentsApart) {
  EXPECT_TRUE(groups().empty()) << "a document that was never saved";
  saveAs("House");
  checkpoint("a");
  checkpoint("b");
  document.createBranch("Two storeys", row("a").checkpoint()->id);
  document.switchBranch("Two storeys");
  checkpoint("c");
  saveAs("Garage");
  checkpoint("door");
  application.openDocumentAt(file("House"));
  const std::string begun = "Branch Two storeys from " + row("a").checkpoint()->id.substr(0, 11);
  EXPECT_THAT(told(), ElementsAre("This document: Last save", "Two storeys: c " + begun, "main: b a",
                                  "Garage, Two storeys: door"));
  const auto all = groups();
  ASSERT_EQ(all.size(), 4U);
  EXPECT_TRUE(all[1].isCurrentBranch);
  EXPECT_EQ(all[1].note, "starts at “a” of main");
  EXPECT_TRUE(all[3].isOfOtherDocument);
  EXPECT_EQ(historyActions(all[2], all[2].rows[0]), (HistoryActions{true, true, false}));
  EXPECT_EQ(historyActions(all[1], all[1].rows[0]), (HistoryActions{true, false, false}));
  EXPECT_EQ(historyActions(all[0], all[0].rows[0]), HistoryActions());
}

TEST_F(HistoryRowsTest, TellsAnAutoSaveFromASave) {
  saveAs("House");
  // An auto-save records the time at which it has written the file.
  application.settings().recordLastAutoSave(file("House"), "House", files.info(file("House"))->modifiedAt);
  EXPECT_EQ(groups().front().rows.front().title, "Last auto-save");
  saveAs("Garage");
  EXPECT_THAT(told(), ElementsAre("This document: Last save", "House: Last auto-save"));
  EXPECT_TRUE(groups().back().isOfOtherDocument);
}

TEST_F(HistoryRowsTest, WhatIsDamagedLeavesTheRest) {
  saveAs("House");
  checkpoint("a");
  checkpoint("b");
  const HistoryRow damaged = row("a");
  testing::writeBytes(
      checkpointURL(file("House"), damaged.checkpoint()->branchID, damaged.checkpoint()->fileName),
      "{\"v\":");
  EXPECT_THAT(told(), ElementsAre("This document: Last save", "main: b a"));
  EXPECT_THROW(drawingOf(damaged), UserError);
  EXPECT_NO_THROW(drawingOf(row("b")));
  testing::writeBytes(home / "Documents" / ".ostrel-history" / "meta.json", "[]");
  const HistoryGroups rest = historyGroups(files, historyQuery(application));
  EXPECT_EQ(rest.groups.size(), 1U);
  EXPECT_THAT(rest.failure, HasSubstr("The history is damaged"));
}

TEST_F(HistoryRowsTest, RestoringIsOneStepAndTouchesNothingElse) {
  submit("wall 0 0 100 0 W2-EXT; line 0 50 100 50");
  saveAs("House");
  checkpoint("a");
  const HistoryRow then = row("a");
  const Drawing before = sketch.drawing;
  submit("clear");
  sketch.edit(
      [](Drawing& drawing) {
        drawing.showGrid = false;
        drawing.wallSystemSpecs.erase(drawing.wallSystemSpecs.begin() + 1);  // W2-EXT
        drawing.wallSystemSpecs.front().thickness = 5;
      },
      UndoStep::none);
  submit("circle 0 0 5");
  const Drawing now = sketch.drawing;
  const SketchViewport view = board.viewport();

  restoreFromHistory(application, then, drawingOf(then));
  EXPECT_EQ(sketch.entities(), before.entities);
  EXPECT_FALSE(sketch.drawing->showGrid);
  EXPECT_EQ(sketch.drawing->wallSystemSpecs, before.wallSystemSpecs);
  EXPECT_EQ(board.viewport(), view);
  EXPECT_EQ(document.fileURL.get(), file("House"));
  EXPECT_TRUE(document.isDirty());
  const std::size_t steps = sketch.undoStack->undoSnapshots().size();
  restoreFromHistory(application, then, drawingOf(then));
  EXPECT_EQ(sketch.undoStack->undoSnapshots().size(), steps) << "it is that drawing already";
  board.undo();
  EXPECT_EQ(sketch.entities(), now.entities);
  EXPECT_EQ(sketch.drawing->wallSystemSpecs, now.wallSystemSpecs);
}

TEST_F(HistoryRowsTest, OpeningAsNewAsksAboutUnsavedChangesAndLeavesTheFile) {
  submit("line 0 0 5 5");
  saveAs("House");
  checkpoint("a");
  submit("circle 0 0 5");
  const std::string bytes = files.readFile(file("House"));
  const HistoryRow then = row("a");
  openFromHistory(application, then, readHistoryDrawing(files, then.source));
  EXPECT_EQ(sketch.entities().size(), 2U) << "cancelled";
  dialogs.queue("Don't Save");
  openFromHistory(application, then, readHistoryDrawing(files, then.source));
  EXPECT_EQ(sketch.entities().size(), 1U);
  EXPECT_EQ(document.fileURL.get(), std::nullopt);
  EXPECT_TRUE(document.isDirty());
  EXPECT_EQ(files.readFile(file("House")), bytes);
}

TEST_F(HistoryRowsTest, ABranchBeginsAtAnyCheckpointAndIsSwitchedTo) {
  saveAs("House");
  checkpoint("empty");
  submit("line 0 0 5 5");
  checkpoint("line");
  dialogs.queue("Without");
  branchFromHistory(application, row("empty"));
  EXPECT_THAT(std::get<TextPrompt>(dialogs.asked().back()).informativeText, HasSubstr("“empty”"));
  EXPECT_EQ(lastLine().text, "Branch created: Without");
  const auto all = groups();
  ASSERT_EQ(all.size(), 3U);
  ASSERT_EQ(all[2].title, "Without");
  switchFromHistory(application, all[2].rows[0]);
  EXPECT_TRUE(sketch.entities().empty());
  EXPECT_EQ(document.history->currentBranch()->name, "Without");
}

TEST_F(HistoryRowsTest, ListsKeptDrawingsAndDeletesThemWhenAsked) {
  ApplicationOptions withState = options();
  withState.stateFolder = home / "state";
  Application app(services(), withState);
  DocumentSession& open = app.workspace().document;
  const auto drawAndReplace = [&](double x) {
    app.workspace().sketch.edit([&](Drawing& drawing) {
      drawing.entities.append(LineEntity{UUID::random(), {0, 0}, {x, 1}});
    });
    open.begin();
  };
  open.save(file("House"));
  drawAndReplace(1);
  drawAndReplace(2);
  open.open(file("House"));
  const auto listed = [&] { return historyGroups(files, historyQuery(app)).groups; };
  const auto all = listed();
  ASSERT_EQ(all.size(), 3U);
  EXPECT_EQ(all[1].title, "Kept drawings");
  EXPECT_TRUE(all[2].isOfOtherDocument) << "it was never saved";
  ASSERT_EQ(all[1].rows.size(), 1U);
  const HistoryRow& kept = all[1].rows[0];
  EXPECT_EQ(drawingOf(kept).entities.size(), 1U);
  EXPECT_TRUE(historyActions(all[1], kept).deletion);
  int tried = 0;
  deleteFromHistory(app, kept, [&] { ++tried; });
  EXPECT_EQ(listed().size(), 3U) << "cancelled";
  dialogs.queue("Delete");
  deleteFromHistory(app, kept, [&] { ++tried; });
  EXPECT_EQ(tried, 1);
  EXPECT_EQ(listed().size(), 2U);
}

TEST(DocumentName, IsFoundInTheBeginningOfADocument) {
  EXPECT_EQ(documentNameIn(R"({"v":2,"name":"A \"house\"","e":[["L)"), "A \"house\"");
  EXPECT_EQ(documentNameIn(R"({"ws":{"name":"no"},"undo":[{"name":"no"}],"name":"yes")"), "yes");
  EXPECT_EQ(documentNameIn(R"({"documentName":"old"})"), "old");
  for (const char* none : {"", "{", R"({"v":2,"name":"cut)", R"({"name":3})", R"(["name","x"])", "\xFF{"}) {
    EXPECT_EQ(documentNameIn(none), std::nullopt) << none;
  }
}

TEST(EntityCounts, NameTheMostFrequentKindFirst) {
  const WallEntity wall{UUID::random(), {0, 0}, {1, 0}, UUID::random()};
  const LineEntity line{UUID::random(), {0, 0}, {1, 0}};
  EXPECT_EQ(entityCountsText({line, wall, wall}), "2 walls, 1 line");
  EXPECT_EQ(entityCountsText({}), "Nothing drawn");
}

}  // namespace
}  // namespace ostrelon
