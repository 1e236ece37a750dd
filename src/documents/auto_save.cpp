#include "documents/auto_save.h"

#include <algorithm>
#include <utility>

#include "documents/document_paths.h"
#include "documents/document_save.h"
#include "documents/document_store.h"
#include "documents/kept_question.h"
#include "documents/overwrite_question.h"

namespace ostrelon {
namespace {

constexpr double kSecondsInAMinute = 60;

// Where an auto-save would go now, or why it may not. Both absent: there is nothing to do.
struct AutoSaveTarget {
  std::optional<FilePath> url;
  std::optional<std::string> refusal;
};

AutoSaveTarget autoSaveTarget(const DocumentSession& document, const AppSettings& settings) {
  if (!settings.autoSaveEnabled || !document.isDirty() || document.isSaveDialogActive) return {};
  if (const std::optional<FilePath>& url = document.fileURL) {
    if (documentChangedOnDisk(document)) return {std::nullopt, changedOnDiskText(*url)};
    return {url, std::nullopt};
  }
  if (!settings.isProjectsFolderConfigured()) {
    return {std::nullopt,
            DocumentFileStoreError(DocumentFileStoreError::Case::projectsFolderNotConfigured).what()};
  }
  return {nextUntitledURL(settings.files(), **settings.projectsFolderURL), std::nullopt};
}

std::string reportSkipped(DocumentSession& document, const std::string& reason) {
  document.messages().append("Auto-save skipped: " + reason, false, true);
  return reason;
}

void recordAutoSave(const DocumentSession& document, AppSettings& settings) {
  const Date savedAt = document.lastSavedAt->value_or(document.host().scheduler.now());
  settings.recordLastAutoSave(document.fileURL->value(), document.name, savedAt);
}

}  // namespace

std::optional<std::string> autoSaveTick(DocumentSession& document, AppSettings& settings) {
  const AutoSaveTarget target = autoSaveTarget(document, settings);
  if (target.refusal) return reportSkipped(document, *target.refusal);
  if (!target.url) return std::nullopt;
  auto failure = document.fileURL->has_value() ? saveToURL(document, settings, *target.url, false)
                                               : saveToFreeName(document, settings, false);
  if (!failure) recordAutoSave(document, settings);
  return failure;
}

bool restoreAutoSave(DocumentSession& document, AppSettings& settings) {
  const bool restored = restoreCandidate(document, settings, settings.autoSaveRecoveryCandidate,
                                         "Restored last autosave.", "No autosave recovery is available.");
  settings.clearAutoSaveRecoveryCandidate();
  return restored;
}

bool revertToLastAutoSave(DocumentSession& document, AppSettings& settings) {
  return restoreCandidate(document, settings, settings.lastAutoSave, "Reverted to last autosave.",
                          "No last autosave is available.");
}

bool restoreCandidate(DocumentSession& document, AppSettings& settings,
                      const std::optional<AutoSaveRecoveryCandidate>& candidate,
                      const std::string& successText, const std::string& missingText) {
  if (!candidate) {
    document.messages().append(missingText, true, false);
    return false;
  }
  const auto isRestored = std::make_shared<bool>(false);
  runKeepingOrAsking(
      document,
      [&document, &settings, url = candidate->url, successText, isRestored] {
        document.open(
            url, successText.ends_with('.') ? successText.substr(0, successText.size() - 1) : successText);
        settings.rememberDocumentBookmark(url);
        document.refreshHistory();
        document.messages().append(successText, false, true);
        *isRestored = true;
      },
      [&document](const std::string& refusal) {
        document.messages().append("Autosave restore failed: " + refusal, true, false);
      });
  return *isRestored;
}

// --- The controller

// A save that is being written, with what it went out from.
struct AutoSaveController::Running {
  DocumentSave save;
  std::optional<FilePath> documentURL;
  std::optional<DocumentOnDisk> onDisk;
  std::optional<std::string> failure;
};

AutoSaveController::AutoSaveController(DocumentSession& document, AppSettings& settings)
    : document_(document), settings_(settings) {
  settingsObservation_ =
      settings.observe(fieldsOf(settings.autoSaveEnabled, settings.autoSaveIntervalMinutes),
                       [this](FieldMask) { rescheduleAutoSave(); });
}

void AutoSaveController::rescheduleAutoSave() {
  timer_.reset();
  if (!settings_.autoSaveEnabled) return;
  const int minutes = std::max(settings_.autoSaveIntervalMinutes.get(), kShortestAutoSaveMinutes);
  timer_ = document_.host().scheduler.every(Seconds(minutes * kSecondsInAMinute), [this] { tick(); });
}

void AutoSaveController::tick() {
  if (running_) return;  // a slow disk: the save under way ends first
  const AutoSaveTarget target = autoSaveTarget(document_, settings_);
  if (target.refusal) reportSkipped(document_, *target.refusal);
  if (!target.url) return;
  std::shared_ptr<Running> running;
  try {
    running = std::make_shared<Running>(Running{DocumentSave(*target.url, document_.makeDocument(true)),
                                                document_.fileURL, document_.onDisk(), std::nullopt});
  } catch (const UserError& error) {
    reportSaveFailed(document_, error.what(), false);
    return;
  }
  FileSystem& files = document_.host().files;
  running_ = document_.host().scheduler.inBackground(
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
      document_.fileURL.get() == running.documentURL && document_.onDisk() == running.onDisk;
  if (!isSameFile || !document_.isDirty() || document_.isSaveDialogActive) return;
  if (running.failure) {
    reportSaveFailed(document_, *running.failure, false);
    return;
  }
  const bool isNewFile = !running.documentURL.has_value();
  if (isNewFile &&
      (!running.save.holdsStateOf(document_.sketch()) || settings_.files().isTaken(running.save.url()))) {
    // Of a document without a file only its content says that it is still the same, and its name may have
    // been taken: by a link, which was then followed.
    autoSaveTick(document_, settings_);
    return;
  }
  if (documentChangedOnDisk(document_)) {
    reportSkipped(document_, changedOnDiskText(running.save.url()));
    return;
  }
  try {
    document_.finishSave(running.save);
  } catch (const NameTakenError&) {
    autoSaveTick(document_, settings_);
    return;
  } catch (const UserError& error) {
    reportSaveFailed(document_, error.what(), false);
    return;
  }
  reportSaved(document_, settings_, false);
  recordAutoSave(document_, settings_);
}

}  // namespace ostrelon
