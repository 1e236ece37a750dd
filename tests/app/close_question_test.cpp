#include "app/close_question.h"

#include <gmock/gmock.h>

#include "support/test_application.h"

namespace ostrelon {
namespace {

using Reply = CloseQuestion::Reply;

struct CloseQuestionTest : ::testing::Test, testing::TestApplication {
  int closes = 0;

  void SetUp() override { application.settings().useDefaultProjectsFolder(); }
  Reply close() {
    std::optional<Reply> answer;
    application.windowShouldClose([&](Reply reply) { answer = reply; }, [this] { ++closes; });
    return answer.value_or(Reply::refused);
  }
};

TEST_F(CloseQuestionTest, AsksInTheStatedWords) {
  submit("line 0 0 10 0");
  EXPECT_EQ(close(), Reply::refused) << "a cancelled question refuses";
  const auto& alert = std::get<Alert>(dialogs.asked().front());
  EXPECT_EQ(alert.message, "Do you want to save changes to Untitled Project before closing?");
  EXPECT_EQ(alert.informativeText, "If you do not save, changes will be lost.");
  EXPECT_EQ(alert.buttons, (std::vector<std::string>{"Save", "Cancel", "Don't Save"}));
  dialogs.queue("Don't Save");
  EXPECT_EQ(close(), Reply::allowed);
  EXPECT_TRUE(document.isDirty());
}

TEST_F(CloseQuestionTest, SaveRefusesForNowAndClosesOnceTheDocumentIsClean) {
  submit("line 0 0 10 0");
  dialogs.queue("Save");
  EXPECT_EQ(close(), Reply::refused);
  EXPECT_TRUE(application.closeQuestion().isClosingAfterSave());
  dialogs.queue("Save");
  EXPECT_EQ(close(), Reply::refused);
  settle();
  EXPECT_EQ(closes, 1) << "pressed twice it saves and closes once";
  EXPECT_FALSE(document.isDirty());
  EXPECT_FALSE(application.closeQuestion().isClosingAfterSave());
  EXPECT_TRUE(files.exists(home / "Documents" / "Ostrelon" / "Untitled Project.ostrel"));
  EXPECT_FALSE(files.exists(home / "Documents" / "Ostrelon" / "Untitled Project (1).ostrel"));
}

}  // namespace
}  // namespace ostrelon
