#include "trust/saved_world.h"

#include "documents/app_settings.h"
#include "documents/document_history.h"
#include "documents/sketch_document.h"
#include "documents/sketch_document_io.h"
#include "platform/disk_file_system.h"
#include "platform/json_user_defaults.h"
#include "trust/program_session.h"

namespace ostrelon::testing {
namespace {

int stateOfFile(FileSystem& files, const FilePath& path) {
  const LoadedSketchDocument loaded = SketchDocumentIO::decodeDocument(files.readFile(path));
  return ProgramSession::stateOf(std::get<SketchDocumentV2>(loaded.document).e);
}

}  // namespace

SavedWorld readSavedWorld(const FilePath& home) {
  SavedWorld world;
  DiskFileSystem files;
  const FilePath plan = home / "Documents/Ostrelon/plan.ostrel";
  try {
    if (files.exists(plan)) world.plan = stateOfFile(files, plan);
    const DocumentHistoryState history = loadDocumentHistory(files, plan);
    for (const DocumentHistoryBranch& branch : history.metadata.branches) {
      if (!branch.headCheckpointID) continue;
      const auto head = history.findCheckpoint(*branch.headCheckpointID);
      if (!head || head->branch.id != branch.id) throw UserError("The head of " + branch.id + " is lost.");
      world.heads[branch.id] = stateOfFile(files, checkpointURL(plan, branch.id, head->checkpoint.fileName));
    }
    world.currentBranch = history.metadata.currentBranchID;
    JsonUserDefaults defaults(files, home / "settings.json");
    for (const std::string& note : defaults.takeNotes()) throw UserError(note);
    if (const auto interval = defaults.integer(SettingsKey::autoSaveIntervalMinutes)) {
      world.interval = static_cast<int>(*interval);
    }
    world.hasAutoSave = defaults.has(SettingsKey::lastAutoSaveBookmark);
  } catch (const UserError& error) {
    world.damage = error.what();
  }
  return world;
}

}  // namespace ostrelon::testing
