// The user's preferences: one observable object, made once at the start and shared by all windows.
// Reading a setting never touches the store, which is read once while the object is built; every
// setter writes through at once. Main thread only.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/observable.h"
#include "core/theme_palette.h"
#include "platform/file_system.h"
#include "platform/user_defaults.h"

namespace ostrelon {

enum class AppearanceMode { system, light, dark, tansy };

/// In the order in which they are offered.
inline constexpr AppearanceMode kAppearanceModes[] = {AppearanceMode::system, AppearanceMode::light,
                                                      AppearanceMode::dark, AppearanceMode::tansy};
/// "system", "light", "dark", "tansy": as the store holds it.
std::string_view rawValue(AppearanceMode mode);
/// "System", "Light", "Dark", "Tansy".
std::string_view displayName(AppearanceMode mode);
std::optional<AppearanceMode> appearanceModeFromRawValue(std::string_view raw);

/// The appearance that the desktop reports.
enum class ColorScheme { light, dark };

/// `tansy`, `light` and `dark` are themselves; `system` follows the scheme and is light without one.
const ThemePalette& resolvePalette(AppearanceMode mode, std::optional<ColorScheme> scheme);

/// The record of an auto-save: what a start after an unclean end offers to restore.
struct AutoSaveRecoveryCandidate {
  FilePath url;
  std::string displayName;
  std::optional<Date> savedAt;
  friend bool operator==(const AutoSaveRecoveryCandidate&, const AutoSaveRecoveryCandidate&) = default;
};

/// The keys of the store.
namespace SettingsKey {
inline constexpr const char* appearanceMode = "ostrel.appearanceMode";
inline constexpr const char* autoSaveEnabled = "ostrel.autoSaveEnabled";
inline constexpr const char* autoSaveIntervalMinutes = "ostrel.autoSaveIntervalMinutes";
inline constexpr const char* lastSessionEndedCleanly = "ostrel.lastSessionEndedCleanly";
inline constexpr const char* projectsFolderStorage = "ostrel.projectsFolderStorage";
inline constexpr const char* projectsFolderBookmark = "ostrel.projectsFolderBookmark";
inline constexpr const char* documentBookmarks = "ostrel.documentBookmarks";
inline constexpr const char* lastAutoSaveBookmark = "ostrel.lastAutoSaveBookmark";
inline constexpr const char* lastAutoSaveDisplayName = "ostrel.lastAutoSaveDisplayName";
inline constexpr const char* lastAutoSaveSavedAt = "ostrel.lastAutoSaveSavedAt";
inline constexpr const char* lastUpdateCheckAt = "ostrel.lastUpdateCheckAt";
inline constexpr const char* postponedUpdateVersion = "ostrel.postponedUpdateVersion";
}  // namespace SettingsKey

inline constexpr int kDefaultAutoSaveMinutes = 5;
inline constexpr int kShortestAutoSaveMinutes = 1;
inline constexpr int kLongestAutoSaveMinutes = 120;

/// Whether this start is one of a test of the user interface: by the switch
/// `-uiTestingResetProjectsFolder`, or by UI_TESTING_RESET_PROJECTS=1 in the environment, whose value
/// is handed in where it is set.
bool isUITestingStart(const std::vector<std::string>& arguments,
                      std::optional<std::string_view> environmentValue);

class AppSettings {
  ChangeTracker tracker_;

  template <class T>
  using Field = Observable<T, AppSettings>;

 public:
  /// `defaults` and `files` must outlive the object. `documentsFolder`: the user's own, in which the
  /// default projects folder lies.
  AppSettings(UserDefaults& defaults, FileSystem& files, FilePath documentsFolder, bool isUITesting = false);
  AppSettings(const AppSettings&) = delete;
  AppSettings& operator=(const AppSettings&) = delete;

  // --- Appearance
  Field<AppearanceMode> appearanceMode{tracker_};
  /// Follows the mode and the system's scheme.
  Field<ThemePalette> activePalette{tracker_, lightPalette()};
  Field<std::optional<ColorScheme>> lastKnownColorScheme{tracker_};
  void setAppearanceMode(AppearanceMode mode);
  /// Records the scheme if one is given, and derives the palette again.
  void updateColorScheme(std::optional<ColorScheme> scheme);

  // --- Auto-save
  Field<bool> autoSaveEnabled{tracker_, true};
  /// As it was set; the store holds it within 1 to 120.
  Field<int> autoSaveIntervalMinutes{tracker_, kDefaultAutoSaveMinutes};
  Field<std::optional<AutoSaveRecoveryCandidate>> lastAutoSave{tracker_};
  /// Set at the start only, after a session that did not end cleanly.
  Field<std::optional<AutoSaveRecoveryCandidate>> autoSaveRecoveryCandidate{tracker_};
  void setAutoSaveEnabled(bool enabled);
  void setAutoSaveIntervalMinutes(int minutes);
  /// Nothing is recorded where no file is.
  void recordLastAutoSave(const FilePath& url, const std::string& displayName, std::optional<Date> savedAt);
  /// The offer has been dealt with.
  void clearAutoSaveRecoveryCandidate();

  // --- The projects folder
  Field<std::optional<FilePath>> projectsFolderURL{tracker_};
  FilePath defaultProjectsFolder() const;
  bool isProjectsFolderConfigured() const { return projectsFolderURL->has_value(); }
  /// Whether the path is the projects folder or lies in it, at any depth.
  bool isInsideProjectsFolder(const FilePath& url) const;
  /// Makes the folder if need be; throws when that fails.
  void useDefaultProjectsFolder();
  /// Throws when the folder is not there.
  void setCustomProjectsFolder(const FilePath& url);
  void clearProjectsFolder();
  void resetProjectsFolderForUITesting();
  /// Keeps the path of a document outside the projects folder.
  void rememberDocumentBookmark(const FilePath& url);

  // --- Updates
  Field<std::optional<Date>> lastUpdateCheckAt{tracker_};
  Field<std::optional<std::string>> postponedUpdateVersion{tracker_};
  void setLastUpdateCheckAt(std::optional<Date> date);
  void setPostponedUpdateVersion(std::optional<std::string> version);

  bool isUITesting() const { return isUITesting_; }
  UserDefaults& defaults() const { return defaults_; }
  FileSystem& files() const { return files_; }

  /// Calls back once after each operation that changed one of the properties.
  [[nodiscard]] Subscription observe(FieldMask fields, ChangeTracker::Callback changed) {
    return tracker_.observe(fields, std::move(changed));
  }

 private:
  std::optional<FilePath> storedPath(const char* key) const;
  std::optional<FilePath> projectsFolderAtStart();
  std::optional<AutoSaveRecoveryCandidate> lastAutoSaveAtStart() const;

  UserDefaults& defaults_;
  FileSystem& files_;
  FilePath documentsFolder_;
  bool isUITesting_;
};

}  // namespace ostrelon
