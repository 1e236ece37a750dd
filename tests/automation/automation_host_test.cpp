#include "automation/automation_host.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "automation/json_text.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

class Session : public ::testing::Test {
 protected:
  Json send(const std::string& request) { return Json::parse(host.answer(request)); }
  Json result(const std::string& request) {
    const Json reply = send(request);
    EXPECT_EQ(reply["ok"], true) << request << " → " << reply;
    return reply.value("result", Json());
  }

  testing::TemporaryFolder home;
  AutomationHost host{{.paths = userPathsBelow(home.path()), .clock = dateFromSeconds(1'767'225'600)}};
};

TEST_F(Session, SubmitsLinesAndTellsWhatTheConsoleSaid) {
  const Json reply = send(R"({"op":"submit","text":"line 0 0 10 10","id":[7,"x"]})");
  EXPECT_EQ(reply["id"], Json::parse(R"([7,"x"])"));
  EXPECT_EQ(reply["result"], Json());
  ASSERT_EQ(reply["console"].size(), 2u);
  EXPECT_EQ(reply["console"][0],
            Json::parse(R"({"text":"> line 0 0 10 10","isError":false,"isSystem":false})"));
  const Json entities = result(R"({"op":"state","fields":["entities"]})")["entities"];
  EXPECT_EQ(entities[0]["case"], "line");
  EXPECT_EQ(entities[0]["to"], Json::parse("[10,10]"));
  const Json state = result(R"({"op":"state"})");
  EXPECT_FALSE(state.contains("consoleLines"));
  EXPECT_EQ(state["undoStack"], Json::parse(R"({"undoSnapshots":1,"redoSnapshots":0})"));
  EXPECT_EQ(state["trackingAcquireDwellTask"], false);
}

TEST_F(Session, CopiesAnIdentifierOfAnyTypeNullIncluded) {
  EXPECT_TRUE(send(R"({"op":"state","fields":[],"id":null})").contains("id"));
  EXPECT_FALSE(send(R"({"op":"state","fields":[]})").contains("id"));
  EXPECT_EQ(send(R"({"op":"fly","id":{"a":[1]}})")["id"], Json::parse(R"({"a":[1]})"));
}

TEST_F(Session, RefusesWhatIsNoTextAndNestedTooDeeply) {
  EXPECT_EQ(send("\"\xFF\"")["error"], "The request is not JSON.");
  EXPECT_EQ(send(std::string(R"({"op":"state"})") + '\0' + "x")["error"], "The request is not JSON.");
  EXPECT_EQ(send(std::string(5000, '['))["error"], "The request is nested too deeply.");
  EXPECT_EQ(send(R"({"op":"call","name":"gridStep","args":[1e999]})")["error"],
            "The request holds a number that is too large.");
}

TEST_F(Session, EveryRequestIsAnsweredByOneLineAndTheEndIsClean) {
  AutomationOptions options;
  options.paths = userPathsBelow(home.path());
  std::istringstream input("{\"op\":\"state\"}\n\n{\"op\":\"update\"}");
  std::ostringstream output;
  EXPECT_EQ(runAutomation(options, input, output), 0);
  std::istringstream lines(output.str());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_TRUE(Json::accept(line)) << line;
  EXPECT_EQ(count, 3);
  std::ifstream file(home / "settings.json");
  EXPECT_EQ(Json::parse(file)["ostrel.lastSessionEndedCleanly"], true);
}

TEST(JsonText, WritesTheShortestNumbersAndValidUnicode) {
  EXPECT_EQ(jsonText(Json::array({5.0, 0.1, 1e300, -0.0, std::nan(""), 1e21, "\xFFx"})),
            "[5,0.1,1e+300,-0,null,1e+21,\"\xEF\xBF\xBDx\"]");
}

}  // namespace
}  // namespace ostrelon
