// The list of operations: whole, and the same in the manual. OSTRELON_UPDATE_GOLDEN=1 writes it there.
#include "automation/operation_list.h"

#include <gtest/gtest.h>

#include <set>

#include "automation/automation_host.h"
#include "automation/automation_session.h"
#include "platform/unicode.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

TEST(OperationList, TellsOfEveryCallWithEachArgumentAndASentence) {
  for (const auto& [name, call] : callTable()) {
    const OperationText* text = operationText(name);
    ASSERT_NE(text, nullptr) << name;
    const std::vector<std::string> names = splitAtWhiteSpace(text->arguments);
    EXPECT_EQ(names.size(), call.signature().arguments.size()) << name;
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size()) << name;
    EXPECT_TRUE(text->sentence.ends_with('.')) << name;
    const std::string result = text->result.empty() ? call.signature().result : std::string(text->result);
    EXPECT_EQ(result.find("any value"), std::string::npos) << name;
  }
}

TEST(OperationList, IsAnsweredAndHoldsToWhatCallsRead) {
  const testing::TemporaryFolder home;
  AutomationHost host{{.paths = userPathsBelow(home.path()), .clock = dateFromSeconds(1'767'225'600)}};
  const Json list = Json::parse(host.answer(R"({"op":"operations"})"))["result"];
  ASSERT_EQ(list.size(), callTable().size());
  const auto row = [&](const std::string& name) {
    for (const Json& operation : list) {
      if (operation["name"] == name) return operation;
    }
    return Json();
  };
  EXPECT_EQ(row("zoomViewport")["arguments"],
            Json::parse(R"([{"name":"factor","type":"number","optional":false},
                            {"name":"viewPoint","type":"point","optional":false}])"));
  EXPECT_EQ(row("addWall")["arguments"][0]["optional"], false) << "two that are not stand behind it";
  EXPECT_EQ(row("saveCheckpoint")["arguments"][0]["optional"], true);
  EXPECT_EQ(row("alignSelection")["arguments"][0]["type"], "horizontal or vertical");
  EXPECT_EQ(row("planLoops")["result"], "list of (object of `points` and `systems`)");
  // Without any argument, those with one that is not optional say what is missing.
  for (const Json& operation : list) {
    const bool needsOne = !operation["arguments"].empty() && operation["arguments"][0]["optional"] == false;
    if (!needsOne) continue;
    const Json reply = Json::parse(
        host.answer(Json{{"op", "call"}, {"name", operation["name"]}, {"args", Json::array()}}.dump()));
    // One that takes null may be passed over for the next.
    const std::string error = reply.value("error", "");
    EXPECT_TRUE(error.starts_with("Argument ") && error.ends_with(" is missing."))
        << operation["name"] << ": " << error;
  }
}

TEST(OperationList, IsTheTableOfTheManual) {
  const std::string path = OSTRELON_SOURCE_DIR "/docs/automation.md";
  const std::string written = testing::readBytes(path);
  const std::string_view begin = "<!-- operations: written from the program -->\n";
  const std::size_t from = written.find(begin);
  const std::size_t to = written.find("<!-- end of operations -->");
  ASSERT_NE(from, std::string::npos);
  ASSERT_NE(to, std::string::npos);
  std::string current = written;
  current.replace(from + begin.size(), to - from - begin.size(), operationTable());
  if (std::getenv("OSTRELON_UPDATE_GOLDEN") != nullptr) testing::writeBytes(path, current);
  EXPECT_EQ(written, current);
}

}  // namespace
}  // namespace ostrelon
