#include "automation/automation_host.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "automation/json_text.h"

namespace ostrelon {
namespace {

class Session : public ::testing::Test {
 protected:
  Session() {
    home = std::filesystem::temp_directory_path() / ("ostrelon-automation-" + std::to_string(::getpid()));
    std::filesystem::remove_all(home);
    start();
  }
  ~Session() override {
    host.reset();
    std::filesystem::remove_all(home);
  }

  void start() {
    AutomationOptions options;
    options.paths = userPathsBelow(home);
    options.clock = dateFromSeconds(1'767'225'600);
    host.reset();
    host = std::make_unique<AutomationHost>(options);
  }
  Json send(const std::string& request) { return Json::parse(host->answer(request)); }
  Json result(const std::string& request) {
    const Json reply = send(request);
    EXPECT_EQ(reply["ok"], true) << request << " → " << reply;
    return reply.value("result", Json());
  }
  Json call(const std::string& name, const std::string& arguments = "[]") {
    return result(R"({"op":"call","name":")" + name + R"(","args":)" + arguments + "}");
  }
  std::string refusal(const std::string& request) {
    const Json reply = send(request);
    EXPECT_EQ(reply["ok"], false) << request << " → " << reply;
    return reply.value("error", std::string());
  }

  std::filesystem::path home;
  std::unique_ptr<AutomationHost> host;
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

TEST_F(Session, ChainsAreCheckedStepByStep) {
  const auto parsed = [&](const std::string& words, const Json& state) {
    return call("parseChainSegment", "[" + words + "," + state.dump() + "]");
  };
  const std::string assign = R"(["assign","W2-EXT"])";
  EXPECT_EQ(parsed(assign, nullptr)["message"], "Usage: assign <system>  (select a wall first)");
  const Json wall = parsed(R"(["wall","0","0","10","0"])", nullptr)["command"];
  const Json state = call("applyToValidationState", "[" + wall.dump() + "]");
  EXPECT_EQ(state["entities"].size(), 1u);
  const Json assigning = parsed(assign, state);
  EXPECT_EQ(assigning["case"], "success") << "the wall that the chain will have made is selected";
  EXPECT_EQ(call("executeChainCommand", "[" + assigning["command"].dump() + "]"),
            "Could not assign system to selection.");
  EXPECT_EQ(call("executeChainCommand", "[" + wall.dump() + "]"), Json());
  EXPECT_EQ(result(R"({"op":"state","fields":["entities"]})")["entities"].size(), 1u);
}

TEST_F(Session, SavesAsksAndStartsAgain) {
  result(R"({"op":"submit","text":"line 0 0 10 10"})");
  EXPECT_EQ(result(R"({"op":"window.close"})"), "refused") << "nothing queued cancels";
  result(R"({"op":"answer","value":"Don't Save"})");
  EXPECT_EQ(result(R"({"op":"window.close"})"), "closed");
  const std::string path = (home / "plan.ostrel").string();
  std::filesystem::create_directories(home);
  EXPECT_EQ(call("saveToURL", "[\"" + path + "\"]"), Json());
  EXPECT_EQ(result(R"({"op":"window.close"})"), "closed");
  EXPECT_TRUE(refusal(R"({"op":"call","name":"openDocumentFile","args":["/nowhere/x.ostrel"]})").size() > 10);
  host->terminate();
  start();
  call("openDocumentFile", "[\"" + path + "\"]");
  EXPECT_EQ(result(R"({"op":"state","fields":["documentName"]})")["documentName"], "plan");
  EXPECT_EQ(result(R"({"op":"settings"})")["autoSaveIntervalMinutes"], 5);
}

TEST_F(Session, CopiesAnIdentifierOfAnyTypeNullIncluded) {
  EXPECT_TRUE(send(R"({"op":"state","fields":[],"id":null})").contains("id"));
  EXPECT_FALSE(send(R"({"op":"state","fields":[]})").contains("id"));
  EXPECT_EQ(send(R"({"op":"fly","id":{"a":[1]}})")["id"], Json::parse(R"({"a":[1]})"));
}

TEST_F(Session, OffersTheLastAutoSaveAfterAKill) {
  const std::string folder = (home / "Projects").string();
  std::filesystem::create_directories(folder);
  call("setCustomProjectsFolder", "[\"" + folder + "\"]");
  result(R"({"op":"submit","text":"wall 0 0 120 0"})");
  result(R"({"op":"time.advance","seconds":299.9})");
  EXPECT_EQ(result(R"({"op":"settings"})")["lastAutoSave"], Json());
  const Json reply = send(R"({"op":"time.advance","seconds":0.1})");
  EXPECT_EQ(reply["console"].size(), 1u) << reply;
  const std::string saved = folder + "/Untitled Project.ostrel";
  EXPECT_EQ(result(R"({"op":"settings"})")["lastAutoSave"]["url"], saved);
  start();  // the flag of a clean end was never written
  EXPECT_EQ(call("showAutoSaveRecoveryOffer"), true);
  call("restoreAutoSaveFromOffer");
  EXPECT_EQ(result(R"({"op":"state","fields":["entities"]})")["entities"].size(), 1u);
  EXPECT_EQ(call("showAutoSaveRecoveryOffer"), false);
  host->terminate();
  start();
  EXPECT_EQ(call("showAutoSaveRecoveryOffer"), false);
}

TEST_F(Session, SavesBeforeItCloses) {
  std::filesystem::create_directories(home);
  result(R"({"op":"submit","text":"line 0 0 10 10"})");
  result(R"({"op":"answer","value":"Save"})");
  result(R"({"op":"answer","value":")" + (home / "kept.ostrel").string() + "\"}");
  EXPECT_EQ(result(R"({"op":"window.close"})"), "refused");
  EXPECT_FALSE(std::filesystem::exists(home / "kept.ostrel"));
  result(R"({"op":"time.advance","seconds":0})");
  result(R"({"op":"time.advance","seconds":0.2})");
  EXPECT_TRUE(std::filesystem::exists(home / "kept.ostrel"));
  EXPECT_EQ(result(R"({"op":"window.close"})"), "closed");
}

TEST_F(Session, EveryRequestIsAnsweredByOneLineAndTheEndIsClean) {
  AutomationOptions options;
  options.paths = userPathsBelow(home);
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
