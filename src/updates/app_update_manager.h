// The whole of an update: checks by the clock and by hand, postponing, download with progress,
// verification, and the hand-over of the verified installer to the system. It installs nothing
// itself. One observable object on the main thread.
//
//   AppUpdateManager updates(scheduler, settings, client, configuration, openWithDesktop);
//   updates.startAutomaticChecks();            // once, when the main window first shows
//   updates.checkForUpdates(true);             // "Check for Updates"
//   …                                          // later, status is updateAvailable
//   updates.downloadAndInstall();              // "Download and Install"
//
// The transitions of `status`: any → checking → upToDate, updateAvailable, postponed or failed;
// updateAvailable or postponed → downloading → verifying → installerOpened or failed.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/observable.h"
#include "platform/date.h"
#include "platform/file_system.h"
#include "platform/scheduler.h"
#include "updates/app_update_client.h"
#include "updates/update_configuration.h"
#include "updates/update_feed.h"

namespace ostrelon {

class AppSettings;  // documents/app_settings.h

struct AppUpdateStatus {
  enum class Case {
    notChecked,
    checking,
    upToDate,
    updateAvailable,
    postponed,
    downloading,
    verifying,
    installerOpened,
    failed,
  };

  Case value = Case::notChecked;
  std::string failure;  ///< the failure's text, for `failed` alone

  friend bool operator==(const AppUpdateStatus&, const AppUpdateStatus&) = default;
};

/// The name of the case in the code.
std::string_view caseName(AppUpdateStatus::Case value);
/// The sentence for the user. `downloadProgress` (0 to 1) is shown in per cent while downloading.
std::string statusText(const AppUpdateStatus& status, std::optional<double> downloadProgress);

class AppUpdateManager {
  ChangeTracker tracker_;

  template <class T>
  using Field = Observable<T, AppUpdateManager>;

 public:
  /// Asks the system to open the installer; false when it refuses.
  using InstallerOpener = std::function<bool(const FilePath&)>;

  /// The scheduler, the settings and the client must outlive the object.
  AppUpdateManager(Scheduler& scheduler, AppSettings& settings, AppUpdateClient& client,
                   UpdateConfiguration configuration, InstallerOpener openInstaller);

  // --- State
  Field<std::optional<std::string>> latestVersion{tracker_};
  /// The last check or failure; what the settings hold until there is one.
  Field<std::optional<Date>> lastCheckedAt;
  Field<AppUpdateStatus> status{tracker_};
  Field<std::optional<AppUpdateAvailability>> availableUpdate{tracker_};
  /// 0 to 1 from the start of a download until the installer is opened or the download has failed.
  Field<std::optional<double>> downloadProgress{tracker_};

  const std::string& currentVersion() const { return configuration_.currentVersion; }
  const std::string& currentDisplayVersion() const { return configuration_.currentDisplayVersion; }
  const std::optional<std::string>& feedURL() const { return configuration_.feedURL; }
  const std::optional<std::string>& signingPublicKey() const { return configuration_.signingPublicKey; }
  std::string statusText() const;
  /// A check, a download or a verification is under way.
  bool isBusy() const;

  /// Calls back once after each operation that changed one of the fields.
  [[nodiscard]] Subscription observe(FieldMask fields, ChangeTracker::Callback changed) {
    return tracker_.observe(fields, std::move(changed));
  }

  // --- Checks

  /// Checks now if it is due, and looks every hour whether it is.
  void startAutomaticChecks();
  /// Starts a check unless the last one, failed ones included, is less than twelve hours ago.
  void checkIfDue();
  /// Fetches and evaluates the feed. A check by the user forgets a postponement; one by the clock
  /// keeps the postponed version postponed. A second check while one runs is not held back.
  void checkForUpdates(bool userInitiated);

  // --- The available update

  /// Keeps quiet about the version that is available. Nothing without one.
  void postponeUpdate();
  /// Downloads and verifies the latest release and hands it to the system. Nothing without an
  /// available update, which stays available after a failure so that the user can try again.
  void downloadAndInstall();

 private:
  void manifestArrived(Outcome<AppUpdateManifest> outcome, bool userInitiated);
  void installerArrived(Outcome<DownloadedInstaller> outcome, const AppUpdateRelease& release);
  void openVerified(const DownloadedInstaller& installer, const std::exception_ptr& failure);
  void markChecked();
  void fail(const std::exception_ptr& failure);
  void failInstallation(const std::exception_ptr& failure);

  Scheduler& scheduler_;
  AppSettings& settings_;
  AppUpdateClient& client_;
  UpdateConfiguration configuration_;
  InstallerOpener openInstaller_;
  ScheduledTask automaticTimer_;
  ScheduledTask startedCheck_;
  ScheduledTask verification_;
  // Answers of the client that come after the object's end find this gone.
  std::shared_ptr<AppUpdateManager*> self_ = std::make_shared<AppUpdateManager*>(this);
};

}  // namespace ostrelon
