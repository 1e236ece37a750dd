// Calls of documents, their history, and the settings.
#include <unordered_set>

#include "automation/call_binding.h"
#include "documents/auto_save.h"
#include "documents/document_history.h"
#include "documents/document_store.h"
#include "documents/named_drawing.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {
namespace {

// The identifiers of entities in the order of their list.
std::vector<UUID> inOrder(const std::unordered_set<UUID>& ids, const EntityList& list) {
  std::vector<UUID> ordered;
  for (const SketchEntity& entity : list) {
    if (ids.contains(entityID(entity))) ordered.push_back(entityID(entity));
  }
  return ordered;
}

// What a comparison or a merge answers: the identifiers of wall systems, then those of entities, then those
// of openings. Of a merge
// these are the changes that were made, and the conflicts that kept it from being done.
Json differenceIDs(const DrawingDifference& difference, const Drawing& before, const Drawing& after,
                   const std::vector<MergeConflict>& conflicts) {
  const auto ids = [](const std::vector<UUID>& systems, const std::unordered_set<UUID>& entities,
                      const EntityList& list) {
    std::vector<UUID> all = systems;
    const std::vector<UUID> ordered = inOrder(entities, list);
    all.insert(all.end(), ordered.begin(), ordered.end());
    return toJson(all);
  };
  const auto entityIDs = [](const std::vector<SketchEntity>& entities) {
    std::unordered_set<UUID> found;
    for (const SketchEntity& entity : entities) found.insert(entityID(entity));
    return found;
  };
  const auto systemIDs = [](const std::vector<WallSystemSpec>& systems) {
    std::vector<UUID> found;
    found.reserve(systems.size());
    for (const WallSystemSpec& system : systems) found.push_back(system.id);
    return found;
  };
  std::unordered_set<UUID> changed;
  for (const auto& [old, now] : difference.changed) changed.insert(entityID(now));
  std::vector<UUID> changedSystems;
  changedSystems.reserve(difference.changedSystems.size());
  for (const auto& [old, now] : difference.changedSystems) changedSystems.push_back(now.id);
  std::vector<UUID> open;
  open.reserve(conflicts.size());
  for (const MergeConflict& conflict : conflicts) open.push_back(conflictID(conflict));
  Json result{
      {"added", ids(systemIDs(difference.addedSystems), entityIDs(difference.added), after.entities)},
      {"removed", ids(systemIDs(difference.removedSystems), entityIDs(difference.removed), before.entities)},
      {"changed", ids(changedSystems, changed, after.entities)},
      {"conflicts", toJson(open)}};
  const auto add = [&](const char* group, const PlanItem& item) {
    result[group].push_back(toJson(planItemID(item)));
  };
  for (const PlanItem& item : difference.plan.added) add("added", item);
  for (const PlanItem& item : difference.plan.removed) add("removed", item);
  for (const auto& [old, now] : difference.plan.changed) add("changed", now);
  return result;
}

}  // namespace

void addDocumentCalls(CallTable& table) {
  // --- Format
  table["makeDocumentV2"] = call(&DocumentSession::makeDocument);
  table["applyLoadedDocument"] =
      call([](DocumentSession& document, const LoadedSketchDocument& loaded) { document.adopt(loaded); });
  table["decodeDocument"] = call(SketchDocumentIO::decodeDocument);
  table["encodeDocument"] =
      call([](const SketchDocumentV2& document) { return SketchDocumentIO::encodeDocument(document); });

  // --- Store
  table["saveDocumentFile"] = call([](AutomationSession& session, const FilePath& url) {
    session.workspace().document.save(url);
    session.application.settings().rememberDocumentBookmark(url);
  });
  table["openDocumentFile"] = call([](AutomationSession& session, const FilePath& url) {
    session.workspace().document.open(url);
    session.application.settings().rememberDocumentBookmark(url);
  });
  table["setSaveDialogActive"] = call(&DocumentSession::setSaveDialogActive);
  table["saveCurrentDocument"] = call([](AutomationSession& session, std::optional<bool> announce) {
    saveCurrentDocument(session.workspace().document, session.application.settings(),
                        announce.value_or(true));
  });
  table["saveDocumentAs"] = call([](AutomationSession& session, std::optional<bool> announce) {
    saveDocumentAs(session.workspace().document, session.application.settings(), announce.value_or(true));
  });
  table["saveToURL"] =
      call([](AutomationSession& session, const FilePath& url, std::optional<bool> announce) {
        return saveToURL(session.workspace().document, session.application.settings(), url,
                         announce.value_or(true));
      });
  table["openDocument"] = call([](AutomationSession& session, const FilePath& url) {
    return openDocument(session.workspace().document, session.application.settings(), url);
  });
  table["nextUntitledURL"] = call([](AutomationSession& session, const FilePath& folder) {
    return nextUntitledURL(session.application.settings().files(), folder);
  });
  table["recentDocuments"] = call([](AutomationSession& session, std::int64_t limit) {
    return recentDocuments(session.application.settings(), limit);
  });

  // --- History
  table["refreshDocumentHistory"] = call(&DocumentSession::refreshHistory);
  table["saveCheckpoint"] = call(&DocumentSession::saveCheckpoint);
  table["createHistoryBranch"] = call(&DocumentSession::createBranch);
  table["switchBranch"] = call(&DocumentSession::switchBranch);
  table["documentHistoryText"] = call(&DocumentSession::historyText);
  table["currentBranch"] =
      call([](AutomationSession& session) { return session.workspace().document.history->currentBranch(); });
  table["allCheckpoints"] =
      call([](AutomationSession& session) { return session.workspace().document.history->allCheckpoints(); });
  table["findBranch"] = call([](AutomationSession& session, const std::string& nameOrID) {
    return session.workspace().document.history->findBranch(nameOrID);
  });
  table["findCheckpoint"] = call([](AutomationSession& session, const std::string& id) {
    return session.workspace().document.history->findCheckpoint(id);
  });
  table["loadDocumentHistory"] = call([](AutomationSession& session, const FilePath& url) {
    return loadDocumentHistory(session.application.settings().files(), url);
  });
  table["ensureDocumentHistory"] = call([](AutomationSession& session, const FilePath& url) {
    return ensureDocumentHistory(session.application.settings().files(), url);
  });
  table["createCheckpoint"] = call([](AutomationSession& session, const FilePath& url,
                                      const std::string& message, const std::optional<Date>& date) {
    return createCheckpoint(session.application.settings().files(), url, message,
                            date.value_or(session.scheduler.now()),
                            session.workspace().document.makeDocument(false));
  });
  table["createBranch"] = call([](AutomationSession& session, const FilePath& url, const std::string& name,
                                  const std::string& sourceCheckpointID, const std::optional<Date>& date) {
    return createBranch(session.application.settings().files(), url, name, sourceCheckpointID,
                        date.value_or(session.scheduler.now()));
  });
  table["normalizeBranchID"] = call(normalizeBranchID);
  table["compareDrawings"] = call([](DocumentSession& document, const std::optional<std::string>& before,
                                     const std::optional<std::string>& after) {
    const auto drawing = [&](const std::optional<std::string>& name) {
      return name ? namedDrawing(document, *name).drawing : Drawing(document.sketch().drawing);
    };
    const Drawing first = drawing(before);
    const Drawing second = drawing(after);
    return differenceIDs(compareDrawings(first, second, NumberPrecision::asInFiles), first, second, {});
  });
  table["mergeDrawing"] =
      call([](DocumentSession& document, const std::string& name, const std::optional<MergeChoice>& choice) {
        const Drawing before = document.sketch().drawing;
        const MergeOutcome outcome = mergeIntoDocument(document, namedDrawing(document, name), choice);
        if (!outcome.isDone) return differenceIDs({}, before, before, outcome.conflicts);
        return differenceIDs(outcome.taken, before, document.sketch().drawing, {});
      });

  // --- Auto-save
  table["autoSaveTick"] = call([](AutomationSession& session) {
    return autoSaveTick(session.workspace().document, session.application.settings());
  });
  table["restoreAutoSave"] =
      call([](AutomationSession& session) { session.application.restoreAutoSaveFromOffer(); });
  table["revertToLastAutoSave"] = call([](AutomationSession& session) {
    revertToLastAutoSave(session.workspace().document, session.application.settings());
  });
  table["restoreCandidate"] =
      call([](AutomationSession& session, const std::optional<AutoSaveRecoveryCandidate>& candidate,
              const std::string& successText, const std::string& missingText) {
        return restoreCandidate(session.workspace().document, session.application.settings(), candidate,
                                successText, missingText);
      });
  table["rescheduleAutoSave"] =
      call([](AutomationSession& session) { session.application.rescheduleAutoSave(); });

  // --- The sheets of the start
  table["showProjectsFolderSetup"] =
      call([](Application& application) { return *application.showProjectsFolderSetup; });
  table["showAutoSaveRecoveryOffer"] =
      call([](Application& application) { return *application.showAutoSaveRecoveryOffer; });
  table["completeProjectsFolderSetup"] =
      call([](AutomationSession& session) { session.application.completeProjectsFolderSetup(); });
  table["restoreAutoSaveFromOffer"] =
      call([](AutomationSession& session) { session.application.restoreAutoSaveFromOffer(); });
  table["skipAutoSaveRecovery"] =
      call([](AutomationSession& session) { session.application.skipAutoSaveRecovery(); });

  // --- What programs that have died left behind
  table["recoverableJournals"] = call(&Application::recoverableJournals);
  table["recoverJournal"] = call(&Application::recoverJournal);
  table["discardJournal"] = call(&Application::discardJournal);
  table["keptDrawings"] = call(&Application::keptDrawings);
  table["restoreKeptDrawing"] = call(&Application::restoreKeptDrawing);
  table["openKeptDrawing"] = call(&Application::openKeptDrawing);
  table["deleteKeptDrawing"] = call(&Application::deleteKeptDrawing);

  // --- Settings
  table["setAppearanceMode"] = call([](AutomationSession& session, AppearanceMode mode) {
    session.application.settings().setAppearanceMode(mode);
  });
  table["setAutoSaveEnabled"] = call([](AutomationSession& session, bool enabled) {
    session.application.settings().setAutoSaveEnabled(enabled);
  });
  table["setAutoSaveIntervalMinutes"] = call([](AutomationSession& session, int minutes) {
    session.application.settings().setAutoSaveIntervalMinutes(minutes);
  });
  table["updateColorScheme"] = call([](AutomationSession& session, std::optional<ColorScheme> scheme) {
    session.application.settings().updateColorScheme(scheme);
  });
  table["resolvePalette"] = call(resolvePalette);
  table["useDefaultProjectsFolder"] =
      call([](AutomationSession& session) { session.application.settings().useDefaultProjectsFolder(); });
  table["setCustomProjectsFolder"] = call([](AutomationSession& session, const FilePath& url) {
    session.application.settings().setCustomProjectsFolder(url);
  });
  table["clearProjectsFolder"] =
      call([](AutomationSession& session) { session.application.settings().clearProjectsFolder(); });
  table["resetProjectsFolderForUITesting"] = call(
      [](AutomationSession& session) { session.application.settings().resetProjectsFolderForUITesting(); });
  table["setLastUpdateCheckAt"] = call([](AutomationSession& session, const std::optional<Date>& date) {
    session.application.settings().setLastUpdateCheckAt(date);
  });
  table["setPostponedUpdateVersion"] =
      call([](AutomationSession& session, const std::optional<std::string>& version) {
        session.application.settings().setPostponedUpdateVersion(version);
      });
  table["recordLastAutoSave"] = call([](AutomationSession& session, const FilePath& url,
                                        const std::string& name, const std::optional<Date>& savedAt) {
    session.application.settings().recordLastAutoSave(url, name, savedAt);
  });
  table["isInsideProjectsFolder"] = call([](AutomationSession& session, const FilePath& url) {
    return session.application.settings().isInsideProjectsFolder(url);
  });
  table["defaultProjectsFolder"] =
      call([](AutomationSession& session) { return session.application.settings().defaultProjectsFolder(); });
  table["rememberDocumentBookmark"] = call([](AutomationSession& session, const FilePath& url) {
    session.application.settings().rememberDocumentBookmark(url);
  });
  table["isUITesting"] =
      call([](AutomationSession& session) { return session.application.settings().isUITesting(); });
  table["isProjectsFolderConfigured"] = call(
      [](AutomationSession& session) { return session.application.settings().isProjectsFolderConfigured(); });
}

}  // namespace ostrelon
