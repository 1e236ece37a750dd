// What an operation would destroy: the open drawing or the content of a file, where nothing that stays holds
// the same drawing. The one place that decides this, for all commands.
//
// Drawings are the same when they have the same entities and wall systems, numbers as files hold them; the
// grid, the view and undo steps do not count. What stays is the document's file unless it is written over,
// the head of the current branch, and what takes the place.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/drawing.h"
#include "documents/sketch_document.h"
#include "platform/file_system.h"

namespace ostrelon {

class DocumentSession;  // documents/document_session.h

/// What an operation is about to do.
struct Replacement {
  std::string reason;                        ///< what it is, done: "Opened Plan"
  const Drawing* drawing = nullptr;          ///< what takes the place; null: an empty drawing
  bool replacesDrawing = true;               ///< the open drawing goes
  std::optional<FilePath> writtenFile = {};  ///< the file that is written over
};

struct LostDrawing {
  std::string name;
  std::optional<FilePath> path;
  std::uint64_t entities = 0;
  /// The open drawing, or the bytes of a file as they are.
  std::variant<SketchDocumentV2, std::string> content;
};

/// The same entities and wall systems, whatever their order.
bool isSameDrawing(const Drawing& a, const Drawing& b);

/// Reads what it has to compare with. What cannot be read counts as not there; a written file that cannot be
/// read as a drawing is lost as the bytes it has. Throws `FileError` where those cannot be read either.
std::vector<LostDrawing> lostBy(const DocumentSession& document, const Replacement& replacement);

}  // namespace ostrelon
