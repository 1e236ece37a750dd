#include "app/application.h"

#include "documents/document_reading.h"
#include "documents/document_store.h"
#include "documents/sketch_document_io.h"
#include "platform/dialogs.h"
#include "sample_plan.h"

namespace ostrelon {
namespace {

/// The folder from which a document was opened last.
constexpr const char* kLastFolder = "ostrel.lastFolder";
/// Bytes above which a document is read away from the main thread.
constexpr std::uint64_t kLargeDocument = 4 << 20;
/// Work that takes longer is told.
constexpr Seconds kLongWork(0.3);

}  // namespace

Application::Application(ApplicationServices services, ApplicationOptions options)
    : host_(services.host),
      defaults_(services.defaults),
      sketch_(services.host),
      settings_(services.defaults, services.host.files, std::move(options.documentsFolder),
                options.isUITesting),
      updates_(services.host.scheduler, settings_, services.updateClient, std::move(options.updates),
               std::move(services.openInstaller)),
      makePicture_(std::move(services.makePicture)),
      closeQuestion_(sketch_, [this](const std::function<void()>& ended) {
        saveCurrentDocument(sketch_, settings_, true, [ended](SaveOutcome) { ended(); });
      }) {
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
  if (!autoSaveController_) autoSaveController_.emplace(sketch_, settings_);
  autoSaveController_->rescheduleAutoSave();
  updates_.startAutomaticChecks();
}

void Application::willTerminate() { defaults_.set(SettingsKey::lastSessionEndedCleanly, true); }

// --- Documents

void Application::newDocument() {
  closeQuestion_.beforeReplacing([this] { sketch_.newDocument(); });
}

void Application::openDocumentWithPanel() {
  closeQuestion_.beforeReplacing([this] {
    OpenPanel panel;
    if (const auto last = defaults_.text(kLastFolder)) panel.startingFolder = *last;
    if (panel.startingFolder.empty() && settings_.isProjectsFolderConfigured()) {
      panel.startingFolder = **settings_.projectsFolderURL;
    }
    host_.dialogs.ask(panel, [this](const DialogAnswer& answer) {
      if (answer) openAndRemember(FilePath(*answer));
    });
  });
}

void Application::openDocumentAt(const FilePath& url) {
  closeQuestion_.beforeReplacing([this, url] { openAndRemember(url); });
}

void Application::openAndRemember(const FilePath& url) {
  defaults_.set(kLastFolder, url.parent_path().string());
  const auto info = host_.files.info(url);
  if (info && info->size > kLargeDocument) {
    openInBackground(url);
  } else {
    openDocument(sketch_, settings_, url);
  }
}

// A large document is read and decoded away from the main thread, with a toast where it takes long;
// the one that is open stays usable, and is asked about again if it has changed meanwhile.
void Application::openInBackground(const FilePath& url) {
  struct Opening {
    DocumentReading reading;
    std::optional<std::string> failure;
  };
  std::shared_ptr<Opening> opening;
  try {
    opening = std::make_shared<Opening>(Opening{DocumentReading(url), std::nullopt});
  } catch (const UserError& error) {
    reportOpenFailed(sketch_, error.what());
    return;
  }
  const std::string message = "Opening " + url.stem().string() + "…";
  openingToast_ = host_.scheduler.after(
      kLongWork, [this, message] { sketch_.showDocumentToast(message, DocumentToastState::Style::saving); });
  FileSystem& files = host_.files;
  openingTask_ = host_.scheduler.inBackground(
      [opening, &files] {
        try {
          opening->reading.read(files);
        } catch (const std::exception& error) {
          opening->failure = error.what();
        }
      },
      [this, opening, message] {
        openingToast_.cancel();
        const auto& toast = *sketch_.documentToast;
        if (toast && toast->message == message) sketch_.clearDocumentToast();
        if (opening->failure) {
          reportOpenFailed(sketch_, *opening->failure);
          return;
        }
        closeQuestion_.beforeReplacing(
            [this, opening] { finishOpening(sketch_, settings_, opening->reading); });
      });
}

void Application::openSamplePlan() {
  closeQuestion_.beforeReplacing([this] {
    sketch_.newDocument();
    sketch_.applyLoadedDocument(SketchDocumentIO::decodeDocument(kSamplePlan));
    sketch_.zoomToFit(sketch_.canvasSize);
  });
}

void Application::save() { saveCurrentDocument(sketch_, settings_, true); }

void Application::saveAs() { saveDocumentAs(sketch_, settings_, true); }

void Application::rescheduleAutoSave() {
  if (autoSaveController_) autoSaveController_->rescheduleAutoSave();
}

void Application::revertToLastAutosave() {
  using Style = DocumentToastState::Style;
  if (!settings_.lastAutoSave->has_value()) {
    revertToLastAutoSave(sketch_, settings_);
    sketch_.showDocumentToast("No last autosave is available.", Style::error);
  } else if (revertToLastAutoSave(sketch_, settings_)) {
    sketch_.showDocumentToast("Reverted to last autosave.", Style::success);
  }
}

void Application::windowShouldClose(const std::function<void(CloseQuestion::Reply)>& reply,
                                    std::function<void()> closeNow) {
  closeQuestion_.windowShouldClose(reply, std::move(closeNow));
}

// --- Sheets

void Application::chooseProjectsFolder(std::function<void(const FilePath&)> chosen) {
  const FolderPanel panel{"Choose the folder where Ostrelon saves new projects.",
                          settings_.projectsFolderURL->value_or(FilePath())};
  host_.dialogs.ask(panel, [chosen = std::move(chosen)](const DialogAnswer& answer) {
    if (answer) chosen(FilePath(*answer));
  });
}

void Application::completeProjectsFolderSetup() { showProjectsFolderSetup = false; }

void Application::restoreAutoSaveFromOffer() {
  restoreAutoSave(sketch_, settings_);
  showAutoSaveRecoveryOffer = false;
}

void Application::skipAutoSaveRecovery() {
  settings_.clearAutoSaveRecoveryCandidate();
  showAutoSaveRecoveryOffer = false;
}

}  // namespace ostrelon
