#include "documents/auto_save.h"

#include <algorithm>
#include <utility>

#include "documents/document_paths.h"
#include "documents/document_save.h"
#include "documents/document_store.h"
#include "documents/overwrite_question.h"

namespace ostrelon {
namespace {

constexpr double kSecondsInAMinute = 60;

// Where an auto-save would go now, or why it may not. Both absent: there is nothing to do.
struct AutoSaveTarget {
  std::optional<FilePath> url;
  std::optional<std::string> refusal;
};

AutoSaveTarget autoSaveTarget(const SketchViewModel& sketch, const AppSettings& settings) {
  if (!settings.autoSaveEnabled || !sketch.isDocumentDirty || sketch.isSaveDialogActive) return {};
  if (const std::optional<FilePath>& url = sketch.documentFileURL) {
    if (documentChangedOnDisk(sketch)) return {std::nullopt, changedOnDiskText(*url)};
    return {url, std::nullopt};
  }
  if (!settings.isProjectsFolderConfigured()) {
    return {std::nullopt,
            DocumentFileStoreError(DocumentFileStoreError::Case::projectsFolderNotConfigured).what()};
  }
  return {nextUntitledURL(settings.files(), **settings.projectsFolderURL), std::nullopt};
}

std::string reportSkipped(SketchViewModel& sketch, const std::string& reason) {
  sketch.appendConsoleLine("Auto-save skipped: " + reason, false, true);
  return reason;
}

void recordAutoSave(const SketchViewModel& sketch, AppSettings& settings) {
  const Date savedAt = sketch.lastSavedAt->value_or(sketch.host().scheduler.now());
  settings.recordLastAutoSave(sketch.documentFileURL->value(), sketch.documentName, savedAt);
}

}  // namespace

std::optional<std::string> autoSaveTick(SketchViewModel& sketch, AppSettings& settings) {
  const AutoSaveTarget target = autoSaveTarget(sketch, settings);
  if (target.refusal) return reportSkipped(sketch, *target.refusal);
  if (!target.url) return std::nullopt;
  auto failure = sketch.documentFileURL->has_value() ? saveToURL(sketch, settings, *target.url, false)
                                                     : saveToFreeName(sketch, settings, false);
  if (!failure) recordAutoSave(sketch, settings);
  return failure;
}

bool restoreAutoSave(SketchViewModel& sketch, AppSettings& settings) {
  const bool restored = restoreCandidate(sketch, settings, settings.autoSaveRecoveryCandidate,
                                         "Restored last autosave.", "No autosave recovery is available.");
  settings.clearAutoSaveRecoveryCandidate();
  return restored;
}

bool revertToLastAutoSave(SketchViewModel& sketch, AppSettings& settings) {
  return restoreCandidate(sketch, settings, settings.lastAutoSave, "Reverted to last autosave.",
                          "No last autosave is available.");
}

bool restoreCandidate(SketchViewModel& sketch, AppSettings& settings,
                      const std::optional<AutoSaveRecoveryCandidate>& candidate,
                      const std::string& successText, const std::string& missingText) {
  if (!candidate) {
    sketch.appendConsoleLine(missingText, true, false);
    return false;
  }
  try {
    sketch.openDocumentFile(candidate->url);
  } catch (const UserError& error) {
    sketch.appendConsoleLine(std::string("Autosave restore failed: ") + error.what(), true, false);
    return false;
  }
  settings.rememberDocumentBookmark(candidate->url);
  sketch.refreshDocumentHistory();
  sketch.appendConsoleLine(successText, false, true);
  return true;
}

// --- The controller

// A save that is being written, with what it went out from.
struct AutoSaveController::Running {
  DocumentSave save;
  std::optional<FilePath> documentURL;
  std::optional<DocumentOnDisk> onDisk;
  std::optional<std::string> failure;
};

AutoSaveController::AutoSaveController(SketchViewModel& sketch, AppSettings& settings)
    : sketch_(sketch), settings_(settings) {
  settingsObservation_ =
      settings.observe(settingsMask(SettingsField::autoSaveEnabled, SettingsField::autoSaveIntervalMinutes),
                       [this](FieldMask) { rescheduleAutoSave(); });
}

void AutoSaveController::rescheduleAutoSave() {
  timer_.reset();
  if (!settings_.autoSaveEnabled) return;
  const int minutes = std::max(settings_.autoSaveIntervalMinutes.get(), kShortestAutoSaveMinutes);
  timer_ = sketch_.host().scheduler.every(Seconds(minutes * kSecondsInAMinute), [this] { tick(); });
}

void AutoSaveController::tick() {
  if (running_) return;  // a slow disk: the one that is under way comes first
  const AutoSaveTarget target = autoSaveTarget(sketch_, settings_);
  if (target.refusal) reportSkipped(sketch_, *target.refusal);
  if (!target.url) return;
  std::shared_ptr<Running> running;
  try {
    running = std::make_shared<Running>(Running{DocumentSave(sketch_, *target.url), sketch_.documentFileURL,
                                                sketch_.documentOnDisk(), std::nullopt});
  } catch (const UserError& error) {
    reportSaveFailed(sketch_, error.what(), false);
    return;
  }
  FileSystem& files = sketch_.host().files;
  running_ = sketch_.host().scheduler.inBackground(
      [running, &files] {
        try {
          running->save.write(files);
        } catch (const std::exception& error) {
          running->failure = error.what();
        }
      },
      [this, running] {
        running_.reset();
        finish(*running);
        running->save.release();
      });
}

void AutoSaveController::finish(Running& running) {
  // The user may have saved, opened or begun another document meanwhile, or be about to choose a file.
  const bool isSameFile =
      sketch_.documentFileURL.get() == running.documentURL && sketch_.documentOnDisk() == running.onDisk;
  if (!isSameFile || !sketch_.isDocumentDirty || sketch_.isSaveDialogActive) return;
  if (running.failure) {
    reportSaveFailed(sketch_, *running.failure, false);
    return;
  }
  const bool isNewFile = !running.documentURL.has_value();
  if (isNewFile && (!running.save.holdsStateOf(sketch_) || settings_.files().isTaken(running.save.url()))) {
    // Of a document without a file only its content says that it is still the same, and its name may have
    // been taken: by a link, which was then followed.
    autoSaveTick(sketch_, settings_);
    return;
  }
  if (documentChangedOnDisk(sketch_)) {
    reportSkipped(sketch_, changedOnDiskText(running.save.url()));
    return;
  }
  try {
    sketch_.finishDocumentSave(running.save);
  } catch (const NameTakenError&) {
    autoSaveTick(sketch_, settings_);
    return;
  } catch (const UserError& error) {
    reportSaveFailed(sketch_, error.what(), false);
    return;
  }
  reportSaved(sketch_, settings_, false);
  recordAutoSave(sketch_, settings_);
}

}  // namespace ostrelon
