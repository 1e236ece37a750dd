// The questions that a window asks and a script does not, and the end of the desktop's session.
#include <gmock/gmock.h>

#include "app/menu.h"
#include "core/adding.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

struct WindowQuestions : ::testing::Test, testing::TestApplication {
  std::optional<Application> app;

  void SetUp() override { begin(true); }
  void begin(bool asksInWindow) {
    ApplicationOptions withState = options();
    withState.asksInWindow = asksInWindow;
    withState.stateFolder = home / "state";
    app.emplace(services(), withState);
    app->settings().useDefaultProjectsFolder();
    app->mainViewAppeared();
  }
  FilePath file(const std::string& name) const { return home / "Documents/Ostrelon" / (name + ".ostrel"); }
  DocumentSession& open() { return app->workspace().document; }
  void draw() { addLine(app->workspace().sketch, {0, 0}, {1, 1}); }
  std::size_t entities() { return app->workspace().sketch.entities().size(); }
  std::optional<bool> sessionMayEnd(bool mayAsk) {
    std::optional<bool> answer;
    app->sessionShouldEnd(mayAsk, [&](bool may) { answer = may; });
    scheduler.advance(Seconds(0));
    return answer;
  }
};

TEST_F(WindowQuestions, AskBeforeTheDrawingOfAnotherDocumentIsSwitchedTo) {
  for (const char* name : {"A", "B"}) {
    open().begin();
    draw();
    open().save(file(name));
    open().saveCheckpoint("one");
    if (*name == 'A') open().createBranch("option");
  }
  draw();
  open().save(file("B"));
  EXPECT_EQ(runMenuCommand(*app, "File/Switch Branch/option"), std::nullopt);
  ASSERT_THAT(dialogs.asked(), SizeIs(1));
  EXPECT_THAT(std::get<Alert>(dialogs.asked()[0]).message, HasSubstr("another document: A"));
  EXPECT_EQ(entities(), 2U) << "cancelled";
  EXPECT_FALSE(app->keptNotice);
  dialogs.queue("Switch");
  runMenuCommand(*app, "File/Switch Branch/option");
  EXPECT_EQ(entities(), 1U);
  EXPECT_TRUE(app->keptNotice);
  EXPECT_EQ(app->keptDrawings().at(0).entities, 2U);
  scheduler.advance(Seconds(10));
  EXPECT_FALSE(app->keptNotice);

  begin(false);  // a script is not asked
  open().open(file("A"));
  runMenuCommand(*app, "File/Switch Branch/main");
  EXPECT_THAT(dialogs.asked(), SizeIs(2));
}

TEST_F(WindowQuestions, AskBeforeARevertDropsChangesOrOpensAnotherDocument) {
  open().save(file("A"));
  app->settings().recordLastAutoSave(file("A"), "A", std::nullopt);
  app->revertToLastAutosave();
  EXPECT_TRUE(dialogs.asked().empty()) << "nothing would change";
  draw();
  app->revertToLastAutosave();
  EXPECT_THAT(std::get<Alert>(dialogs.asked().at(0)).message, HasSubstr("revert A to its last autosave"));
  EXPECT_EQ(entities(), 1U);
  open().save(file("B"));
  dialogs.queue("Open");
  app->revertToLastAutosave();
  EXPECT_THAT(std::get<Alert>(dialogs.asked().at(1)).message, HasSubstr("of another document: A"));
  EXPECT_EQ(*open().name, "A");
}

TEST_F(WindowQuestions, TheEndOfTheSessionAsksOrLeavesTheChangesInTheJournal) {
  EXPECT_EQ(sessionMayEnd(true), true) << "there is nothing to lose";
  draw();
  EXPECT_EQ(sessionMayEnd(true), false) << "cancelled";
  EXPECT_EQ(sessionMayEnd(false), true);
  EXPECT_TRUE(app->endBySystem());
  EXPECT_EQ(defaults.boolean(SettingsKey::lastSessionEndedCleanly), true);
  begin(true);
  ASSERT_THAT(app->journalOffers.get(), SizeIs(1)) << "and no crash";
  app->recoverJournal(app->journalOffers->at(0).id);
  dialogs.queue("Save");
  EXPECT_EQ(sessionMayEnd(true), true);
  EXPECT_FALSE(open().isDirty());
  draw();
  dialogs.queue("Don't Save");
  EXPECT_EQ(sessionMayEnd(true), true);
  EXPECT_EQ(app->keptDrawings().at(0).reason, "Closed without saving");
}

}  // namespace
}  // namespace ostrelon
