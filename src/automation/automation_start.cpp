#include "automation/automation_start.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "automation/automation_host.h"
#include "platform/disk_file_system.h"

namespace ostrelon {
namespace {

std::string environment(const std::string& name) {
  const char* value = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe)
  return value != nullptr ? value : "";
}

}  // namespace

int serveAutomation(const CommandLine& line, PictureMaker makePicture) {
  AutomationOptions options;
  if (line.clock) {
    const auto clock = parseISO8601(*line.clock);
    if (!clock) {
      std::fprintf(stderr, "\"%s\" is no time such as 2026-01-01T00:00:00Z.\n", line.clock->c_str());
      return 2;
    }
    options.clock = *clock;
  } else {
    options.clock = std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
  }
  options.makePicture = std::move(makePicture);
  DiskFileSystem files;
  options.paths = line.home ? userPathsBelow(standardizedPath(*line.home)) : userPaths(files, environment);
  options.updateFeed = line.updateFeed.value_or("");
  options.updateKey = line.updateKey.value_or("");
  options.isUITesting = line.isUITesting;
  // Every reply is flushed by hand; the C streams are not used beside them.
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);
  return runAutomation(options, std::cin, std::cout);
}

}  // namespace ostrelon
