// Every operation that can be called, with every kind of argument: each is reached, and whatever is
// asked, the answer is one line of JSON and a refused request changes nothing.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <regex>
#include <set>

#include "automation/automation_host.h"
#include "automation/automation_session.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

class CallStorm : public ::testing::Test {
 protected:
  CallStorm() {
    options.paths = userPathsBelow(home.path());
    options.clock = dateFromSeconds(1'767'225'600);
    host = std::make_unique<AutomationHost>(options);
    std::filesystem::create_directories(home.path() / "Projects");
  }

  Json send(const Json& request) {
    const std::string reply = host->answer(request.dump(-1, ' ', false, Json::error_handler_t::replace));
    EXPECT_EQ(reply.find('\n'), std::string::npos);
    const Json json = Json::parse(reply, nullptr, false);
    EXPECT_TRUE(json.is_object() && json.contains("ok") && json.contains("console")) << reply;
    return json;
  }
  Json call(const std::string& name, const Json& arguments) {
    return send({{"op", "call"}, {"name", name}, {"args", arguments}});
  }
  Json state() { return send({{"op", "state"}})["result"]; }

  // A drawing with one entity of each kind, walls selected, and a file.
  void drawAfresh() {
    send({{"op", "answer"}, {"value", "Don't Save"}});
    call("newDocument", Json::array());
    call("cancelSelectDrag", Json::array());
    call("cancelDraft", Json::array());
    call("restoreSnapshot",
         {{{{"case", "line"}, {"id", kLine}, {"from", {0, 0}}, {"to", {10, 0}}},
           {{"case", "wall"}, {"id", kWall}, {"from", {5, -5}}, {"to", {5, 5}}, {"systemSpecID", kWall}},
           {{"case", "circle"}, {"id", kCircle}, {"center", {5, 0}}, {"radius", 3}},
           {{"case", "arc"}, {"center", {0, 0}}, {"radius", 4}, {"startAngle", 0}, {"endAngle", 2}},
           {{"case", "rectangle"}, {"origin", {-2, -2}}, {"size", {8, 4}}},
           {{"case", "polygon"}, {"vertices", {{0, 0}, {4, 0}, {0, 4}}}}}});
    call("setActiveWallSystem", Json::array({call("activeWallSystemSpec", Json::array())["result"]}));
    call("selectSingleEntity", Json::array({kLine}));
    call("setCustomProjectsFolder", Json::array({(home.path() / "Projects").string()}));
    call("saveToURL", {(home.path() / "plan.ostrel").string(), false});
  }

  Json anything() {
    const auto below = [this](std::size_t limit) {
      return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    return values[below(values.size())];
  }

  void learnValues() {
    values = {0,
              1,
              2,
              3,
              -1,
              0.5,
              -0.0,
              1e300,
              -1e300,
              1e-300,
              4.5,
              90,
              9007199254740993,
              2147483648,
              true,
              false,
              nullptr,
              "",
              "line",
              "wall",
              "select",
              "horizontal",
              "success",
              "dark",
              "length",
              "applied",
              "endpoint",
              "lineEnd",
              "12 45",
              "1.2.0",
              "W2-EXT",
              "main",
              kLine,
              kWall,
              kCircle,
              "\xFF\xFE",
              Json::array(),
              {0, 0},
              {3, 4},
              {1e300, -1e300},
              {{0, 0}, {1, 1}},
              {{0, 0}, {4, 0}, {0, 4}},
              {"line", "0", "0", "1", "1"},
              {kLine, kCircle},
              {0, 5, -7},
              {{"case", "line"}, {"from", {0, 0}}, {"to", {0, 0}}},
              {{"case", "circle"}, {"center", {0, 0}}, {"radius", -1}},
              {{"case", "arc"}, {"center", {0, 0}}, {"radius", 1}, {"startAngle", 1e300}, {"endAngle", 0}},
              {{"case", "rectangle"}, {"origin", {0, 0}}, {"size", {-5, 0}}},
              {{"case", "polygon"}, {"vertices", Json::array()}},
              {{"polygonVertex", -1}},
              {{"polygonVertex", 1}},
              {{"minX", 0}, {"minY", 0}, {"maxX", 5}, {"maxY", 5}},
              {{"pan", {0, 0}}, {"scale", 0}},
              {{"pan", {400, 300}}, {"scale", 4}},
              {{"start", {0, 0}}, {"current", {1, 1}}},
              {{"linesAdded", 2}},
              {{"startSketchPoint", {0, 0}},
               {"currentSketchPoint", {1, 1}},
               {"startViewX", 0},
               {"currentViewX", 9}},
              {{"point", {0, 0}}, {"kind", "endpoint"}, {"entityID", kLine}, {"entityName", "Line 1"}},
              {{"point", {2, 2}}, {"axes", {"vertical"}}},
              {{"entities", Json::array()}},
              {{"case", "success"}, {"target", 1}, {"edge", 2}},
              {{"case", "failure"}, {"code", 7}},
              {{"releases", Json::array()}},
              (home.path() / "plan.ostrel").string(),
              (home.path() / "none.ostrel").string(),
              (home.path() / "Projects").string(),
              home.path().string()};
    const Json spec = call("activeWallSystemSpec", Json::array())["result"];
    values.push_back(spec);
    values.push_back(spec["id"]);
    const Json document = call("makeDocumentV2", Json::array({true}))["result"];
    values.push_back(document);
    values.push_back(document.dump());
    values.push_back(call("captureCommandMutationState", Json::array())["result"]);
    const Json release{{"version", "2.0.0"},
                       {"downloadUrl", "https://example.org/Ostrelon.deb"},
                       {"sha256", std::string(64, 'a')},
                       {"signature", "AAAA"},
                       {"changes", {"New"}}};
    values.push_back(release);
    values.push_back({{"releases", Json::array({release})}});
    values.push_back(Json{{"releases", Json::array({release})}}.dump());
    values.push_back({{"currentVersion", "1.0.0"},
                      {"latestRelease", release},
                      {"interveningReleases", Json::array({release})}});
    values.push_back({{"url", (home.path() / "plan.ostrel").string()}, {"displayName", "plan"}});
    const Json checkpoint = call("saveCheckpoint", Json::array({"First"}))["result"];
    values.push_back(checkpoint["id"]);
  }

  static constexpr const char* kLine = "11111111-1111-4111-8111-111111111111";
  static constexpr const char* kWall = "22222222-2222-4222-8222-222222222222";
  static constexpr const char* kCircle = "33333333-3333-4333-8333-333333333333";

  testing::TemporaryFolder home;
  AutomationOptions options;
  std::unique_ptr<AutomationHost> host;
  std::mt19937 random{20260101};
  std::vector<Json> values;
};

TEST_F(CallStorm, EveryOperationIsReachedAndRefusalsChangeNothing) {
  drawAfresh();
  learnValues();
  static const std::regex complaint(R"(^Argument (\d+)( is missing|: )(.*))");
  static const std::regex tooMany("^Too many arguments: .*");
  // Values that have silenced a complaint, such as "expected a number."
  std::map<std::string, std::vector<Json>> remedies;
  for (const auto& [name, operation] : callTable()) {
    SCOPED_TRACE(name);
    bool isReached = false;
    std::string refusal;
    for (int round = 0; round < 2; ++round) {
      drawAfresh();
      const Json before = state();
      Json arguments = Json::array();
      std::string complained;  // of the last argument that was mended, and where it stands
      std::size_t mended = 0;
      for (int attempt = 0; attempt < 600; ++attempt) {
        const Json reply = call(name, arguments);
        if (reply["ok"] == true) {
          isReached = true;
          if (round == 0 || attempt > 100) break;
          arguments.push_back(anything());  // perhaps it takes one more
          continue;
        }
        refusal = reply["error"];
        if (!isReached && attempt % 8 == 0) {
          EXPECT_EQ(state(), before) << name << arguments << " → " << refusal;
        }
        std::smatch match;
        if (std::regex_match(refusal, match, complaint)) {
          const std::size_t position = std::stoul(match[1]) - 1;
          if (!complained.empty() && position > mended) remedies[complained].push_back(arguments[mended]);
          complained = match[3];
          mended = position;
          while (arguments.size() <= position) arguments.push_back(nullptr);
          const auto& known = remedies[complained];
          const bool isKnown = !known.empty() && random() % 4 != 0;
          arguments[position] = isKnown ? known[random() % known.size()] : anything();
        } else if (std::regex_match(refusal, tooMany)) {
          break;
        } else {
          // The operation itself refuses these values; others may please it.
          for (Json& argument : arguments) argument = anything();
          complained.clear();
        }
      }
    }
    // These two want what no chance brings together: a checkpoint's name, and a publisher's signature.
    const bool isRare = name == "createBranch" || name == "verifyInstaller";
    EXPECT_TRUE(isReached || isRare) << refusal;
  }
}

TEST_F(CallStorm, RandomRequestsAreAllAnswered) {
  drawAfresh();
  learnValues();
  std::vector<std::string> names;
  for (const auto& [name, operation] : callTable()) names.push_back(name);
  const std::vector<std::string> operations{"submit",        "state",          "settings",
                                            "update",        "canvas.resize",  "canvas.press",
                                            "canvas.drag",   "canvas.release", "canvas.doubleClick",
                                            "canvas.hover",  "canvas.leave",   "canvas.contextMenu",
                                            "canvas.scroll", "canvas.magnify", "key",
                                            "answer",        "window.close",   "update.serve",
                                            "menu",          "time.advance",   "none"};
  const std::vector<std::string> members{
      "text",      "fields",        "x",     "y",     "width",    "height",   "dx", "dy", "key", "shift",
      "modifiers", "magnification", "value", "title", "manifest", "installer"};
  for (int i = 0; i < 4000; ++i) {
    if (i % 200 == 0) drawAfresh();
    Json request{{"op", operations[random() % operations.size()]}};
    for (const std::string& member : members) {
      if (random() % 2 == 0) request[member] = random() % 3 == 0 ? anything() : Json(random() % 800);
    }
    request["seconds"] = random() % 100;
    if (random() % 2 == 0) {
      request = {{"op", "call"}, {"name", names[random() % names.size()]}, {"args", Json::array()}};
      for (auto count = random() % 4; count > 0; --count) request["args"].push_back(anything());
    }
    if (random() % 8 == 0) request = anything();
    send(request);
    if (HasFailure()) FAIL() << request;
  }
}

}  // namespace
}  // namespace ostrelon
