// The session of the open document: its file and name, what is known of the file on disk, its history, and
// the operations that save and open it. The drawing itself belongs to the sketch.
//
// What must be written before it is shown (the switch of a branch) is prepared as a value, written, and only
// then put in the place of the open document, so that nothing has to be undone in memory. Failures are thrown
// as `UserError`, and have changed nothing then, unless an operation says otherwise.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/messages.h"
#include "core/sketch.h"
#include "core/sketch_viewport.h"
#include "documents/document_history_state.h"
#include "documents/document_on_disk.h"
#include "documents/document_paths.h"
#include "documents/kept_drawings.h"
#include "platform/date.h"
#include "platform/host.h"

namespace ostrelon {

class DocumentReading;        // documents/document_reading.h
class DocumentSave;           // documents/document_save.h
struct Replacement;           // documents/drawing_loss.h
struct LoadedSketchDocument;  // documents/sketch_document.h
struct OpenedDocument;        // documents/opened_document.h
struct SketchDocumentV2;      // documents/sketch_document.h

/// Where the document is shown: the session asks it for the view that a file keeps, and notifies it when
/// another document has taken the place of the open one.
class DocumentStage {
 public:
  virtual ~DocumentStage() = default;
  virtual SketchViewport viewport() const = 0;
  /// A document has been read, with its own view.
  virtual void documentOpened(const SketchViewport& viewport) = 0;
  /// A new, empty document has been begun.
  virtual void documentBegun() = 0;
};

/// What an operation would destroy cannot be kept, and so it has done nothing.
class DrawingNotKeptError : public UserError {
 public:
  using UserError::UserError;
};

class DocumentSession {
 public:
  /// All of them must outlive the object.
  DocumentSession(ChangeTracker& tracker, Sketch& sketch, Messages& messages, DocumentStage& stage,
                  Host host);
  DocumentSession(const DocumentSession&) = delete;
  DocumentSession& operator=(const DocumentSession&) = delete;

 private:
  ChangeTracker& tracker_;
  template <class T>
  using Field = Observable<T, DocumentSession>;

 public:
  Field<std::string> name{tracker_, kUntitledName};
  Field<std::optional<FilePath>> fileURL{tracker_};
  Field<std::optional<Date>> lastSavedAt{tracker_};
  Field<DocumentHistoryState> history{tracker_};
  /// A panel that asks where to save is up; auto-save waits meanwhile.
  Field<bool> isSaveDialogActive{tracker_};

  Sketch& sketch() const { return sketch_; }
  Messages& messages() const { return messages_; }
  const Host& host() const { return host_; }
  bool isDirty() const { return sketch_.isDirty; }
  /// What was last read from or written to a document file; absent before the first time.
  const std::optional<DocumentOnDisk>& onDisk() const { return onDisk_; }
  [[nodiscard]] ChangeScope change() const { return ChangeScope(tracker_); }
  /// The drawing that the changes since go out from: as it was begun, opened or last saved.
  const Drawing& basis() const { return basis_; }
  /// How often there has been another basis.
  std::uint64_t basisNumber() const { return basisNumber_; }
  /// Called when a save of this document has been written and is about to take its file's place.
  void setSaveHook(std::function<void(const DocumentSave&)> aboutToSave) {
    aboutToSave_ = std::move(aboutToSave);
  }

  // --- The document as a whole (document_session.cpp)

  // Each keeps what it replaces and what is nowhere else, and throws `DrawingNotKeptError` where that fails.

  /// An empty drawing with the present wall systems. Reports "New document."
  void begin();
  SketchDocumentV2 makeDocument(bool includeUndo) const;
  /// Puts a document that was read in the place of the open one. The file stays as it is.
  void adopt(LoadedSketchDocument document);
  /// Puts a document in the place of the open one that its file does not hold yet: it has unsaved changes.
  /// `file`: its file as it lies on the disk; without one it is a new document. `reason`: "Recovered Plan"
  void adoptUnsaved(OpenedDocument document, SketchUndoStack undo, std::optional<DocumentOnDisk> file,
                    std::optional<Date> savedAt, const std::string& reason);
  void setSaveDialogActive(bool active) { isSaveDialogActive = active; }

  // --- The file (document_session.cpp). What is replaced is kept, as above.

  /// The file becomes the one of the document.
  void save(const FilePath& url);
  /// `reason`: what the opening is, done; "Opened Plan" where none is given.
  void open(const FilePath& url, const std::string& reason = {});
  /// The second half of a save whose file has been written: moves it into its place. The document is
  /// clean then, unless it has changed since the save was begun.
  void finishSave(DocumentSave& save);
  /// The second half of an opening whose file has been read: the document takes the place of this one. Where
  /// it throws, it can be called again.
  void finishOpening(DocumentReading& reading, const std::string& reason = {});

  // --- Kept drawings (kept_operations.cpp)

  /// From now on, what would be replaced and is nowhere else is kept there. `kept` is called when it is.
  void keepDrawingsIn(KeptDrawings store, std::function<void()> kept);
  /// Keeps what the operation is about to destroy.
  void keepWhatIsLost(const Replacement& replacement);
  /// Runs the work with nothing being kept, since the user has agreed to that.
  void withoutKeeping(const std::function<void()>& work);
  /// Where they are kept; absent where nothing is.
  const std::optional<KeptDrawings>& keptIn() const { return kept_; }
  /// The newest first; none where nothing is kept.
  std::vector<KeptDrawing> keptDrawings() const;
  /// Its drawing takes the place of the open one as one undo step, wall systems included.
  void restoreKeptDrawing(const std::string& id);
  /// As a new document that is not saved yet, in the place of the open one.
  void openKeptDrawing(const std::string& id);
  void deleteKeptDrawing(const std::string& id);
  /// Of one of them, to be looked at.
  Drawing keptDrawing(const std::string& id) const;

  // --- History (history_operations.cpp)

  /// Reads the history of the document's folder. A store that cannot be read shows as an empty one.
  void refreshHistory();
  /// Saves the document, then a checkpoint of it on the current branch. Throws `documentMustBeSaved` for one
  /// without a file; where the checkpoint fails, the document has been saved all the same.
  DocumentCheckpoint saveCheckpoint(const std::optional<std::string>& message = std::nullopt);
  /// A branch that starts at this checkpoint, else at the head of the current branch. The current branch
  /// stays. Throws where there is no such checkpoint.
  DocumentHistoryBranch createBranch(const std::string& name,
                                     std::optional<std::string> sourceCheckpointID = std::nullopt);
  /// The head of the branch becomes the document, and its file is written. Throws for unsaved changes, an
  /// unknown branch, and one without a checkpoint; nothing happens for the current one.
  DocumentHistoryBranch switchBranch(const std::string& nameOrID);
  /// The name of the document whose snapshot the branch holds last, where that is another one than this.
  std::optional<std::string> otherDocumentAtHead(const std::string& nameOrID) const;
  /// Branches and checkpoints as the console lists them, or the sentence that says why there are none.
  std::string historyText() const;

  // --- Merging (history_operations.cpp); what to merge is found in documents/named_drawing.h

  /// Puts a merged drawing in the place of the open one, as one undo step. `checkpointID`: what was merged.
  void takeMerged(const Drawing& merged, const std::optional<std::string>& checkpointID);
  /// The checkpoints that were merged into the drawing since the last one of its branch, unless undone.
  std::vector<std::string> mergedCheckpoints() const;

  /// The user's Documents folder, from which names of other documents lead.
  const FilePath& documentsFolder() const { return documentsFolder_; }
  void setDocumentsFolder(FilePath folder) { documentsFolder_ = std::move(folder); }

 private:
  struct UnrecordedMerge {
    std::string checkpointID;
    EntityList merged;  // with a root of its own, by which it is known among the undo steps
  };

  void adopt(OpenedDocument document);
  const KeptDrawings& keptStore() const;
  /// Writes the head of a branch as the document, and the branch as the current one, or neither.
  void writeSwitched(const FilePath& url, const OpenedDocument& next, const DocumentHistoryMetadata& before,
                     const std::string& branchID);
  void setBasis(Drawing drawing);
  /// Moves what was written into its place, and records it as written by this session.
  void putInPlace(DocumentSave& save);
  /// Says, once for a document, what its file cannot tell apart.
  void tellPrecision(const DocumentSave& save);

  Sketch& sketch_;
  Messages& messages_;
  DocumentStage& stage_;
  Host host_;
  std::optional<DocumentOnDisk> onDisk_;
  FilePath documentsFolder_;
  std::vector<UnrecordedMerge> unrecordedMerges_;
  Drawing basis_;
  std::uint64_t basisNumber_ = 0;
  std::function<void(const DocumentSave&)> aboutToSave_;
  std::optional<KeptDrawings> kept_;
  std::function<void()> hasKept_;
  bool mayLose_ = false;
  bool hasToldDistance_ = false;  // that the open document lies too far away
  std::size_t toldMerged_ = 0;    // of how many of its entities it was said that their ends fall together
};

}  // namespace ostrelon
