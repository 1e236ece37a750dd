// Files that were made to do harm: an error or a success, soon, and in memory that goes with the size of the
// file rather than with what it claims.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <ctime>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "documents/document_history.h"
#include "documents/sketch_document.h"
#include "documents/sketch_document_io.h"
#include "platform/disk_file_system.h"
#include "platform/json_user_defaults.h"
#include "support/temporary_folder.h"
#include "updates/update_feed.h"

namespace ostrelon {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr double kPatience = 20;  // seconds of the processor
constexpr long kMostMemory = 4'000'000;
#else
constexpr double kPatience = 1;
constexpr long kMostMemory = 500'000;  // KiB more than before
#endif

const std::string kLine = "[\"L\",\"11111111-2222-3333-4444-555555555555\",0,0,1,1]";

std::string repeated(std::size_t times, const std::string& text, const std::string& between = "") {
  std::string all;
  all.reserve(times * (text.size() + between.size()));
  for (std::size_t count = 0; count < times; ++count) {
    if (count > 0) all += between;
    all += text;
  }
  return all;
}

// A document with these members beside those that every one has.
std::string document(const std::string& members) {
  return "{\"v\":2,\"name\":\"n\",\"grid\":true,\"vp\":[0,0,4],\"ws\":{\"active\":0,\"items\":[]}," +
         members + "}";
}

std::string nested(std::size_t depth, const std::string& open, const std::string& inner,
                   const std::string& close) {
  return repeated(depth, open) + inner + repeated(depth, close);
}

long peakMemory() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void expectSoon(const std::string& what, const std::function<void()>& work) {
  SCOPED_TRACE(what);
  const long before = peakMemory();
  const std::clock_t start = std::clock();
  try {
    work();
  } catch (const UserError& error) {
    EXPECT_LT(std::string(error.what()).size(), 500U);
  }
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, kPatience);
  EXPECT_LT(peakMemory() - before, kMostMemory);
}

TEST(HostileFiles, OfDocumentsAreReadOrRefusedSoon) {
  const std::vector<std::pair<std::string, std::string>> documents{
      {"a polygon of a million vertices",
       document("\"e\":[[\"P\",\"11111111-2222-3333-4444-555555555555\",[" +
                repeated(1'000'000, "12,34", ",") + "]]]")},
      {"arrays nested 100,000 deep", document("\"e\":[],\"x\":" + nested(100'000, "[", "", "]"))},
      {"objects nested 100,000 deep", document("\"e\":[],\"x\":" + nested(100'000, "{\"a\":", "1", "}"))},
      {"rows nested 100,000 deep", document("\"e\":" + nested(100'000, "[", "", "]"))},
      {"an end that never comes", repeated(100'000, "[")},
      {"records of format 1 nested deep",
       "{\"formatVersion\":1,\"entities\":[" + nested(50'000, "{\"polygon\":", "1", "}") + "]}"},
      {"a key 200,000 times", document(repeated(200'000, "\"e\":[]", ","))},
      {"one identifier 100,000 times", document("\"e\":[" + repeated(100'000, kLine, ",") + "]")},
      {"undo steps of one identifier",
       document("\"e\":[" + repeated(50'000, kLine, ",") + "],\"undo\":[" +
                repeated(4, "[" + repeated(20'000, kLine, ",") + "]", ",") + "]")},
      {"a million undo steps", document("\"e\":[],\"undo\":[" + repeated(1'000'000, "[]", ",") + "]")},
      {"counts beyond 4 GB", document("\"e\":[[\"W\",\"11111111-2222-3333-4444-555555555555\",0,0,1,1,"
                                      "4294967296]],\"count\":18446744073709551616")},
      {"a number of a million digits",
       document("\"e\":[[\"C\",\"11111111-2222-3333-4444-555555555555\",0,0," + repeated(1'000'000, "9") +
                "]]")},
      {"a tag of ten million letters", document("\"e\":[[\"" + repeated(10'000'000, "L") + "\"]]")},
      {"bytes that are no text", document("\"e\":[],\"x\":\"\xff\xfe\"")},
      {"an identifier with a path", document("\"e\":[[\"L\",\"../../../etc/passwd\",0,0,1,1]]")},
      {"nothing but NUL", std::string(1'000'000, '\0')},
  };
  for (const auto& [what, bytes] : documents) {
    expectSoon(what, [&bytes = bytes] { (void)SketchDocumentIO::decodeDocument(bytes); });
  }
}

TEST(HostileFiles, OfSettingsAndHistoryAndTheFeedAreReadOrRefusedSoon) {
  const std::vector<std::pair<std::string, std::string>> texts{
      {"arrays", "{\"x\":" + nested(100'000, "[", "", "]") + "}"},
      {"objects", "{\"x\":" + nested(100'000, "{\"a\":", "1", "}") + "}"},
      {"an end that never comes", repeated(100'000, "[")},
      {"a name", "{\"" + repeated(1'000'000, "k") + "\":1}"},
  };
  for (const auto& [what, text] : texts) {
    const testing::TemporaryFolder home;
    DiskFileSystem files;
    expectSoon("settings: " + what, [&, &text = text] {
      testing::writeBytes(home / "settings.json", text);
      JsonUserDefaults defaults(files, home / "settings.json");
      defaults.set("ostrel.autoSaveEnabled", false);
      EXPECT_EQ(JsonUserDefaults(files, home / "settings.json").boolean("ostrel.autoSaveEnabled"), false);
    });
    std::filesystem::create_directories(home / ".ostrel-history/branches/main");
    expectSoon("history: " + what, [&, &text = text] {
      testing::writeBytes(home / ".ostrel-history/meta.json", text);
      (void)loadDocumentHistory(files, home / "plan.ostrel");
    });
    expectSoon("feed: " + what, [&text = text] { (void)decodeManifest(text); });
  }
}

}  // namespace
}  // namespace ostrelon
