#include "app/application.h"

#include "platform/dialogs.h"

namespace ostrelon {

Application::Application(ApplicationServices services, ApplicationOptions options)
    : host_(services.host),
      defaults_(services.defaults),
      sketch_(services.host),
      settings_(services.defaults, services.host.files, std::move(options.documentsFolder),
                options.isUITesting),
      updates_(services.host.scheduler, settings_, services.updateClient, std::move(options.updates),
               std::move(services.openInstaller)) {
  selectionSubscription_ =
      sketch_.observe(fieldMask(SketchField::selectedEntityIDs), [this](const SketchChange&) {
        if (!sketch_.selectedEntityIDs->empty() || !*sketch_.isEntityInspectorVisible) return;
        // Observers do not change what they observe: the window goes once the operation has ended.
        inspectorTask_ = host_.scheduler.after(Seconds(0), [this] {
          if (sketch_.selectedEntityIDs->empty()) sketch_.setEntityInspectorVisible(false);
        });
      });
}

void Application::mainViewAppeared() {
  const bool isTesting = settings_.isUITesting();
  if (isTesting) settings_.resetProjectsFolderForUITesting();
  {
    const ChangeScope scope(tracker_);
    showProjectsFolderSetup = !isTesting && !settings_.isProjectsFolderConfigured();
    showAutoSaveRecoveryOffer = !isTesting && settings_.autoSaveRecoveryCandidate->has_value();
  }
  defaults_.set(SettingsKey::lastSessionEndedCleanly, false);
  updates_.startAutomaticChecks();
}

void Application::willTerminate() { defaults_.set(SettingsKey::lastSessionEndedCleanly, true); }

void Application::chooseProjectsFolder(std::function<void(const FilePath&)> chosen) {
  const FolderPanel panel{"Choose the folder where Ostrelon saves new projects.",
                          settings_.projectsFolderURL->value_or(FilePath())};
  host_.dialogs.ask(panel, [chosen = std::move(chosen)](const DialogAnswer& answer) {
    if (answer) chosen(FilePath(*answer));
  });
}

void Application::completeProjectsFolderSetup() { showProjectsFolderSetup = false; }

void Application::restoreAutoSaveFromOffer() { showAutoSaveRecoveryOffer = false; }

void Application::skipAutoSaveRecovery() {
  settings_.clearAutoSaveRecoveryCandidate();
  showAutoSaveRecoveryOffer = false;
}

}  // namespace ostrelon
