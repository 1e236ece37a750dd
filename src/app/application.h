// The program without its windows: the long-lived objects, and what happens at each event of its
// life. The window, the automation host and the tests each make one of these over their own services.
//
//   Application app(services, options);
//   app.mainViewAppeared();   // once, when the main window first shows
//   …
//   app.willTerminate();      // a normal end; a killed process never gets here
//
// The operations below are those that need more than one of the objects, or a question to the user.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/close_question.h"
#include "app/comparison.h"
#include "app/document_opener.h"
#include "app/drawing_exchange.h"
#include "app/drawing_import.h"
#include "app/edit_journal.h"
#include "app/merge_review.h"
#include "app/workspace.h"
#include "core/observable.h"
#include "documents/app_settings.h"
#include "documents/auto_save.h"
#include "documents/opened_document.h"
#include "platform/dialogs.h"
#include "platform/host.h"
#include "platform/user_defaults.h"
#include "updates/app_update_client.h"
#include "updates/app_update_manager.h"
#include "updates/update_configuration.h"

namespace ostrelon {

/// What the program needs of its surroundings. All of it must outlive the application.
struct ApplicationServices {
  Host host;
  UserDefaults& defaults;
  AppUpdateClient& updateClient;
  AppUpdateManager::InstallerOpener openInstaller;
  PictureMaker makePicture = {};  ///< empty where no picture can be drawn
};

/// What is decided at the start of the process.
struct ApplicationOptions {
  FilePath documentsFolder;  ///< the user's own; the default projects folder lies in it
  UpdateConfiguration updates;
  /// Resets the projects folder at the start and shows neither the first-run sheet nor the recovery
  /// offer.
  bool isUITesting = false;
  /// Whether commands that the user gives in a window ask where those of a script do not: before a branch of
  /// another document is switched to, and before a revert takes more than it says.
  bool asksInWindow = false;
  /// Whether large documents are read away from the main thread. Else every command has had its whole
  /// effect when it returns.
  bool opensInBackground = false;
  /// Where journals and kept drawings lie; without one there are none.
  FilePath stateFolder = {};
};

/// What a window does for the program. Without one nothing happens.
struct WindowActions {
  std::function<void()> showSettings;
  std::function<void()> showExport;                                      ///< asks how to export, and exports
  std::function<void(std::shared_ptr<const DrawingImport>)> showImport;  ///< asks how to add it, and adds it
  std::function<void()> showPrint;
  std::function<void()> showCompare;  ///< asks what to compare the drawing with, and begins
  std::function<void()> showMerge;    ///< asks what to merge, and shows it
  std::function<void()> showManual;
  std::function<void()> showShortcuts;
  std::function<void()> showHistory;
  std::function<void()> close;  ///< asks the main window to close
};

class Application {
  ChangeTracker tracker_;

 public:
  Application(ApplicationServices services, ApplicationOptions options);

  Workspace& workspace() { return workspace_; }
  const Workspace& workspace() const { return workspace_; }
  AppSettings& settings() { return settings_; }
  const AppSettings& settings() const { return settings_; }
  Comparison& comparison() { return comparison_; }
  const Comparison& comparison() const { return comparison_; }
  MergeReview& mergeReview() { return mergeReview_; }
  const MergeReview& mergeReview() const { return mergeReview_; }
  AppUpdateManager& updates() { return updates_; }
  const AppUpdateManager& updates() const { return updates_; }
  UserDefaults& defaults() { return defaults_; }
  const Host& host() const { return host_; }
  const PictureMaker& makePicture() const { return makePicture_; }

  // --- Life

  /// The main window shows for the first time: decides which sheets are due, marks the session as one
  /// that has not ended cleanly, and starts auto-save and the checks for updates.
  void mainViewAppeared();
  /// The program is about to end by the user's wish.
  void willTerminate();
  /// The system ends the program, and nobody can be asked: unsaved changes stay in the journal, which the
  /// next start offers. Gives whether they do, or there are none.
  bool endBySystem();
  /// The desktop's session is about to end: asks about unsaved changes where `mayAsk`, else brings them to
  /// the disk. `answered` receives whether the session may end, before or after this returns.
  void sessionShouldEnd(bool mayAsk, std::function<void(bool mayEnd)> answered);

  void setWindowActions(WindowActions actions) { windowActions_ = std::move(actions); }
  const WindowActions& windowActions() const { return windowActions_; }

  // --- Documents. What would take the place of unsaved changes asks first.

  void newDocument();
  /// Asks which document, starting in the folder used last, and opens it.
  void openDocumentWithPanel();
  void openDocumentAt(const FilePath& url);
  /// What was drawn at another time becomes a new document that is not saved anywhere; `report` is said then.
  void openAsNewDocument(OpenedDocument document, const std::string& report);
  void save();
  void saveAs();
  /// Starts the auto-save timer afresh.
  void rescheduleAutoSave();
  /// The sample plan as a document of its own, not saved anywhere.
  void openSamplePlan();
  /// Back to the last auto-save; unsaved changes are dropped. In a window it asks first where there are any,
  /// and where the last auto-save is that of another document.
  void revertToLastAutosave();
  /// To a branch by its name or identifier. In a window it asks first where what it holds last is a drawing
  /// of another document.
  void switchBranch(const std::string& nameOrID);
  /// The main window is asked to close: `reply` receives whether it may, `closeNow` runs later when the user
  /// chose to save first and the document is clean.
  void windowShouldClose(const std::function<void(CloseQuestion::Reply)>& reply,
                         std::function<void()> closeNow);
  const CloseQuestion& closeQuestion() const { return closeQuestion_; }

  // --- Sheets

  Observable<bool, Application> showProjectsFolderSetup{tracker_};
  Observable<bool, Application> showAutoSaveRecoveryOffer{tracker_};
  /// The journals that the start found, the one changed last first; those dealt with are gone from it.
  Observable<std::vector<RecoverableJournal>, Application> journalOffers{tracker_};
  /// Calls back when a sheet comes or goes.
  [[nodiscard]] Subscription observe(ChangeTracker::Callback changed) {
    return tracker_.observe(kAllFields, std::move(changed));
  }
  /// Asks for a folder for new projects; nothing happens when the user cancels.
  void chooseProjectsFolder(std::function<void(const FilePath&)> chosen);
  /// A projects folder has been set.
  void completeProjectsFolderSetup();
  /// Opens the offered auto-save; the offer goes, whatever came of it.
  void restoreAutoSaveFromOffer();
  void skipAutoSaveRecovery();
  /// The journals of programs that have died and hold more than their files do.
  std::vector<RecoverableJournal> recoverableJournals() const;
  /// Throw `UserError`.
  void recoverJournal(const std::string& id);
  void discardJournal(const std::string& id);
  /// Reads the drawing that recovering would bring back, on any thread; it throws `UserError`.
  std::function<Drawing()> drawingOfJournal(const std::string& id) const;
  /// They are offered again by the next start.
  void keepJournalsForLater();

  // --- Drawings that were kept before they were replaced

  /// Where they lie; empty where none are kept.
  const FilePath& keptFolder() const { return keptFolder_; }
  /// The newest first.
  std::vector<KeptDrawing> keptDrawings() const;
  /// Its drawing takes the place of the open one as one undo step. This and those below throw `UserError`.
  void restoreKeptDrawing(const std::string& id);
  /// As a new document that is not saved yet. Unsaved changes are not asked about, but kept.
  void openKeptDrawing(const std::string& id);
  void deleteKeptDrawing(const std::string& id);
  /// A drawing has just been kept, which the window tells for a few seconds.
  Observable<bool, Application> keptNotice{tracker_};

 private:
  bool isJournalOnDisk();
  void journalDealtWith(const std::string& id);
  void openAndRemember(const FilePath& url);
  void beforeReplacing(std::function<void()> proceed);
  void askInWindow(bool isNeeded, Alert question, std::function<void()> proceed);
  void replaceOrReport(std::function<void()> replace);
  void orThrow(std::function<void()> replace);
  void showKeptNotice();
  void showWholeDrawing();

  Host host_;
  UserDefaults& defaults_;
  Workspace workspace_;
  AppSettings settings_;
  AppUpdateManager updates_;
  PictureMaker makePicture_;
  CloseQuestion closeQuestion_;
  DocumentOpener opener_;
  bool asksInWindow_ = false;
  FilePath keptFolder_;
  Comparison comparison_;
  MergeReview mergeReview_;
  std::optional<AutoSaveController> autoSaveController_;
  std::optional<EditJournal> journal_;
  WindowActions windowActions_;
  Subscription selectionSubscription_;
  bool hadSelection_ = false;
  ScheduledTask inspectorTask_;
  ScheduledTask keptNoticeTask_;
};

}  // namespace ostrelon
