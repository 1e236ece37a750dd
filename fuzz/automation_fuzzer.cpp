// Requests of the automation interface, one a line: each is answered with one JSON object on one line,
// with its `id`, and what is refused changes nothing.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "automation/automation_host.h"
#include "automation/json_text.h"
#include "memory_files.h"
#include "require.h"

namespace {

using namespace ostrelon;

constexpr std::size_t kMostRequests = 25;

// The name that the request calls. Empty for anything else.
std::string calledName(const Json& request) {
  const bool isCall = request.value("op", Json()) == "call" && request.contains("name");
  return isCall && request["name"].is_string() ? request["name"].get<std::string>() : std::string();
}

// Requests that are no matter for a fuzzer: those that look at files of the disk itself, beside the file
// system that they are given, and those that run the timers of many days.
bool isLeftOut(const Json& request) {
  const std::string name = calledName(request);
  if (name == "sha256OfFile" || name == "verifyInstaller") return true;
  const Json seconds = request.value("seconds", Json());
  return seconds.is_number() && seconds.get<double>() > 1e5;
}

Json answer(AutomationHost& host, std::string_view request) {
  const std::string reply = host.answer(request);
  require(reply.find('\n') == std::string::npos, "a reply is one line");
  Json json = Json::parse(reply, nullptr, false);
  require(json.is_object(), "a reply is a JSON object");
  require(json.contains("ok") && json["ok"].is_boolean(), "a reply says whether it is one");
  require(json.contains("console") && json["console"].is_array(), "a reply tells the console's lines");
  return json;
}

// What a refusal must leave as it was.
std::string state(AutomationHost& host) {
  return host.answer(
      R"({"op":"state","fields":["entities","selectedEntityIDs","primarySelectedEntityID","undoStack",)"
      R"("isDocumentDirty","documentFileURL","selectedTool","viewport","showGrid","draft","polygonDraft"]})");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MemoryFiles files;
  AutomationOptions options;
  options.paths = userPathsBelow(std::filesystem::temp_directory_path() / "ostrelon-fuzz");
  options.clock = dateFromSeconds(1'767'225'600);
  options.files = &files;
  AutomationHost host(options);
  std::string_view input(reinterpret_cast<const char*>(data), size);
  for (std::size_t count = 0; count < kMostRequests && !input.empty(); ++count) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(input.size(), line.size() + 1));
    std::string error;
    const auto request = parseJson(line, error);
    if (request && request->is_object() && isLeftOut(*request)) continue;
    const std::string before = state(host);
    const Json reply = answer(host, line);
    require(request.has_value() || reply["ok"] == false, "what is no JSON is refused");
    if (request && request->is_object() && request->contains("id")) {
      require(reply.contains("id") && jsonText(reply["id"]) == jsonText((*request)["id"]), "an id is copied");
    }
    if (reply["ok"] == true) {
      require(reply.contains("result"), "an answer has a result");
      continue;
    }
    require(reply.contains("error") && reply["error"].is_string() && reply["error"] != "",
            "a refusal says why");
    require(state(host) == before, "what is refused changes nothing");
  }
  host.terminate();
  return 0;
}
