// Calls of documents, their history, and the settings.
#include "automation/call_binding.h"
#include "documents/auto_save.h"
#include "documents/document_history.h"
#include "documents/document_store.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {

void addDocumentCalls(CallTable& table) {
  // --- Format
  table["makeDocumentV2"] = sketchCall(&SketchViewModel::makeDocumentV2);
  table["applyLoadedDocument"] = sketchCall(&SketchViewModel::applyLoadedDocument);
  table["decodeDocument"] = functionCall(SketchDocumentIO::decodeDocument);
  table["encodeDocument"] = sessionCall([](AutomationSession&, const SketchDocumentV2& document) {
    return SketchDocumentIO::encodeDocument(document);
  });

  // --- Store
  table["saveDocumentFile"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    session.sketch().saveDocumentFile(url);
    session.application.settings().rememberDocumentBookmark(url);
  });
  table["openDocumentFile"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    session.sketch().openDocumentFile(url);
    session.application.settings().rememberDocumentBookmark(url);
  });
  table["setSaveDialogActive"] = sketchCall(&SketchViewModel::setSaveDialogActive);
  table["saveCurrentDocument"] = sessionCall([](AutomationSession& session, std::optional<bool> announce) {
    saveCurrentDocument(session.sketch(), session.application.settings(), announce.value_or(true));
  });
  table["saveDocumentAs"] = sessionCall([](AutomationSession& session, std::optional<bool> announce) {
    saveDocumentAs(session.sketch(), session.application.settings(), announce.value_or(true));
  });
  table["saveToURL"] =
      sessionCall([](AutomationSession& session, const FilePath& url, std::optional<bool> announce) {
        return saveToURL(session.sketch(), session.application.settings(), url, announce.value_or(true));
      });
  table["openDocument"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    return openDocument(session.sketch(), session.application.settings(), url);
  });
  table["nextUntitledURL"] = sessionCall([](AutomationSession& session, const FilePath& folder) {
    return nextUntitledURL(session.application.settings().files(), folder);
  });
  table["recentDocuments"] = sessionCall([](AutomationSession& session, std::int64_t limit) {
    return recentDocuments(session.application.settings(), limit);
  });

  // --- History
  table["refreshDocumentHistory"] = sketchCall(&SketchViewModel::refreshDocumentHistory);
  table["saveCheckpoint"] = sketchCall(&SketchViewModel::saveCheckpoint);
  table["createHistoryBranch"] = sketchCall(&SketchViewModel::createHistoryBranch);
  table["switchBranch"] = sketchCall(&SketchViewModel::switchBranch);
  table["documentHistoryText"] = sketchCall(&SketchViewModel::documentHistoryText);
  table["currentBranch"] = sessionCall(
      [](AutomationSession& session) { return session.sketch().documentHistoryState->currentBranch(); });
  table["allCheckpoints"] = sessionCall(
      [](AutomationSession& session) { return session.sketch().documentHistoryState->allCheckpoints(); });
  table["findBranch"] = sessionCall([](AutomationSession& session, const std::string& nameOrID) {
    return session.sketch().documentHistoryState->findBranch(nameOrID);
  });
  table["findCheckpoint"] = sessionCall([](AutomationSession& session, const std::string& id) {
    return session.sketch().documentHistoryState->findCheckpoint(id);
  });
  table["loadDocumentHistory"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    return loadDocumentHistory(session.application.settings().files(), url);
  });
  table["ensureDocumentHistory"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    return ensureDocumentHistory(session.application.settings().files(), url);
  });
  table["createCheckpoint"] = sessionCall([](AutomationSession& session, const FilePath& url,
                                             const std::string& message, const std::optional<Date>& date) {
    return createCheckpoint(session.application.settings().files(), url, message,
                            date.value_or(session.scheduler.now()), session.sketch().makeDocumentV2(false));
  });
  table["createBranch"] =
      sessionCall([](AutomationSession& session, const FilePath& url, const std::string& name,
                     const std::string& sourceCheckpointID, const std::optional<Date>& date) {
        return createBranch(session.application.settings().files(), url, name, sourceCheckpointID,
                            date.value_or(session.scheduler.now()));
      });
  table["normalizeBranchID"] = functionCall(normalizeBranchID);

  // --- Auto-save
  table["autoSaveTick"] = sessionCall([](AutomationSession& session) {
    return autoSaveTick(session.sketch(), session.application.settings());
  });
  table["restoreAutoSave"] =
      sessionCall([](AutomationSession& session) { session.application.restoreAutoSaveFromOffer(); });
  table["revertToLastAutoSave"] = sessionCall([](AutomationSession& session) {
    revertToLastAutoSave(session.sketch(), session.application.settings());
  });
  table["restoreCandidate"] =
      sessionCall([](AutomationSession& session, const std::optional<AutoSaveRecoveryCandidate>& candidate,
                     const std::string& successText, const std::string& missingText) {
        return restoreCandidate(session.sketch(), session.application.settings(), candidate, successText,
                                missingText);
      });
  table["rescheduleAutoSave"] =
      sessionCall([](AutomationSession& session) { session.application.rescheduleAutoSave(); });

  // --- The sheets of the start
  table["showProjectsFolderSetup"] =
      sessionCall([](AutomationSession& session) { return *session.application.showProjectsFolderSetup; });
  table["showAutoSaveRecoveryOffer"] =
      sessionCall([](AutomationSession& session) { return *session.application.showAutoSaveRecoveryOffer; });
  table["completeProjectsFolderSetup"] =
      sessionCall([](AutomationSession& session) { session.application.completeProjectsFolderSetup(); });
  table["restoreAutoSaveFromOffer"] =
      sessionCall([](AutomationSession& session) { session.application.restoreAutoSaveFromOffer(); });
  table["skipAutoSaveRecovery"] =
      sessionCall([](AutomationSession& session) { session.application.skipAutoSaveRecovery(); });

  // --- Settings
  table["setAppearanceMode"] = sessionCall([](AutomationSession& session, AppearanceMode mode) {
    session.application.settings().setAppearanceMode(mode);
  });
  table["setAutoSaveEnabled"] = sessionCall([](AutomationSession& session, bool enabled) {
    session.application.settings().setAutoSaveEnabled(enabled);
  });
  table["setAutoSaveIntervalMinutes"] = sessionCall([](AutomationSession& session, int minutes) {
    session.application.settings().setAutoSaveIntervalMinutes(minutes);
  });
  table["updateColorScheme"] = sessionCall([](AutomationSession& session, std::optional<ColorScheme> scheme) {
    session.application.settings().updateColorScheme(scheme);
  });
  table["resolvePalette"] = functionCall(resolvePalette);
  table["useDefaultProjectsFolder"] = sessionCall(
      [](AutomationSession& session) { session.application.settings().useDefaultProjectsFolder(); });
  table["setCustomProjectsFolder"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    session.application.settings().setCustomProjectsFolder(url);
  });
  table["clearProjectsFolder"] =
      sessionCall([](AutomationSession& session) { session.application.settings().clearProjectsFolder(); });
  table["resetProjectsFolderForUITesting"] = sessionCall(
      [](AutomationSession& session) { session.application.settings().resetProjectsFolderForUITesting(); });
  table["setLastUpdateCheckAt"] =
      sessionCall([](AutomationSession& session, const std::optional<Date>& date) {
        session.application.settings().setLastUpdateCheckAt(date);
      });
  table["setPostponedUpdateVersion"] =
      sessionCall([](AutomationSession& session, const std::optional<std::string>& version) {
        session.application.settings().setPostponedUpdateVersion(version);
      });
  table["recordLastAutoSave"] = sessionCall([](AutomationSession& session, const FilePath& url,
                                               const std::string& name, const std::optional<Date>& savedAt) {
    session.application.settings().recordLastAutoSave(url, name, savedAt);
  });
  table["isInsideProjectsFolder"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    return session.application.settings().isInsideProjectsFolder(url);
  });
  table["defaultProjectsFolder"] = sessionCall(
      [](AutomationSession& session) { return session.application.settings().defaultProjectsFolder(); });
  table["rememberDocumentBookmark"] = sessionCall([](AutomationSession& session, const FilePath& url) {
    session.application.settings().rememberDocumentBookmark(url);
  });
  table["isUITesting"] =
      sessionCall([](AutomationSession& session) { return session.application.settings().isUITesting(); });
  table["isProjectsFolderConfigured"] = sessionCall(
      [](AutomationSession& session) { return session.application.settings().isProjectsFolderConfigured(); });
}

}  // namespace ostrelon
