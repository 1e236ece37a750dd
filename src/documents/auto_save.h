// Auto-save writes the open document into its own file on a timer; after an unclean end the next start
// offers what was written last.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "documents/app_settings.h"
#include "documents/document_session.h"
#include "platform/scheduler.h"

namespace ostrelon {

/// One auto-save, done when it returns. Nothing happens to a clean document, with auto-save off, or while a
/// save panel is up. A file that another program has changed is left alone. Gives the failure text, as the
/// console shows it for a failed save and without prefix for a skipped one; absent otherwise.
std::optional<std::string> autoSaveTick(DocumentSession& document, AppSettings& settings);

/// Opens the offered auto-save and withdraws the offer, whatever the result. False when it failed.
bool restoreAutoSave(DocumentSession& document, AppSettings& settings);
/// Opens the document of the last auto-save; unsaved changes are dropped. False when it failed.
bool revertToLastAutoSave(DocumentSession& document, AppSettings& settings);
/// Opens the candidate's document and reports it; without one reports `missingText`. False when it failed.
bool restoreCandidate(DocumentSession& document, AppSettings& settings,
                      const std::optional<AutoSaveRecoveryCandidate>& candidate,
                      const std::string& successText, const std::string& missingText);

/// Saves on a timer that follows the settings. The encoding and writing go on away from the main thread
/// where there is one to spare; the document stays free to change and to be saved meanwhile.
class AutoSaveController {
 public:
  /// `document` and `settings` must outlive the object.
  AutoSaveController(DocumentSession& document, AppSettings& settings);
  AutoSaveController(const AutoSaveController&) = delete;
  AutoSaveController& operator=(const AutoSaveController&) = delete;

  /// Puts a fresh timer in the place of the old one, or none when auto-save is off. Also happens by
  /// itself when one of the two settings changes.
  void rescheduleAutoSave();

 private:
  struct Running;

  void tick();
  void finish(Running& running);

  DocumentSession& document_;
  AppSettings& settings_;
  Subscription settingsObservation_;
  std::optional<ScheduledTask> timer_;
  std::optional<ScheduledTask> running_;
};

}  // namespace ostrelon
