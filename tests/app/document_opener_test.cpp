#include "app/document_opener.h"

#include <gmock/gmock.h>

#include "core/adding.h"
#include "support/manual_background.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

using ::testing::SizeIs;
using ::testing::StartsWith;

// The program over a scheduler whose background work ends when the test says so.
struct DocumentOpenerTest : ::testing::Test, testing::TestApplication {
  testing::ManualBackground background;
  Application program{{.host = {background, dialogs, files},
                       .defaults = defaults,
                       .updateClient = client,
                       .openInstaller = {}},
                      backgroundOptions()};
  Workspace& open = program.workspace();
  FilePath large = home / "Large.ostrel";

  ApplicationOptions backgroundOptions() const {
    ApplicationOptions all = options();
    all.opensInBackground = true;
    return all;
  }
  void SetUp() override {
    std::vector<SketchEntity> many;
    for (int i = 0; i < 80'000; ++i) many.push_back(LineEntity{UUID::random(), {0.5 + i, 0}, {1.25 + i, 0}});
    board.restoreSnapshot(EntityList(std::move(many)));
    document.save(large);
  }
  void draw() { addLine(open.sketch, {0, 0}, {4, 0}); }
  std::string lastText() const { return program.workspace().messages.lines->back().text; }
};

TEST_F(DocumentOpenerTest, ALargeDocumentComesWhenItHasBeenReadAndSaysSoWhereThatTakesLong) {
  program.openDocumentAt(large);
  EXPECT_THAT(open.sketch.entities(), SizeIs(0)) << "nothing has come yet";
  background.clock.advance(Seconds(0.2));
  EXPECT_FALSE(open.messages.toast->has_value());
  background.clock.advance(Seconds(0.2));
  ASSERT_TRUE(open.messages.toast->has_value());
  EXPECT_EQ(open.messages.toast->value().message, "Opening Large…");
  background.finishBackground();
  EXPECT_FALSE(open.messages.toast->has_value());
  EXPECT_THAT(open.sketch.entities(), SizeIs(80'000));
  EXPECT_EQ(lastText(), "Opened Large.");
  EXPECT_FALSE(open.document.isDirty());
}

TEST_F(DocumentOpenerTest, WhatIsChangedMeanwhileIsAskedAbout) {
  program.openDocumentAt(large);
  draw();
  background.finishBackground();
  EXPECT_THAT(dialogs.asked(), SizeIs(1));
  EXPECT_THAT(open.sketch.entities(), SizeIs(1)) << "a cancelled question keeps what was drawn";

  dialogs.queue("Don't Save");
  program.openDocumentAt(large);
  background.finishBackground();
  EXPECT_THAT(dialogs.asked(), SizeIs(2)) << "asked about once where nothing has changed since";
  EXPECT_THAT(open.sketch.entities(), SizeIs(80'000));
}

TEST_F(DocumentOpenerTest, AFileThatCannotBeReadLeavesTheDocumentAlone) {
  draw();
  testing::writeBytes(large, std::string(5 << 20, ' '));
  dialogs.queue("Don't Save");
  program.openDocumentAt(large);
  background.finishBackground();
  EXPECT_THAT(lastText(), StartsWith("Open failed: "));
  EXPECT_THAT(open.sketch.entities(), SizeIs(1));
  EXPECT_TRUE(open.document.isDirty());
}

TEST_F(DocumentOpenerTest, ALaterCommandTakesItsPlace) {
  program.openDocumentAt(large);
  background.clock.advance(Seconds(0.4));
  program.newDocument();
  EXPECT_FALSE(open.messages.toast->has_value());
  draw();
  background.finishBackground();
  EXPECT_THAT(open.sketch.entities(), SizeIs(1));
  EXPECT_THAT(dialogs.asked(), SizeIs(0));
}

TEST_F(DocumentOpenerTest, SavingUnderAnotherNameGivesItUp) {
  for (const auto save : {&Application::saveAs, &Application::save}) {
    program.openDocumentAt(large);
    (program.*save)();
    background.finishBackground();
    EXPECT_THAT(open.sketch.entities(), SizeIs(0)) << "the document for which a name was asked stays";
  }
}

TEST_F(DocumentOpenerTest, WithoutBackgroundEverythingHasHappenedWhenTheCallReturns) {
  application.openDocumentAt(large);
  EXPECT_THAT(sketch.entities(), SizeIs(80'000));
  EXPECT_EQ(lastLine().text, "Opened Large.");
}

}  // namespace
}  // namespace ostrelon
