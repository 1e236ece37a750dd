#include "updates/app_update_manager.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "core/sketch_entity.h"
#include "documents/app_settings.h"
#include "updates/app_update_error.h"
#include "updates/update_verification.h"

namespace ostrelon {
namespace {

using Case = AppUpdateStatus::Case;

constexpr Seconds kTimeBetweenLooks{3600};
constexpr Seconds kTimeBetweenChecks{43200};

std::string failureText(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "The update failed for an unknown reason.";
  }
}

}  // namespace

std::string_view caseName(Case value) {
  switch (value) {
    case Case::notChecked:
      return "notChecked";
    case Case::checking:
      return "checking";
    case Case::upToDate:
      return "upToDate";
    case Case::updateAvailable:
      return "updateAvailable";
    case Case::postponed:
      return "postponed";
    case Case::downloading:
      return "downloading";
    case Case::verifying:
      return "verifying";
    case Case::installerOpened:
      return "installerOpened";
    case Case::failed:
      return "failed";
  }
  return {};
}

std::string statusText(const AppUpdateStatus& status, std::optional<double> downloadProgress) {
  switch (status.value) {
    case Case::notChecked:
      return "Not checked yet.";
    case Case::checking:
      return "Checking for updates...";
    case Case::upToDate:
      return "Ostrelon is up to date.";
    case Case::updateAvailable:
      return "Update available.";
    case Case::postponed:
      return "Update postponed.";
    case Case::downloading:
      if (!downloadProgress) return "Downloading update...";
      return fmt::format("Downloading update {}%...", std::llround(*downloadProgress * 100));
    case Case::verifying:
      return "Verifying update authenticity...";
    case Case::installerOpened:
      return "Verified installer opened. Follow the installer prompts, then restart Ostrelon if requested.";
    case Case::failed:
      return status.failure;
  }
  return {};
}

AppUpdateManager::AppUpdateManager(Scheduler& scheduler, AppSettings& settings, AppUpdateClient& client,
                                   UpdateConfiguration configuration, InstallerOpener openInstaller)
    : lastCheckedAt(tracker_, settings.lastUpdateCheckAt.get()),
      scheduler_(scheduler),
      settings_(settings),
      client_(client),
      configuration_(std::move(configuration)),
      openInstaller_(std::move(openInstaller)) {}

std::string AppUpdateManager::statusText() const { return ostrelon::statusText(*status, *downloadProgress); }

bool AppUpdateManager::isBusy() const {
  const Case value = status->value;
  return value == Case::checking || value == Case::downloading || value == Case::verifying;
}

// --- Checks

void AppUpdateManager::startAutomaticChecks() {
  checkIfDue();
  automaticTimer_ = scheduler_.every(kTimeBetweenLooks, [this] { checkIfDue(); });
}

void AppUpdateManager::checkIfDue() {
  const auto& last = *settings_.lastUpdateCheckAt;
  if (last) {
    const Seconds since(secondsBetween(*last, scheduler_.now()));
    // A check in the future was recorded under a wrong clock, and does not count.
    if (since >= Seconds(0) && since < kTimeBetweenChecks) return;
  }
  startedCheck_ = scheduler_.after(Seconds(0), [this] { checkForUpdates(false); });
}

void AppUpdateManager::checkForUpdates(bool userInitiated) {
  const ChangeScope scope(tracker_);
  if (!configuration_.feedURL) {
    fail(std::make_exception_ptr(AppUpdateError::feedNotConfigured()));
    return;
  }
  status = AppUpdateStatus{Case::checking, {}};
  downloadProgress = std::nullopt;
  client_.fetchManifest(*configuration_.feedURL,
                        [weak = std::weak_ptr(self_), userInitiated](Outcome<AppUpdateManifest> outcome) {
                          const auto self = weak.lock();
                          if (self) (*self)->manifestArrived(std::move(outcome), userInitiated);
                        });
}

void AppUpdateManager::manifestArrived(Outcome<AppUpdateManifest> outcome, bool userInitiated) {
  const ChangeScope scope(tracker_);
  AppUpdateEvaluationResult result;
  try {
    result = evaluateManifest(std::move(outcome).take(), configuration_.currentVersion);
  } catch (...) {
    fail(std::current_exception());
    return;
  }
  markChecked();
  std::visit(Overloaded{
                 [&](const UpToDate& upToDate) {
                   latestVersion = upToDate.latestVersion.value_or(configuration_.currentVersion);
                   availableUpdate = std::nullopt;
                   settings_.setPostponedUpdateVersion(std::nullopt);
                   status = AppUpdateStatus{Case::upToDate, {}};
                 },
                 [&](const AppUpdateAvailability& available) {
                   const std::string& version = available.latestRelease.version;
                   latestVersion = version;
                   availableUpdate = available;
                   if (userInitiated) settings_.setPostponedUpdateVersion(std::nullopt);
                   const bool isPostponed = *settings_.postponedUpdateVersion == version;
                   status = AppUpdateStatus{isPostponed ? Case::postponed : Case::updateAvailable, {}};
                 },
             },
             result);
}

// --- The available update

void AppUpdateManager::postponeUpdate() {
  if (!*availableUpdate) return;
  const ChangeScope scope(tracker_);
  settings_.setPostponedUpdateVersion(availableUpdate.get()->latestRelease.version);
  status = AppUpdateStatus{Case::postponed, {}};
}

void AppUpdateManager::downloadAndInstall() {
  if (!*availableUpdate) return;
  const ChangeScope scope(tracker_);
  if (!configuration_.signingPublicKey) {
    fail(std::make_exception_ptr(AppUpdateError::signingKeyNotConfigured()));
    return;
  }
  downloadProgress = 0.0;
  status = AppUpdateStatus{Case::downloading, {}};
  // The release is kept: another check may replace it while its installer arrives.
  const AppUpdateRelease release = availableUpdate.get()->latestRelease;
  const std::weak_ptr weak(self_);
  client_.downloadInstaller(
      release.downloadURL,
      [weak](double progress) {
        if (const auto self = weak.lock()) (*self)->downloadProgress = progress;
      },
      [weak, release](Outcome<DownloadedInstaller> outcome) {
        if (const auto self = weak.lock()) (*self)->installerArrived(std::move(outcome), release);
      });
}

void AppUpdateManager::installerArrived(Outcome<DownloadedInstaller> outcome,
                                        const AppUpdateRelease& release) {
  DownloadedInstaller installer;
  try {
    installer = std::move(outcome).take();
  } catch (...) {
    failInstallation(std::current_exception());
    return;
  }
  status = AppUpdateStatus{Case::verifying, {}};
  const auto failure = std::make_shared<std::exception_ptr>();
  verification_ = scheduler_.inBackground(
      [failure, release, installer, key = *configuration_.signingPublicKey] {
        try {
          verifyInstaller(release, *installer, key);
        } catch (...) {
          *failure = std::current_exception();
        }
      },
      [this, failure, installer] { openVerified(installer, *failure); });
}

void AppUpdateManager::openVerified(const DownloadedInstaller& installer, const std::exception_ptr& failure) {
  try {
    if (failure) std::rethrow_exception(failure);
    // What was verified is the file that is held open; only that very one is opened.
    if (!installer->isAtPath() || !openInstaller_(installer->path())) {
      throw AppUpdateError::installerOpenFailed();
    }
  } catch (...) {
    failInstallation(std::current_exception());
    return;
  }
  const ChangeScope scope(tracker_);
  downloadProgress = std::nullopt;
  status = AppUpdateStatus{Case::installerOpened, {}};
}

// --- Endings

void AppUpdateManager::markChecked() {
  const Date now = scheduler_.now();
  lastCheckedAt = now;
  settings_.setLastUpdateCheckAt(now);
}

void AppUpdateManager::fail(const std::exception_ptr& failure) {
  const ChangeScope scope(tracker_);
  markChecked();
  status = AppUpdateStatus{Case::failed, failureText(failure)};
}

void AppUpdateManager::failInstallation(const std::exception_ptr& failure) {
  const ChangeScope scope(tracker_);
  downloadProgress = std::nullopt;
  fail(failure);
}

}  // namespace ostrelon
