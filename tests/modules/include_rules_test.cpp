// Which module may know which: the order of src/modules.txt, in includes and in the names of types; where Qt
// may be known; and no circles.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// Each module with its level, that is its line in src/modules.txt.
std::map<std::string, int> levels() {
  std::map<std::string, int> result;
  std::ifstream file(fs::path(OSTRELON_SOURCE_DIR) / "src/modules.txt");
  int level = 0;
  for (std::string line; std::getline(file, line); ++level) {
    if (line.starts_with("#")) continue;
    std::istringstream names(line);
    for (std::string name; names >> name;) result[name] = level;
  }
  return result;
}

struct Source {
  std::string module;
  std::string path;  // from src/
  std::vector<std::string> quoted;
  std::vector<std::string> angled;
  std::string code;  // without comments, texts and includes
};

std::vector<Source> sources() {
  const fs::path root = fs::path(OSTRELON_SOURCE_DIR) / "src";
  static const std::regex include(R"re(^\s*#\s*include\s*(["<])([^">]+)[">])re");
  static const std::regex comment(R"re(//.*|"(\\.|[^"\\])*")re");
  std::vector<Source> all;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string extension = entry.path().extension();
    if (extension != ".h" && extension != ".cpp") continue;
    const fs::path relative = fs::relative(entry.path(), root);
    Source source{relative.begin()->string(), relative.string(), {}, {}, {}};
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      std::smatch match;
      if (std::regex_search(line, match, include)) {
        (match[1] == "<" ? source.angled : source.quoted).push_back(match[2]);
      } else {
        source.code += std::regex_replace(line, comment, "") + "\n";
      }
    }
    all.push_back(std::move(source));
  }
  return all;
}

std::set<std::string> namesIn(const std::string& text, const std::regex& pattern) {
  std::set<std::string> names;
  for (std::sregex_iterator at(text.begin(), text.end(), pattern), end; at != end; ++at) {
    names.insert((*at)[at->size() - 1]);
  }
  return names;
}

TEST(Modules, IncludesPointDownwardOnly) {
  const auto level = levels();
  const auto all = sources();
  ASSERT_GT(all.size(), 50u);
  for (const Source& source : all) {
    ASSERT_TRUE(level.contains(source.module)) << source.path << " lies in no module";
    for (const std::string& include : source.quoted) {
      // Written by the build itself.
      if (include == "build_information.h" || include == "sample_plan.h" || include.ends_with(".moc"))
        continue;
      const std::string module = include.substr(0, include.find('/'));
      EXPECT_TRUE(module == source.module ||
                  (level.contains(module) && level.at(module) < level.at(source.module)))
          << source.path << " includes " << include;
    }
  }
}

// A type belongs to the lowest level whose headers define it at the start of a line. What a file defines
// itself, or takes as a parameter of a template, is its own.
TEST(Modules, NoFileNamesATypeOfAModuleAboveItsOwn) {
  static const std::regex defined(
      R"((?:^|\n)(?:(?:class|struct|union|enum)\b[^;{}()=<>]*?\b([A-Z]\w*)(?: final)?)"
      R"(\s*(?:[^:]:[^:][^;{]*)?\{))");
  static const std::regex own(R"(\b(?:class|struct|enum|typename|using)\s+([A-Z]\w*)\s*(?![\w;]))");
  static const std::regex name(R"(\b([A-Z]\w*))");
  const auto level = levels();
  const auto all = sources();
  std::map<std::string, const Source*> home;
  for (const Source& source : all) {
    if (!source.path.ends_with(".h")) continue;
    for (const std::string& type : namesIn(source.code, defined)) {
      const Source*& first = home[type];
      if (!first || level.at(source.module) < level.at(first->module)) first = &source;
    }
  }
  ASSERT_GT(home.size(), 200u);
  for (const Source& source : all) {
    const std::set<std::string> mine = namesIn(source.code, own);
    for (const std::string& type : namesIn(source.code, name)) {
      const auto found = home.find(type);
      if (found == home.end() || mine.contains(type) || found->second->module == source.module) continue;
      EXPECT_LT(level.at(found->second->module), level.at(source.module))
          << source.path << " names " << type << " of " << found->second->path;
    }
  }
}

TEST(Modules, OnlyTheShellKnowsQt) {
  static const std::regex qt(R"(^(Qt|Q[A-Z]))");
  for (const Source& source : sources()) {
    if (source.module == "shell") continue;
    for (const std::string& include : source.angled) {
      EXPECT_FALSE(std::regex_search(include, qt)) << source.path << " includes <" << include << ">";
    }
  }
}

TEST(Modules, NoFileIncludesItselfByAnyRoad) {
  std::map<std::string, std::vector<std::string>> graph;
  for (const Source& source : sources()) graph[source.path] = source.quoted;
  std::map<std::string, int> state;  // 1: on the road, 2: done
  std::function<void(const std::string&)> visit = [&](const std::string& file) {
    state[file] = 1;
    for (const std::string& next : graph[file]) {
      if (!graph.contains(next)) continue;
      EXPECT_NE(state[next], 1) << next << " is part of a circle with " << file;
      if (state[next] == 0) visit(next);
    }
    state[file] = 2;
  };
  for (const auto& [file, includes] : std::map(graph)) {
    if (state[file] == 0) visit(file);
  }
}

}  // namespace
