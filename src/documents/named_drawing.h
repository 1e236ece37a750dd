// Other drawings that a document can be compared with, by a name that a user gives, and merging one of them
// into the open document.
//
// A name is that of a branch, then the beginning of a checkpoint's identifier, then "kept" and the number of
// a kept drawing, then the path of a document from the Documents folder, with or without its extension.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/drawing.h"
#include "documents/document_session.h"
#include "documents/merge.h"

namespace ostrelon {

/// A drawing that is known where it is, and still to be read.
struct DrawingSource {
  std::string name;                         ///< as of a `NamedDrawing`
  std::optional<std::string> checkpointID;  ///< of a branch: its head
  bool isLarge = false;                     ///< reading it takes long enough to be noticed
  std::function<Drawing()> read;            ///< on any thread. Throws `UserError`
  std::string title = name;                 ///< as windows call it: a checkpoint by its message
};

struct NamedDrawing {
  std::string name;  ///< as messages call it: "branch main", "cp-1f…", "Plan.ostrel"
  Drawing drawing;
  std::optional<std::string> checkpointID;  ///< of a branch: its head
  std::string title = name;                 ///< as windows call it: a checkpoint by its message
};

/// Where names lead to from a document. Values, so that drawings can be read away from the main thread.
struct NamedPlaces {
  FileSystem* files = nullptr;
  std::optional<FilePath> document;  ///< its file
  FilePath documentsFolder;
  std::optional<KeptDrawings> kept;
};
NamedPlaces namedPlaces(const DocumentSession& document);

/// Finds it, to be read later. Throws `UserError` where the name fits several checkpoints or nothing.
DrawingSource drawingSource(const NamedPlaces& places, std::string_view name);
DrawingSource drawingSource(const DocumentSession& document, std::string_view name);
/// A document file by its path.
DrawingSource fileDrawingSource(FileSystem& files, const FilePath& path);
/// A kept drawing.
DrawingSource keptDrawingSource(const KeptDrawings& store, const KeptDrawing& kept);

/// Reads it. Throws `UserError`.
NamedDrawing namedDrawing(const DrawingSource& source);
NamedDrawing namedDrawing(const DocumentSession& document, std::string_view name);

/// The content of a document file, read whatever its name ends in. Throws `UserError`.
Drawing drawingOfFile(FileSystem& files, const FilePath& path);

/// The nearest drawing that ours and theirs have both come from, if the document's history has one.
/// `merged`: the checkpoints that were merged into ours and are not recorded yet. Throws `UserError`.
std::optional<Drawing> commonAncestor(const NamedPlaces& places, const Drawing& ours,
                                      std::vector<std::string> merged, const NamedDrawing& theirs);

struct MergeOutcome {
  /// From our drawing before to the merged one; where conflicts are unsettled, what would be taken.
  DrawingDifference taken;
  std::vector<MergeConflict> conflicts;
  /// The drawing has been changed, as one undo step; of wall systems there is no undo.
  bool isDone = false;
};

/// Merges into the open drawing, from the nearest common ancestor in the document's history, if there is one.
/// With conflicts and no choice nothing is changed. A checkpoint that was merged is recorded with the next
/// one that is saved. Throws `UserError`, and has changed nothing then.
MergeOutcome mergeIntoDocument(DocumentSession& document, const NamedDrawing& theirs,
                               std::optional<MergeChoice> choice);

}  // namespace ostrelon
