// The program as a person meets it, in a real window: the first start, drawing, saving, closing with
// the question, the next start, and recovery after a crash.
#include <cstdlib>

#include "window/window_session.h"

namespace ostrelon {
namespace {

namespace fs = std::filesystem;
using testing::eventually;
using testing::kProgram;

struct WholeSession : testing::WindowSession {};

TEST_F(WholeSession, FromTheFirstStartToRecoveryAfterACrash) {
  // The first start asks for a folder.
  ASSERT_NO_FATAL_FAILURE(start({}, true));
  shoot("1-first-run");
  EXPECT_EQ(setting("ostrel.projectsFolderPath"), "");
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  EXPECT_TRUE(fs::is_directory(document.parent_path()));

  // Drawing, by words and by hand.
  console("wall 0 0 40 0");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  screen->click(90, 259);  // Rectangle
  screen->drag(420, 160, 540, 240);
  screen->click(90, 163);  // Line
  screen->drag(620, 160, 760, 240);
  shoot("2-drawn");

  // Saving.
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project" && fs::exists(document); })) << title();
  EXPECT_EQ(savedEntities(), 3U);
  shoot("3-saved");

  // Closing with changes asks; Cancel keeps the window, Save ends it.
  screen->key("Escape");
  console("circle 10 -20 6");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  screen->key("ctrl+q");
  ASSERT_TRUE(eventually([&] { return hasSheet(); }));
  shoot("4-question");
  screen->key("Escape");
  ASSERT_TRUE(eventually([&] { return isClear(); }));
  EXPECT_FALSE(program->hasEnded());
  EXPECT_EQ(savedEntities(), 3U);
  screen->key("ctrl+q");
  ASSERT_TRUE(eventually([&] { return hasSheet(); }));
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return program->hasEnded(); }));
  EXPECT_EQ(program->status(), 0) << log();
  EXPECT_EQ(savedEntities(), 4U);

  // The next start asks nothing, and opens what it is given.
  ASSERT_NO_FATAL_FAILURE(start({document.string()}, false));
  console("line 0 30 40 30");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project"; })) << title();
  EXPECT_EQ(savedEntities(), 5U);
  shoot("5-started-again");
  ASSERT_NO_FATAL_FAILURE(quit());

  // An auto-save, minutes long in a moment, and then a crash.
  const fs::path script = folder / "script";
  testing::writeBytes(script, R"({"op":"call","name":"openDocument","args":[")" + document.string() + R"("]}
{"op":"submit","text":"line 0 40 40 40"}
{"op":"time.advance","seconds":301}
)");
  const std::string automation = std::string(kProgram) + " --automation --home '" + home.string() + "' <'" +
                                 script.string() + "' >>'" + (folder / "program.log").string() + "'";
  ASSERT_EQ(std::system(automation.c_str()), 0) << log();
  EXPECT_EQ(savedEntities(), 6U);
  ASSERT_NO_FATAL_FAILURE(start({}, false));
  program->kill();

  ASSERT_NO_FATAL_FAILURE(start({}, true));
  shoot("6-recovery");
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  screen->key("ctrl+0");  // zoom to fit
  console("line 0 50 40 50");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << title();
  shoot("7-restored");
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project"; })) << title();
  EXPECT_EQ(savedEntities(), 7U) << "it went on from what was saved last";
  ASSERT_NO_FATAL_FAILURE(quit());

  // It ended well, so nothing is offered.
  ASSERT_NO_FATAL_FAILURE(start({}, false));
  ASSERT_NO_FATAL_FAILURE(quit());
}

TEST(WithoutAWindow, NeitherJournalNorKeptDrawingIsLeft) {
  testing::TemporaryFolder folder;
  testing::writeBytes(folder / "script", "line 0 0 1 1\n");
  const std::string program = std::string(kProgram) + " --home '" + folder.path().string() + "' --console '" +
                              (folder / "script").string() + "' --save '" + (folder / "A.ostrel").string() +
                              "'";
  ASSERT_EQ(std::system((program + " >/dev/null").c_str()), 0);
  testing::writeBytes(folder / "script", "line 0 0 2 2\nline 0 0 3 3\n");
  ASSERT_EQ(std::system((program + " >/dev/null").c_str()), 0) << "the file is replaced";
  EXPECT_THAT(testing::readBytes(folder / "A.ostrel"), ::testing::HasSubstr("0,0,3,3"));
  EXPECT_FALSE(fs::exists(folder / "state"));
}

}  // namespace
}  // namespace ostrelon
