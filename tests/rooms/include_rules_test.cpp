// The rules of the house: which room may include which, where Qt may be known, and no circles.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;

struct Rooms {
  // Each room with those that it may look at, itself left out.
  std::map<std::string, std::set<std::string>> seen{
      {"platform", {}},
      {"core", {"platform"}},
      {"geometry", {"platform", "core"}},
      {"documents", {"platform", "core"}},
  };
  Rooms() {
    const std::set<std::string> below{"platform", "core", "geometry", "documents"};
    seen["interaction"] = below;
    for (const char* room : {"console", "updates", "exchange"}) {
      seen[room] = below;
      seen[room].insert("interaction");
    }
    seen["app"] = seen["console"];
    seen["app"].insert({"console", "updates", "exchange"});
    seen["automation"] = seen["app"];
    seen["automation"].insert("app");
    seen["shell"] = seen["automation"];
    seen["shell"].insert("automation");
  }
};

struct Source {
  std::string room;
  std::string path;  // from src/
  std::vector<std::string> quoted;
  std::vector<std::string> angled;
};

std::vector<Source> sources() {
  const fs::path root = fs::path(OSTRELON_SOURCE_DIR) / "src";
  static const std::regex pattern(R"re(^\s*#\s*include\s*(["<])([^">]+)[">])re");
  std::vector<Source> all;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string extension = entry.path().extension();
    if (extension != ".h" && extension != ".cpp") continue;
    const fs::path relative = fs::relative(entry.path(), root);
    Source source{relative.begin()->string(), relative.string(), {}, {}};
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      std::smatch match;
      if (!std::regex_search(line, match, pattern)) continue;
      (match[1] == "<" ? source.angled : source.quoted).push_back(match[2]);
    }
    all.push_back(std::move(source));
  }
  return all;
}

TEST(Rooms, IncludesPointDownwardOnly) {
  const Rooms rooms;
  const auto all = sources();
  ASSERT_GT(all.size(), 50u);
  for (const Source& source : all) {
    ASSERT_TRUE(rooms.seen.contains(source.room)) << source.path << " lies in no room";
    for (const std::string& include : source.quoted) {
      // Written by the build itself.
      if (include == "build_information.h" || include == "sample_plan.h" || include.ends_with(".moc"))
        continue;
      const std::string room = include.substr(0, include.find('/'));
      EXPECT_TRUE(room == source.room || rooms.seen.at(source.room).contains(room))
          << source.path << " includes " << include;
    }
  }
}

TEST(Rooms, OnlyTheShellKnowsQt) {
  static const std::regex qt(R"(^(Qt|Q[A-Z]))");
  for (const Source& source : sources()) {
    if (source.room == "shell") continue;
    for (const std::string& include : source.angled) {
      EXPECT_FALSE(std::regex_search(include, qt)) << source.path << " includes <" << include << ">";
    }
  }
}

TEST(Rooms, NoFileIncludesItselfByAnyRoad) {
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
