#include "app/edit_journal.h"

#include <algorithm>
#include <utility>

#include "documents/document_paths.h"
#include "documents/document_reading.h"
#include "documents/document_save.h"
#include "documents/opened_document.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

// A journal smaller than this is not worth folding.
constexpr std::size_t kSmallestLimit = std::size_t{1} << 18;

RecoverableJournal offerOf(const LeftJournal& journal) {
  const JournalBase& base = journal.content.base;
  RecoverableJournal offer{
      journal.session,          base.name, std::nullopt, std::nullopt, journal.content.changedAt(),
      journal.content.changes()};
  if (base.file) {
    offer.path = base.file->path;
    offer.savedAt = base.file->savedAt;
  }
  return offer;
}

std::string changesText(std::uint64_t changes) {
  return changes == 1 ? "1 change" : std::to_string(changes) + " changes";
}

// What a journal brings back.
struct Recovered {
  JournalReplay replay;
  std::optional<DocumentOnDisk> file;      // the one that it goes out from, as it is there
  std::optional<SketchViewport> viewport;  // of that file
  bool hasBase = false;                    // else only what the journal itself holds
};

Recovered recovered(FileSystem& files, const LeftJournal& journal, const Drawing& before) {
  Recovered result;
  const JournalBase& base = journal.content.base;
  std::optional<JournalState> start = snapshotState(base);
  if (journal.isOnFile) {
    DocumentReading reading(base.file->path);
    reading.read(files);
    result.file = reading.onDisk();
    OpenedDocument opened = openedDocument(reading.document(), before);
    result.viewport = opened.viewport;
    if (!start) {
      start.emplace(JournalState{opened.name, std::move(opened.drawing), SketchUndoStack()});
      start->undo.replaceUndoSnapshots(std::move(opened.undo));
    }
  }
  result.hasBase = start.has_value();
  result.replay =
      replayJournal(journal.content.entries, result.hasBase ? std::move(*start) : placeholderState(base));
  if (!result.hasBase) dropPlaceholders(result.replay.state);
  return result;
}

}  // namespace

EditJournal::EditJournal(Workspace& workspace, FilePath folder)
    : workspace_(workspace), folder_(std::move(folder)), file_(workspace.host().files, folder_) {
  followBasis();
  // Whatever ends an operation may end a drag, which is recorded as a whole: all of them are looked at.
  subscription_ = workspace.observe(kAllFields, [this](FieldMask) { changed(); });
  workspace.document.setSaveHook([this](const DocumentSave& save) { mark(save); });
}

EditJournal::~EditJournal() { workspace_.document.setSaveHook({}); }

void EditJournal::holdMarker() {
  try {
    file_.holdMarker();
  } catch (const FileError& error) {
    told(error.what());
  }
}

void EditJournal::remove() {
  later_.cancel();
  isDue_ = false;
  try {
    file_.remove();
  } catch (const FileError& error) {
    told(error.what());
  }
}

// --- Following

bool EditJournal::isCaughtUp() const {
  return workspace_.document.basisNumber() == basisNumber_ &&
         workspace_.sketch.drawingWrites() == drawingWrites_ &&
         workspace_.sketch.undoStack.writes() == undoWrites_ &&
         workspace_.document.name.writes() == nameWrites_;
}

void EditJournal::changed() {
  if (isCaughtUp()) return;
  const Sketch& sketch = workspace_.sketch;
  if (workspace_.document.basisNumber() != basisNumber_) followBasis();
  // A drag is recorded when it ends, unless something else takes a step meanwhile.
  // Its end says nothing then, so that what is dragged on is recorded at once.
  const bool isDragging = sketch.dragStart() != nullptr;
  hasDragStep_ = isDragging && (hasDragStep_ || sketch.undoStack.writes() != undoWrites_);
  if (isDragging && !hasDragStep_) return;
  if (sketch.worksAside(sizeOfNext())) {
    isDue_ = true;
    later_ = workspace_.host().scheduler.after(Seconds(0), [this] { recordChanges(); });
  } else {
    recordChanges();
  }
}

std::size_t EditJournal::sizeOfNext() const {
  const EntityList& entities = workspace_.sketch.entities();
  const EntityList& before = drawing_.entities;
  const bool isSnapshot = file_.isOpen() ? isIncomplete_ || file_.size() > limit_ : !base_.file;
  return isSnapshot ? std::max(entities.size(), before.size())
                    : std::max(entities.unsharedSize(before), before.unsharedSize(entities));
}

void EditJournal::recordChanges() {
  later_.cancel();
  isDue_ = false;
  try {
    if (const auto failure = file_.takeFailure()) throw FileError(*failure);
    workspace_.sketch.work(sizeOfNext(), [this] {
      const auto record = recordOfChanges();
      if (record && record->empty()) return;
      const bool isChange = !record || record->isChange();
      const Date now = workspace_.host().scheduler.now();
      if (isChange) ++changes_;
      if (!record || isIncomplete_ || file_.size() > limit_) {
        if (isChange) base_.changedAt = now;
        beginAnew();
      } else {
        write(*record);
        if (isChange) base_.changedAt = now;
      }
      hasTold_ = false;
    });
  } catch (const FileError& error) {
    isIncomplete_ = true;
    remove();
    told(error.what());
  }
  remember();
}

void EditJournal::sync() {
  if (isDue_) recordChanges();
  file_.sync();
}

// The document has been begun, opened or saved: there is nothing to bring back of what was before.
void EditJournal::followBasis() {
  const DocumentSession& document = workspace_.document;
  remove();
  basisNumber_ = document.basisNumber();
  changes_ = 0;
  isIncomplete_ = false;
  drawing_ = document.basis();
  name_ = document.name;
  base_ = {};
  const auto& onDisk = document.onDisk();
  const bool isOnDisk = onDisk && document.fileURL.get() == onDisk->path;
  if (isOnDisk) base_.file = JournalBase::File{onDisk->path, onDisk->contentHash, document.lastSavedAt};
  // The steps that there are belong to the base; what has changed since a save began takes one of its own.
  const SketchUndoStack& stack = workspace_.sketch.undoStack;
  undoCount_ = stack.undoSnapshots().size();
  redoCount_ = stack.redoSnapshots().size();
  lastUndo_ = undoCount_ > 0 ? stack.undoSnapshots().back().entities : EntityList();
  lastRedo_ = redoCount_ > 0 ? stack.redoSnapshots().back() : SketchUndoSnapshot();
  undoWrites_ = workspace_.sketch.undoStack.writes();
}

std::optional<JournalRecord> EditJournal::recordOfChanges() const {
  const Drawing& drawing = workspace_.sketch.drawing;
  JournalRecord record;
  record.at = workspace_.host().scheduler.now();
  record.entities = EntityList::splices(drawing_.entities, drawing.entities);
  if (drawing.showGrid != drawing_.showGrid) record.showGrid = drawing.showGrid;
  if (drawing.wallSystemSpecs != drawing_.wallSystemSpecs) record.wallSystemSpecs = drawing.wallSystemSpecs;
  if (drawing.activeWallSystemSpecID != drawing_.activeWallSystemSpecID) {
    record.activeWallSystemSpecID = drawing.activeWallSystemSpecID;
  }
  if (drawing.plan != drawing_.plan) record.plan = planChange(drawing_.plan, drawing.plan);
  if (*workspace_.document.name != name_) record.name = workspace_.document.name;
  if (workspace_.sketch.undoStack.writes() == undoWrites_) return record;

  const auto& undo = workspace_.sketch.undoStack->undoSnapshots();
  const auto& redo = workspace_.sketch.undoStack->redoSnapshots();
  const auto isBefore = [&](const SketchUndoSnapshot& step) {
    return step.entities.sharesAllStorage(drawing_.entities);
  };
  if (undo.size() == undoCount_ + 1 && redo.size() + 1 == redoCount_ && isBefore(undo.back()) &&
      drawing.entities == lastRedo_.entities &&
      (!lastRedo_.twin.plan || *lastRedo_.twin.plan == drawing.plan)) {
    record.step = JournalStep::redo;
  } else if (undo.size() + 1 == undoCount_ && redo.size() == redoCount_ + 1 && isBefore(redo.back())) {
    record.step = JournalStep::undo;
  } else if (undo.size() > undoCount_ && redo.empty() &&
             (undoCount_ == 0 || undo[undoCount_ - 1].entities.sharesAllStorage(lastUndo_))) {
    record.step = JournalStep::edit;
    for (std::size_t i = undoCount_; i < undo.size(); ++i) {
      record.steps.push_back(journalStepOf(undo[i], drawing_));
    }
  } else {
    return std::nullopt;
  }
  return record;
}

void EditJournal::write(const JournalRecord& record) {
  if (!file_.isOpen()) {
    base_.name = name_;
    base_.entityCount = drawing_.entities.size();
    base_.wallSystemSpecs = drawing_.wallSystemSpecs;
    base_.activeWallSystemSpecID = drawing_.activeWallSystemSpecID;
    base_.showGrid = drawing_.showGrid;
    base_.plan = drawing_.plan;
    base_.snapshot.reset();
    base_.changes = 0;
    base_.changedAt.reset();
    JournalState before{name_, drawing_, SketchUndoStack()};
    std::string bytes = journalStart(base_.file ? base_ : journalSnapshot(before, base_));
    const std::size_t documentSize =
        base_.file ? static_cast<std::size_t>(workspace_.document.onDisk()->info.size) : bytes.size();
    limit_ = std::max(kSmallestLimit, 2 * documentSize);
    number_ = 1;
    file_.begin(bytes += journalFrame(record, number_));
    return;
  }
  file_.append(journalFrame(record, number_ + 1));
  ++number_;
}

// The journal becomes a snapshot of the document as it is.
void EditJournal::beginAnew() {
  base_.changes = changes_;
  const JournalBase snapshot = journalSnapshot(state(), base_);
  const std::string bytes = journalStart(snapshot);
  file_.begin(bytes);
  number_ = 0;
  limit_ = std::max(kSmallestLimit, 2 * bytes.size());
  isIncomplete_ = false;
}

void EditJournal::mark(const DocumentSave& save) {
  if (!file_.isOpen() || !isCaughtUp() || !save.holdsStateOf(workspace_.sketch)) return;
  try {
    file_.append(journalFrame(JournalSaveMark{save.url(), save.onDisk().contentHash}, number_ + 1));
    ++number_;
    // The save waits for the disk as well, and must not get there first.
    file_.sync();
  } catch (const FileError&) {
    // Without the mark the next start offers what the file holds already, and no more than that.
    isIncomplete_ = true;
  }
}

void EditJournal::remember() {
  const SketchUndoStack& stack = workspace_.sketch.undoStack;
  drawing_ = workspace_.sketch.drawing;
  name_ = workspace_.document.name;
  undoCount_ = stack.undoSnapshots().size();
  redoCount_ = stack.redoSnapshots().size();
  lastUndo_ = undoCount_ > 0 ? stack.undoSnapshots().back().entities : EntityList();
  lastRedo_ = redoCount_ > 0 ? stack.redoSnapshots().back() : SketchUndoSnapshot();
  drawingWrites_ = workspace_.sketch.drawingWrites();
  undoWrites_ = workspace_.sketch.undoStack.writes();
  nameWrites_ = workspace_.document.name.writes();
}

// An observer changes nothing: the console hears of it once the operation has ended.
void EditJournal::told(const std::string& failure) {
  if (std::exchange(hasTold_, true)) return;
  workspace_.host().scheduler.soon([&messages = workspace_.messages, failure] {
    messages.append("Unsaved changes are not safe from a crash at the moment. " + failure, true, false);
  });
}

JournalState EditJournal::state() const {
  return {workspace_.document.name, workspace_.sketch.drawing, workspace_.sketch.undoStack};
}

// --- What others have left

std::vector<RecoverableJournal> EditJournal::recoverable() const {
  std::vector<RecoverableJournal> offers;
  for (const LeftJournal& journal : leftJournals(workspace_.host().files, folder_, file_.session())) {
    offers.push_back(offerOf(journal));
  }
  return offers;
}

LeftJournal EditJournal::left(const std::string& id) const {
  auto all = leftJournals(workspace_.host().files, folder_, file_.session());
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const LeftJournal& journal) { return journal.session == id; });
  if (found == all.end()) throw UserError("There is no journal " + id + " to recover.");
  return std::move(*found);
}

void EditJournal::recover(const std::string& id) {
  FileSystem& files = workspace_.host().files;
  LeftJournal journal = left(id);
  const JournalBase& base = journal.content.base;
  const Recovered result = recovered(files, journal, workspace_.sketch.drawing);
  const auto& [replayed, file, viewport, hasBase] = result;

  // From here on it is our own journal that holds it.
  const ChangeScope scope = workspace_.change();
  const JournalState& state = replayed.state;
  workspace_.document.adoptUnsaved(
      {state.name, state.drawing, viewport.value_or(workspace_.board.viewport()), {}}, state.undo, file,
      file ? base.file->savedAt : std::nullopt, "Recovered " + state.name);
  followBasis();
  changes_ = journal.content.changes();
  base_.changedAt = journal.content.changedAt();
  bool isKept = false;
  try {
    beginAnew();
    file_.sync();
    isKept = true;
  } catch (const FileError& error) {
    isIncomplete_ = true;
    told(error.what());
  }
  remember();

  Messages& messages = workspace_.messages;
  messages.append("Recovered " + state.name + ": " + changesText(changes_) + " since it was last saved.",
                  false, true);
  if (base.file && !journal.isOnFile) {
    const std::string why = files.exists(base.file->path) ? " has changed since" : " is gone";
    messages.append(quotedName(base.file->path) + why +
                        (hasBase ? ": what was drawn is a new document, not saved yet."
                                 : ": what the journal holds, the entities changed since the last save, is a "
                                   "new document, not saved yet."),
                    false, true);
  }
  if (journal.content.end == JournalContent::End::damaged || !replayed.isComplete) {
    messages.append("The journal is damaged: changes behind these are lost.", true, false);
  }
  if (!isKept) return;  // the old journal stays and is offered again
  try {
    removeLeftJournal(files, folder_, journal);
  } catch (const FileError& error) {
    messages.append(error.what(), true, false);
  }
}

std::function<Drawing()> EditJournal::looking(const std::string& id) const {
  return [&files = workspace_.host().files, folder = folder_, id] {
    return recovered(files, journalToLookAt(files, folder, id), Drawing()).replay.state.drawing;
  };
}

void EditJournal::discard(const std::string& id) {
  removeLeftJournal(workspace_.host().files, folder_, left(id));
}

}  // namespace ostrelon
