#include "documents/app_settings.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <utility>

#include "documents/document_paths.h"

namespace ostrelon {
namespace {

constexpr const char* kDefaultStorage = "default";
constexpr const char* kCustomStorage = "custom";
constexpr const char* kProjectsFolderName = "Ostrelon";

struct AppearanceNames {
  std::string_view raw;
  std::string_view display;
};
// In the order of the cases.
constexpr std::array<AppearanceNames, std::size(kAppearanceModes)> kAppearanceNames{
    {{"system", "System"}, {"light", "Light"}, {"dark", "Dark"}, {"tansy", "Tansy"}}};

int intervalAtStart(std::optional<std::int64_t> stored) {
  if (!stored || *stored <= 0) return kDefaultAutoSaveMinutes;
  return static_cast<int>(std::min<std::int64_t>(*stored, kLongestAutoSaveMinutes));
}

}  // namespace

std::string_view rawValue(AppearanceMode mode) {
  return kAppearanceNames[static_cast<std::size_t>(mode)].raw;
}

std::string_view displayName(AppearanceMode mode) {
  return kAppearanceNames[static_cast<std::size_t>(mode)].display;
}

std::optional<AppearanceMode> appearanceModeFromRawValue(std::string_view raw) {
  for (const AppearanceMode mode : kAppearanceModes) {
    if (rawValue(mode) == raw) return mode;
  }
  return std::nullopt;
}

const ThemePalette& resolvePalette(AppearanceMode mode, std::optional<ColorScheme> scheme) {
  switch (mode) {
    case AppearanceMode::light:
      return lightPalette();
    case AppearanceMode::dark:
      return darkPalette();
    case AppearanceMode::tansy:
      return tansyPalette();
    case AppearanceMode::system:
      break;
  }
  return scheme == ColorScheme::dark ? darkPalette() : lightPalette();
}

bool isUITestingStart(const std::vector<std::string>& arguments,
                      std::optional<std::string_view> environmentValue) {
  return environmentValue == "1" ||
         std::find(arguments.begin(), arguments.end(), "-uiTestingResetProjectsFolder") != arguments.end();
}

AppSettings::AppSettings(UserDefaults& defaults, FileSystem& files, FilePath documentsFolder,
                         bool isUITesting)
    : defaults_(defaults),
      files_(files),
      documentsFolder_(std::move(documentsFolder)),
      isUITesting_(isUITesting) {
  autoSaveEnabled = defaults_.boolean(SettingsKey::autoSaveEnabled).value_or(true);
  autoSaveIntervalMinutes = intervalAtStart(defaults_.integer(SettingsKey::autoSaveIntervalMinutes));
  appearanceMode = appearanceModeFromRawValue(defaults_.text(SettingsKey::appearanceMode).value_or(""))
                       .value_or(AppearanceMode::system);
  activePalette = resolvePalette(appearanceMode, lastKnownColorScheme);
  projectsFolderURL = projectsFolderAtStart();
  lastAutoSave = lastAutoSaveAtStart();
  const bool endedCleanly = defaults_.boolean(SettingsKey::lastSessionEndedCleanly).value_or(true);
  if (!endedCleanly) autoSaveRecoveryCandidate = lastAutoSave.get();
  lastUpdateCheckAt = defaults_.date(SettingsKey::lastUpdateCheckAt);
  postponedUpdateVersion = defaults_.text(SettingsKey::postponedUpdateVersion);
}

// --- Appearance

void AppSettings::setAppearanceMode(AppearanceMode mode) {
  const ChangeScope scope(tracker_);
  appearanceMode = mode;
  defaults_.set(SettingsKey::appearanceMode, std::string(rawValue(mode)));
  activePalette = resolvePalette(mode, lastKnownColorScheme);
}

void AppSettings::updateColorScheme(std::optional<ColorScheme> scheme) {
  const ChangeScope scope(tracker_);
  if (scheme) lastKnownColorScheme = scheme;
  activePalette = resolvePalette(appearanceMode, lastKnownColorScheme);
}

// --- Auto-save

void AppSettings::setAutoSaveEnabled(bool enabled) {
  autoSaveEnabled = enabled;
  defaults_.set(SettingsKey::autoSaveEnabled, enabled);
}

void AppSettings::setAutoSaveIntervalMinutes(int minutes) {
  autoSaveIntervalMinutes = minutes;
  defaults_.set(SettingsKey::autoSaveIntervalMinutes,
                std::int64_t{std::clamp(minutes, kShortestAutoSaveMinutes, kLongestAutoSaveMinutes)});
}

void AppSettings::recordLastAutoSave(const FilePath& url, const std::string& displayName,
                                     std::optional<Date> savedAt) {
  const FilePath path = standardizedPath(url);
  if (!files_.exists(path)) return;
  std::optional<DefaultsValue> seconds;
  if (savedAt) seconds = secondsSince1970(*savedAt);
  defaults_.change({{SettingsKey::lastAutoSaveBookmark, path.string()},
                    {SettingsKey::lastAutoSaveDisplayName, displayName},
                    {SettingsKey::lastAutoSaveSavedAt, seconds}});
  lastAutoSave = AutoSaveRecoveryCandidate{path, displayName, savedAt};
}

void AppSettings::clearAutoSaveRecoveryCandidate() { autoSaveRecoveryCandidate = std::nullopt; }

std::optional<AutoSaveRecoveryCandidate> AppSettings::lastAutoSaveAtStart() const {
  const auto path = storedPath(SettingsKey::lastAutoSaveBookmark);
  if (!path || !files_.exists(*path)) return std::nullopt;
  return AutoSaveRecoveryCandidate{
      *path, defaults_.text(SettingsKey::lastAutoSaveDisplayName).value_or(documentNameFor(*path)),
      defaults_.date(SettingsKey::lastAutoSaveSavedAt)};
}

// --- The projects folder

FilePath AppSettings::defaultProjectsFolder() const {
  return standardizedPath(documentsFolder_ / kProjectsFolderName);
}

bool AppSettings::isInsideProjectsFolder(const FilePath& url) const {
  if (!isProjectsFolderConfigured()) return false;
  const std::string folder = standardizedPath(**projectsFolderURL).string();
  const std::string path = standardizedPath(url).string();
  // The root is the one folder whose path ends with the slash already.
  return path == folder || path.starts_with(folder.ends_with('/') ? folder : folder + '/');
}

void AppSettings::useDefaultProjectsFolder() {
  const FilePath folder = defaultProjectsFolder();
  files_.createFolders(folder);
  defaults_.change({{SettingsKey::projectsFolderStorage, std::string(kDefaultStorage)},
                    {SettingsKey::projectsFolderBookmark, std::nullopt}});
  projectsFolderURL = folder;
}

void AppSettings::setCustomProjectsFolder(const FilePath& url) {
  const FilePath folder = standardizedPath(url);
  if (folder == defaultProjectsFolder()) {
    useDefaultProjectsFolder();
    return;
  }
  const auto there = files_.info(folder);
  if (!there || !there->isFolder) throw FileError("The folder " + quotedName(folder) + " does not exist.");
  defaults_.change({{SettingsKey::projectsFolderStorage, std::string(kCustomStorage)},
                    {SettingsKey::projectsFolderBookmark, folder.string()}});
  projectsFolderURL = folder;
}

void AppSettings::clearProjectsFolder() {
  defaults_.change({{SettingsKey::projectsFolderStorage, std::nullopt},
                    {SettingsKey::projectsFolderBookmark, std::nullopt}});
  projectsFolderURL = std::nullopt;
}

void AppSettings::resetProjectsFolderForUITesting() {
  clearProjectsFolder();
  try {
    useDefaultProjectsFolder();
  } catch (const FileError&) {
    // A test that has no folder goes on without one.
  }
}

void AppSettings::rememberDocumentBookmark(const FilePath& url) {
  if (isInsideProjectsFolder(url) || !files_.exists(url)) return;
  const std::string path = standardizedPath(url).string();
  DefaultsMap bookmarks = defaults_.map(SettingsKey::documentBookmarks).value_or(DefaultsMap{});
  if (!bookmarks.emplace(path, path).second) return;
  defaults_.set(SettingsKey::documentBookmarks, std::move(bookmarks));
}

std::optional<FilePath> AppSettings::storedPath(const char* key) const {
  const auto text = defaults_.text(key);
  if (!text || !FilePath(*text).is_absolute()) return std::nullopt;
  return standardizedPath(*text);
}

std::optional<FilePath> AppSettings::projectsFolderAtStart() {
  const std::string storage = defaults_.text(SettingsKey::projectsFolderStorage).value_or("");
  if (storage == kDefaultStorage) {
    try {
      files_.createFolders(defaultProjectsFolder());
    } catch (const FileError&) {
      // A save will say what is wrong with the folder.
    }
    return defaultProjectsFolder();
  }
  auto folder = storedPath(SettingsKey::projectsFolderBookmark);
  // One that is gone, such as one on a disk that is not attached today, is no folder now; the keys stay.
  if (const auto there = folder ? files_.info(*folder) : std::nullopt; !there || !there->isFolder) {
    return std::nullopt;
  }
  if (storage == kCustomStorage) return folder;
  // A store of unknown kind with a folder in it: put in order.
  if (*folder == defaultProjectsFolder()) {
    defaults_.change({{SettingsKey::projectsFolderStorage, std::string(kDefaultStorage)},
                      {SettingsKey::projectsFolderBookmark, std::nullopt}});
  } else {
    defaults_.set(SettingsKey::projectsFolderStorage, std::string(kCustomStorage));
  }
  return folder;
}

// --- Updates

void AppSettings::setLastUpdateCheckAt(std::optional<Date> date) {
  lastUpdateCheckAt = date;
  if (date) {
    defaults_.setDate(SettingsKey::lastUpdateCheckAt, *date);
  } else {
    defaults_.remove(SettingsKey::lastUpdateCheckAt);
  }
}

void AppSettings::setPostponedUpdateVersion(std::optional<std::string> version) {
  postponedUpdateVersion = version;
  if (version) {
    defaults_.set(SettingsKey::postponedUpdateVersion, std::move(*version));
  } else {
    defaults_.remove(SettingsKey::postponedUpdateVersion);
  }
}

}  // namespace ostrelon
