// Replays the transcripts of tests/automation/transcripts against the whole program: each line is a request
// in short, and the lines below it, set in by two spaces, are what it must answer.
//
//   new                           a new program in a new home, with a canvas of 800 by 600; so begins a file
//   restart; quit                 the program killed or ended, and started again
//   > line 0 0 10 10              a console line
//   ? entities undoStack          fields of the state
//   =                             the entities, "*" before the selected, and what can be undone
//   gridStep [4]                  a call, with its arguments as JSON
//   press 0 0; drag; release 0 0 shift; click; stroke 0 0 20 0; hover    in sketch units, in the fresh view
//   wait 0.95; key z shift; answer Save; menu Edit/Undo
//   {"op":"window.close"}         any request as it is
//
// Of the reply the result is shown unless it is null, then an error after "!", then the console's lines but
// the echo after "|", "|E" for errors and "|S" for what the system says. Identifiers are numbered as they
// appear, as #1, and may be used so. OSTRELON_UPDATE_GOLDEN=1 writes the answers into the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "automation/automation_host.h"
#include "automation/automation_session.h"
#include "platform/unicode.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryFolder;

std::vector<fs::path> transcripts() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(OSTRELON_SOURCE_DIR "/tests/automation/transcripts")) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string firstWord(const std::string& line) { return line.substr(0, line.find(' ')); }

class Replay {
 public:
  /// The line's answer as a transcript shows it.
  std::string answer(const std::string& line) {
    if (line == "new") {
      home_.emplace();
      numbers_.clear();
      start();
      return {};
    }
    if (line == "restart" || line == "quit") {
      if (line == "quit") host_->terminate();
      start();
      return {};
    }
    if (line == "=") return drawing();
    std::string shown;
    for (const Json& request : requestsOf(line)) shown += shownReply(request);
    return shown;
  }

 private:
  void start() {
    AutomationOptions options;
    options.paths = userPathsBelow(home_->path());
    options.clock = dateFromSeconds(1'767'225'600);
    host_.reset();
    host_ = std::make_unique<AutomationHost>(options);
    host_->answer(R"({"op":"canvas.resize","width":800,"height":600})");
  }
  std::string drawing() {
    const Json state = Json::parse(host_->answer(R"({"op":"state"})"))["result"];
    std::string shown;
    for (Json entity : state["entities"]) {
      const auto& selected = state["selectedEntityIDs"];
      const bool isSelected = std::find(selected.begin(), selected.end(), entity["id"]) != selected.end();
      entity.erase("id");
      shown += std::string(isSelected ? "  * " : "    ") + rounded(entity).dump() + "\n";
    }
    const Json& steps = state["undoStack"];
    return withNumbers(shown + "  " + state["selectedTool"].get<std::string>() + ", undo " +
                       steps["undoSnapshots"].dump() + ", redo " + steps["redoSnapshots"].dump() +
                       (state["isDocumentDirty"] == true ? ", dirty\n" : "\n"));
  }

  std::vector<Json> requestsOf(const std::string& shortLine) {
    const std::string line = withIdentifiers(shortLine);
    const std::string word = firstWord(line);
    const std::string rest = line.size() > word.size() ? line.substr(word.size() + 1) : std::string();
    if (word == ">") return {{{"op", "submit"}, {"text", rest}}};
    if (word == "?") return {{{"op", "state"}, {"fields", splitAtWhiteSpace(rest)}}};
    if (word == "wait") return {{{"op", "time.advance"}, {"seconds", std::stod(rest)}}};
    if (word == "answer") return {{{"op", "answer"}, {"value", rest}}};
    if (word == "menu") return {{{"op", "menu"}, {"title", rest}}};
    std::vector<std::string> words = splitAtWhiteSpace(rest);
    if (word == "key") {
      const std::vector<std::string> modifiers(words.begin() + 1, words.end());
      return {{{"op", "key"}, {"key", words.at(0)}, {"modifiers", modifiers}}};
    }
    const bool isShift = !words.empty() && words.back() == "shift";
    const auto pointer = [&](const std::string& name, std::size_t at) {
      return Json{{"op", "canvas." + name},
                  {"x", 400 + 4 * std::stod(words.at(at))},
                  {"y", 300 - 4 * std::stod(words.at(at + 1))},
                  {"shift", isShift}};
    };
    if (word == "click") return {pointer("press", 0), pointer("release", 0)};
    if (word == "stroke") return {pointer("press", 0), pointer("drag", 2), pointer("release", 2)};
    for (const char* name : {"press", "drag", "release", "hover", "contextMenu"}) {
      if (word == name) return {pointer(name, 0)};
    }
    if (callTable().contains(word)) {
      return {{{"op", "call"}, {"name", word}, {"args", Json::parse(rest.empty() ? "[]" : rest)}}};
    }
    return {line.starts_with("{") ? Json::parse(line) : Json(line)};
  }

  std::string shownReply(const Json& request) {
    const auto state = [&] { return host_->answer(R"({"op":"state"})"); };
    const std::string before = state();
    const std::string text = host_->answer(request.is_string() ? request.get<std::string>() : request.dump());
    EXPECT_EQ(text.find('\n'), std::string::npos);
    const Json reply = Json::parse(text);
    std::string shown;
    if (reply["ok"] == false) {
      shown += "  ! " + reply["error"].get<std::string>() + "\n";
      EXPECT_EQ(state(), before) << "refused, and changed: " << request;
    } else if (!reply["result"].is_null()) {
      shown += "  " + rounded(reply["result"]).dump() + "\n";
    }
    for (const Json& line : reply["console"]) {
      std::string said = line["text"];
      if (said.starts_with("> ")) continue;
      said = std::regex_replace(said, std::regex("\n"), "\n      ");
      shown += (line["isError"] == true    ? "  |E "
                : line["isSystem"] == true ? "  |S "
                                           : "  | ") +
               said + "\n";
    }
    return withNumbers(shown);
  }

  // To ten digits: the last ones are the mathematical library's.
  static Json rounded(Json json) {
    if (json.is_number_float())
      return std::stod((std::ostringstream() << std::setprecision(10) << json.get<double>()).str());
    if (json.is_structured()) {
      for (Json& part : json) part = rounded(std::move(part));
    }
    return json;
  }

  std::string withNumbers(const std::string& text) {
    static const std::regex identifier("[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}");
    std::string shown;
    auto from = text.cbegin();
    for (std::sregex_iterator found(text.begin(), text.end(), identifier), end; found != end; ++found) {
      shown.append(from, (*found)[0].first);
      from = (*found)[0].second;
      // Those of the transcript itself are the same in every run; the built-in systems have names.
      if (found->str().starts_with("0000000")) {
        shown += found->str();
        continue;
      }
      if (const std::string name = builtInName(found->str()); !name.empty()) {
        shown += "<" + name + ">";
        continue;
      }
      const auto [entry, isNew] = numbers_.try_emplace(found->str(), numbers_.size() + 1);
      shown += "#" + std::to_string(entry->second);
    }
    shown.append(from, text.cend());
    for (std::size_t at; (at = shown.find(home_->path().string())) != std::string::npos;) {
      shown.replace(at, home_->path().string().size(), "HOME");
    }
    // The beginning of an identifier, as the first checkpoint of a branch names its source.
    return std::regex_replace(shown, std::regex("cp-[0-9a-f]{8}\\b"), "cp-…");
  }
  static std::string builtInName(const std::string& id) {
    for (const WallSystemSpec& spec : defaultWallSystems()) {
      if (spec.id.text() == id) return spec.name;
    }
    return {};
  }
  std::string withIdentifiers(std::string line) const {
    for (const WallSystemSpec& spec : defaultWallSystems()) {
      line = std::regex_replace(line, std::regex("<" + spec.name + ">"), spec.id.text());
    }
    for (const auto& [id, number] : numbers_) {
      line = std::regex_replace(line, std::regex("#" + std::to_string(number) + "\\b"), id);
    }
    return std::regex_replace(line, std::regex("HOME"), home_->path().string());
  }

  std::optional<TemporaryFolder> home_;
  std::unique_ptr<AutomationHost> host_;
  std::map<std::string, std::size_t> numbers_;
};

class Transcripts : public ::testing::TestWithParam<fs::path> {};
INSTANTIATE_TEST_SUITE_P(All, Transcripts, ::testing::ValuesIn(transcripts()),
                         [](const auto& file) { return file.param.stem().string(); });

TEST_P(Transcripts, AnswerAsWritten) {
  const std::string written = testing::readBytes(GetParam());
  std::istringstream lines(written);
  std::string answered;
  Replay replay;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ")) continue;
    answered += line + "\n";
    if (!line.empty() && !line.starts_with("# ")) answered += replay.answer(line);
  }
  if (std::getenv("OSTRELON_UPDATE_GOLDEN") != nullptr) testing::writeBytes(GetParam(), answered);
  EXPECT_EQ(answered, written);
}

TEST(TranscriptsTogether, CallEveryOperation) {
  std::set<std::string> called;
  for (const fs::path& file : transcripts()) {
    std::istringstream lines(testing::readBytes(file));
    for (std::string line, next; std::getline(lines, line);) called.insert(firstWord(line));
  }
  for (const auto& [name, operation] : callTable()) EXPECT_TRUE(called.contains(name)) << name;
}

}  // namespace
}  // namespace ostrelon
