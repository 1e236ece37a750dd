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

TEST_F(Session, RefusesWhatDoesNotFitAndGoesOn) {
  EXPECT_EQ(refusal("nonsense"), "The request is not JSON.");
  EXPECT_EQ(refusal("[1]"), "The request is not an object.");
  EXPECT_EQ(refusal("\"\xFF\""), "The request is not JSON.");
  EXPECT_EQ(refusal(std::string(R"({"op":"state"})") + '\0' + "x"), "The request is not JSON.");
  EXPECT_EQ(refusal(std::string(5000, '[')), "The request is nested too deeply.");
  EXPECT_EQ(refusal(R"({"op":"call","name":"gridStep","args":[1e999]})"),
            "The request holds a number that is too large.");
  EXPECT_EQ(refusal(R"({"op":"fly"})"), "Unknown operation \"fly\".");
  EXPECT_EQ(refusal(R"({"op":"call","name":"fly"})"), "Unknown operation \"fly\".");
  EXPECT_EQ(refusal(R"({"op":"submit"})"), "\"text\": expected a text.");
  EXPECT_EQ(refusal(R"({"op":"call","name":"addCircle","args":[[0,0]]})"), "Argument 2 is missing.");
  EXPECT_EQ(refusal(R"({"op":"call","name":"addCircle","args":[[0],1]})"),
            "Argument 1: expected a point [x, y].");
  EXPECT_EQ(refusal(R"({"op":"call","name":"undo","args":[1]})"),
            "Too many arguments: 1 where at most 0 are expected.");
  EXPECT_EQ(refusal(R"({"op":"state","fields":["nothing"]})"), "There is no field \"nothing\".");
  EXPECT_EQ(refusal(R"({"op":"time.advance","seconds":-1})"),
            "\"seconds\": expected a number from 0 to 1e8.");
  EXPECT_EQ(refusal(R"({"op":"menu","title":"Edit/Undo"})"), "The menu command \"Edit/Undo\" is disabled.");
  EXPECT_EQ(result(R"({"op":"state","fields":["entities"]})")["entities"].size(), 0u);
}

TEST_F(Session, CallsTakeEntitiesByValueOrIdentifier) {
  call("addLine", "[[0,0],[3,4]]");
  const std::string id = result(R"({"op":"state","fields":["entities"]})")["entities"][0]["id"];
  EXPECT_EQ(call("entityMetrics", "[\"" + id + "\"]")["length"], 5.0);
  EXPECT_EQ(call("entityDescription", R"([{"case":"circle","center":[0,0],"radius":2}])"),
            "circle center (0.0, 0.0) · r=2.0");
  EXPECT_EQ(call("formatFeetInches", "[3.5]"), "3'6\"");
  EXPECT_EQ(call("parseNumber", R"(["nan"])"), Json()) << "what is not finite is null";
  EXPECT_EQ(call("selectionHandles", R"([{"case":"line","from":[0,0],"to":[1,1]}])").size(), 2u);
  EXPECT_EQ(call("setSelectedEntityLength", "[3]"), "noSelection");
  EXPECT_EQ(call("applyTrim", "[0,5,[0,0]]"), Json::parse(R"({"case":"failure","code":1})"));
  EXPECT_EQ(call("makeDocumentV2", "[false]")["e"][0][0], "L");
  EXPECT_EQ(
      refusal(R"({"op":"call","name":"entityMetrics","args":["0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9"]})"),
      "Argument 1: no entity of the document has this identifier.");
}

TEST_F(Session, SegmentsAreGivenAsPairsOrAsTheirEnds) {
  EXPECT_EQ(call("extendSegmentToBoundary", "[[[0,0],[1,0]],[[5,-1],[5,1]]]"), Json::parse("[[0,0],[5,0]]"));
  EXPECT_EQ(call("extendSegmentToBoundary", "[[0,0],[1,0],[5,-1],[5,1]]"), Json::parse("[[0,0],[5,0]]"));
  const Json hits = Json::parse("[[[-2,0],0.3],[[2,0],0.7]]");
  EXPECT_EQ(call("segmentCircleIntersections", "[[[-5,0],[5,0]],[0,0],2]"), hits);
  EXPECT_EQ(call("segmentCircleIntersections", "[[-5,0],[5,0],[0,0],2]"), hits);
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

TEST_F(Session, DrawsWithThePointerOnAVirtualClock) {
  result(R"({"op":"canvas.resize","width":800,"height":600})");
  call("activateTool", R"(["line"])");
  result(R"({"op":"canvas.press","x":400,"y":300})");
  result(R"({"op":"canvas.drag","x":480,"y":302})");
  result(R"({"op":"canvas.release","x":480,"y":302})");
  const Json entities = result(R"({"op":"state","fields":["entities"]})")["entities"];
  ASSERT_EQ(entities.size(), 1u);
  EXPECT_EQ(entities[0]["to"], Json::parse("[20,0]"));
  result(R"({"op":"canvas.hover","x":480,"y":300})");
  result(R"({"op":"time.advance","seconds":0.95})");
  EXPECT_EQ(result(R"({"op":"state","fields":["acquiredEntitySnap"]})")["acquiredEntitySnap"], Json());
  result(R"({"op":"time.advance","seconds":0.05})");
  EXPECT_EQ(result(R"({"op":"state","fields":["snapFeedback"]})")["snapFeedback"],
            "Locked · Endpoint · Line 1");
  EXPECT_EQ(result(R"({"op":"key","key":"z","modifiers":["shift"]})"), "consumed");
  EXPECT_EQ(result(R"({"op":"key","key":"s","textFocus":true})"), "passed");
  EXPECT_EQ(result(R"({"op":"menu","title":"Edit/Undo"})"), Json());
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

TEST_F(Session, KeepsCheckpointsOnBranches) {
  std::filesystem::create_directories(home);
  const std::string path = "\"" + (home / "plan.ostrel").string() + "\"";
  result(R"({"op":"submit","text":"line 0 0 10 10"})");
  call("saveToURL", "[" + path + ",false]");
  const std::string checkpoint = call("saveCheckpoint", R"(["Walls"])")["id"];
  EXPECT_EQ(call("createBranch", "[" + path + R"(,"Option A",")" + checkpoint + "\",1767225600]")["id"],
            "option-a");
  EXPECT_EQ(call("loadDocumentHistory", "[" + path + "]")["metadata"]["branches"].size(), 2u);
  EXPECT_EQ(refusal(R"({"op":"call","name":"switchBranch","args":["attic"]})"),
            "No branch named attic exists.");
  const Json branch = call("switchBranch", R"(["option a"])");
  EXPECT_EQ(branch, call("currentBranch"));
  result(R"({"op":"submit","text":"circle 0 0 5"})");
  EXPECT_EQ(refusal(R"({"op":"call","name":"switchBranch","args":["main"]})"),
            "Save or checkpoint current changes before switching branches.");
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
