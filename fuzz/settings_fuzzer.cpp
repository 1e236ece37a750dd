// The settings file: whatever it holds, the program starts, keeps what it does not understand, and can
// set and read back its own keys.
#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "documents/app_settings.h"
#include "memory_files.h"
#include "platform/json_user_defaults.h"
#include "require.h"

namespace {

using namespace ostrelon;

const FilePath kFile = "/home/settings.json";

bool isSetAside(const MemoryFiles& files, const std::string& text) {
  return std::any_of(files.contents.begin(), files.contents.end(),
                     [&](const auto& file) { return file.first != kFile && file.second == text; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto original = nlohmann::json::parse(text, nullptr, false);
  MemoryFiles files;
  files.contents[kFile] = text;
  JsonUserDefaults defaults(files, kFile);
  const bool isDamaged = isSetAside(files, text);
  // What is nested deeper than any setting is damaged too; so few brackets cannot be.
  const auto brackets = std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; });
  require(isDamaged || original.is_object(), "a damaged file is set aside");
  require(!isDamaged || !original.is_object() || brackets > 64, "no other file is set aside");

  AppSettings settings(defaults, files, "/home/Documents");
  const int interval = settings.autoSaveIntervalMinutes;
  require(interval >= kShortestAutoSaveMinutes && interval <= kLongestAutoSaveMinutes,
          "the interval is in range");
  require(!settings.isProjectsFolderConfigured() || settings.projectsFolderURL->value().is_absolute(),
          "folders are absolute");
  settings.setAppearanceMode(AppearanceMode::tansy);
  settings.setAutoSaveIntervalMinutes(7);
  settings.clearProjectsFolder();
  settings.rememberDocumentBookmark("/elsewhere/plan.ostrel");

  JsonUserDefaults again(files, kFile);
  require(again.text(SettingsKey::appearanceMode) == "tansy", "settings last");
  require(again.integer(SettingsKey::autoSaveIntervalMinutes) == 7, "settings last");
  require(!again.has(SettingsKey::projectsFolderBookmark), "removed settings are gone");
  if (isDamaged) return 0;
  const auto written = nlohmann::json::parse(files.contents[kFile]);
  for (const auto& [key, value] : original.items()) {
    if (!key.starts_with("ostrel.")) require(written.contains(key), "unknown keys are kept");
  }
  return 0;
}
