#include "app/application.h"

#include <memory>
#include <utility>

#include "documents/document_store.h"
#include "documents/drawing_loss.h"
#include "documents/history_prompts.h"
#include "documents/kept_question.h"
#include "documents/sketch_document_io.h"
#include "platform/dialogs.h"
#include "sample_plan.h"

namespace ostrelon {
namespace {

constexpr Seconds kKeptNoticeTime(4);

/// The folder from which a document was opened last.
constexpr const char* kLastFolder = "ostrel.lastFolder";

}  // namespace

Application::Application(ApplicationServices services, ApplicationOptions options)
    : host_(services.host),
      defaults_(services.defaults),
      workspace_(services.host),
      settings_(services.defaults, services.host.files, options.documentsFolder, options.isUITesting),
      updates_(services.host.scheduler, settings_, services.updateClient, std::move(options.updates),
               std::move(services.openInstaller)),
      makePicture_(std::move(services.makePicture)),
      closeQuestion_(workspace_,
                     [this](const std::function<void()>& ended) {
                       saveCurrentDocument(workspace_.document, settings_, true,
                                           [ended](SaveOutcome) { ended(); });
                     }),
      opener_(workspace_, settings_, closeQuestion_, options.opensInBackground),
      asksInWindow_(options.asksInWindow),
      comparison_(workspace_, options.opensInBackground),
      mergeReview_(workspace_, options.opensInBackground) {
  workspace_.document.setDocumentsFolder(std::move(options.documentsFolder));
  if (!options.stateFolder.empty()) {
    journal_.emplace(workspace_, options.stateFolder / "journals");
    keptFolder_ = options.stateFolder / "kept";
    workspace_.document.keepDrawingsIn(
        KeptDrawings(host_.files, keptFolder_, KeptLimits::ofSettings(defaults_)),
        [this] { showKeptNotice(); });
  }
  selectionSubscription_ = workspace_.observe(fieldsOf(workspace_.sketch.selection), [this](FieldMask) {
    const Selection& selection = workspace_.sketch.selection;
    // It goes with a selection that was there; what a script opens without one stays.
    const bool hasGone = std::exchange(hadSelection_, !selection.isNothing()) && selection.isNothing();
    if (!hasGone || !selection.isInspected) return;
    // Observers do not change what they observe: the window goes once the operation has ended.
    inspectorTask_ = host_.scheduler.after(Seconds(0), [this] {
      if (workspace_.sketch.selection->isNothing()) workspace_.sketch.setInspected(false);
    });
  });
}

void Application::mainViewAppeared() {
  const bool isTesting = settings_.isUITesting();
  if (isTesting) settings_.resetProjectsFolderForUITesting();
  if (journal_) journal_->holdMarker();
  {
    const ChangeScope scope(tracker_);
    if (!isTesting) journalOffers = recoverableJournals();
    showProjectsFolderSetup = !isTesting && !settings_.isProjectsFolderConfigured();
    showAutoSaveRecoveryOffer = !isTesting && settings_.autoSaveRecoveryCandidate->has_value();
  }
  defaults_.set(SettingsKey::lastSessionEndedCleanly, false);
  if (!autoSaveController_) autoSaveController_.emplace(workspace_.document, settings_);
  autoSaveController_->rescheduleAutoSave();
  updates_.startAutomaticChecks();
}

void Application::willTerminate() {
  if (journal_) journal_->remove();
  defaults_.set(SettingsKey::lastSessionEndedCleanly, true);
}

void Application::sessionShouldEnd(bool mayAsk, std::function<void(bool mayEnd)> answered) {
  opener_.giveUp();
  if (mayAsk) {
    closeQuestion_.sessionShouldEnd(std::move(answered));
    return;
  }
  if (workspace_.document.isDirty() && !isJournalOnDisk()) {
    try {
      workspace_.document.keepWhatIsLost({.reason = "Closed without saving"});
    } catch (const UserError&) {
      // Nobody can be asked, and the session ends anyway.
    }
  }
  answered(true);
}

bool Application::isJournalOnDisk() {
  if (!journal_ || !journal_->isOpen()) return false;
  try {
    journal_->sync();
  } catch (const FileError&) {
    return false;
  }
  return true;
}

bool Application::endBySystem() {
  if (!workspace_.document.isDirty()) {
    willTerminate();
    return true;
  }
  if (!isJournalOnDisk()) return false;
  defaults_.set(SettingsKey::lastSessionEndedCleanly, true);
  return true;
}

// --- Documents

void Application::newDocument() {
  beforeReplacing([this] { replaceOrReport([this] { workspace_.document.begin(); }); });
}

void Application::openDocumentWithPanel() {
  beforeReplacing([this] {
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
  beforeReplacing([this, url] { openAndRemember(url); });
}

// An opening under way is given up for the one requested last.
void Application::beforeReplacing(std::function<void()> proceed) {
  opener_.giveUp();
  closeQuestion_.beforeReplacing(std::move(proceed));
}

void Application::openAndRemember(const FilePath& url) {
  defaults_.set(kLastFolder, url.parent_path().string());
  opener_.open(url);
}

void Application::openSamplePlan() {
  beforeReplacing([this] {
    replaceOrReport([this] {
      workspace_.document.begin();
      workspace_.document.adopt(SketchDocumentIO::decodeDocument(kSamplePlan));
      showWholeDrawing();
    });
  });
}

void Application::showWholeDrawing() {
  const SketchSize canvas = workspace_.board.view->canvasSize;
  // Laid out now, or the window would centre the origin over the fitted view.
  workspace_.board.resizeCanvas(canvas);
  workspace_.board.zoomToFit(canvas);
}

void Application::openAsNewDocument(OpenedDocument document, const std::string& report) {
  beforeReplacing([this, document = std::move(document), report] {
    replaceOrReport([this, document, report] {
      const ChangeScope scope = workspace_.change();
      workspace_.document.adoptUnsaved(document, SketchUndoStack(), std::nullopt, std::nullopt,
                                       "Opened " + document.name);
      showWholeDrawing();
      workspace_.messages.appendSystem(report);
    });
  });
}

void Application::replaceOrReport(std::function<void()> replace) {
  runKeepingOrAsking(workspace_.document, std::move(replace), [this](const std::string& refusal) {
    workspace_.messages.append(refusal, true, false);
  });
}

void Application::save() {
  // A document without a file may need the panel, as below.
  if (!workspace_.document.fileURL->has_value()) opener_.giveUp();
  saveCurrentDocument(workspace_.document, settings_, true);
}

void Application::saveAs() {
  // Else the panel's answer might find another document than the one that it was asked for.
  opener_.giveUp();
  saveDocumentAs(workspace_.document, settings_, true);
}

void Application::rescheduleAutoSave() {
  if (autoSaveController_) autoSaveController_->rescheduleAutoSave();
}

void Application::revertToLastAutosave() {
  opener_.giveUp();
  using Style = DocumentToastState::Style;
  const std::optional<AutoSaveRecoveryCandidate>& last = settings_.lastAutoSave;
  if (!last) {
    revertToLastAutoSave(workspace_.document, settings_);
    workspace_.messages.showToast("No last autosave is available.", Style::error);
    return;
  }
  const DocumentSession& document = workspace_.document;
  const bool isOther = document.fileURL.get() != standardizedPath(last->url);
  Alert question;
  question.message =
      isOther ? "The last autosave is of another document: " + last->displayName + ". Do you want to open it?"
              : "Do you want to revert " + *document.name + " to its last autosave?";
  question.informativeText = document.isDirty() ? "Unsaved changes are dropped and kept in File, History."
                                                : *document.name + " stays as it was saved.";
  question.buttons = {isOther ? "Open" : "Revert", "Cancel"};
  question.cancelButton = 1;
  askInWindow(isOther || document.isDirty(), std::move(question), [this] {
    if (revertToLastAutoSave(workspace_.document, settings_)) {
      workspace_.messages.showToast("Reverted to last autosave.", Style::success);
    }
  });
}

void Application::switchBranch(const std::string& nameOrID) {
  DocumentSession& document = workspace_.document;
  const auto other = document.otherDocumentAtHead(nameOrID);
  const Alert question{"The last checkpoint of this branch is of another document: " + other.value_or("") +
                           ". Do you want to switch all the same?",
                       "Its drawing takes the place of that of " + *document.name + ", also in the file.",
                       {"Switch", "Cancel"},
                       1};
  askInWindow(!document.isDirty() && other.has_value(), question,
              [this, nameOrID] { switchBranchFromMenu(workspace_.document, nameOrID); });
}

void Application::askInWindow(bool isNeeded, Alert question, std::function<void()> proceed) {
  if (!asksInWindow_ || !isNeeded) {
    proceed();
    return;
  }
  const std::string yes = question.buttons.front();
  host_.dialogs.ask(std::move(question), [yes, proceed = std::move(proceed)](const DialogAnswer& answer) {
    if (answer == yes) proceed();
  });
}

void Application::windowShouldClose(const std::function<void(CloseQuestion::Reply)>& reply,
                                    std::function<void()> closeNow) {
  opener_.giveUp();
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
  opener_.giveUp();
  restoreAutoSave(workspace_.document, settings_);
  showAutoSaveRecoveryOffer = false;
}

void Application::skipAutoSaveRecovery() {
  settings_.clearAutoSaveRecoveryCandidate();
  showAutoSaveRecoveryOffer = false;
}

std::vector<RecoverableJournal> Application::recoverableJournals() const {
  return journal_ ? journal_->recoverable() : std::vector<RecoverableJournal>();
}

void Application::recoverJournal(const std::string& id) {
  if (!journal_) throw UserError("There are no journals here.");
  opener_.giveUp();
  orThrow([this, id] {
    journal_->recover(id);
    journalDealtWith(id);
  });
}

std::vector<KeptDrawing> Application::keptDrawings() const { return workspace_.document.keptDrawings(); }

void Application::restoreKeptDrawing(const std::string& id) {
  opener_.giveUp();
  workspace_.document.restoreKeptDrawing(id);
}

void Application::openKeptDrawing(const std::string& id) {
  opener_.giveUp();
  orThrow([this, id] { workspace_.document.openKeptDrawing(id); });
}

void Application::deleteKeptDrawing(const std::string& id) { workspace_.document.deleteKeptDrawing(id); }

void Application::showKeptNotice() {
  keptNotice = true;
  keptNoticeTask_ = host_.scheduler.after(kKeptNoticeTime, [this] { keptNotice = false; });
}

// A refusal that comes later, by the user's own answer, needs no report.
void Application::orThrow(std::function<void()> replace) {
  const auto refusal = std::make_shared<std::optional<std::string>>();
  runKeepingOrAsking(workspace_.document, std::move(replace),
                     [refusal](const std::string& text) { *refusal = text; });
  if (*refusal) throw UserError(**refusal);
}

void Application::discardJournal(const std::string& id) {
  if (!journal_) throw UserError("There are no journals here.");
  journal_->discard(id);
  journalDealtWith(id);
}

std::function<Drawing()> Application::drawingOfJournal(const std::string& id) const {
  if (!journal_) throw UserError("There are no journals here.");
  return journal_->looking(id);
}

void Application::journalDealtWith(const std::string& id) {
  std::vector<RecoverableJournal> offers = journalOffers;
  std::erase_if(offers, [&](const RecoverableJournal& offer) { return offer.id == id; });
  journalOffers = std::move(offers);
}

void Application::keepJournalsForLater() { journalOffers = {}; }

}  // namespace ostrelon
