// The document file format: one line of JSON in UTF-8. Pure functions from bytes to values and back.
//
//   {"v":2,"name":"Plan","grid":true,"vp":[400,300,4],
//    "ws":{"active":0,"items":[{"i":"5D7A…","n":"W2-INT","t":4.5,"h":96,"a":"2×4 stud wall"}]},
//    "e":[["L","8E11…",0,0,120.5,0],["W","03C2…",0,0,96,0,0]],
//    "undo":[[],[["L","8E11…",0,0,120.5,0]]]}
//
// Rows by their tag: "L" line and "W" wall: from x, from y, to x, to y, a wall then the index of its system;
// "C" circle: centre x, y, radius; "A" arc: centre x, y, radius, start and end angle in radians; "R"
// rectangle: origin x, y, width, height; "P" polygon: one array of x1, y1, x2, y2, … A document that has a
// plan has it behind these, under "plan" (plan_rows.h). Keys may come in any order, unknown keys and further
// elements of a row are passed over, and of a key that is given twice the last one counts.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "documents/sketch_document.h"
#include "platform/user_error.h"

namespace ostrelon {

/// A document that cannot be read or written; the text is one sentence that says what is wrong and where.
class DocumentFormatError : public UserError {
 public:
  using UserError::UserError;
};

namespace SketchDocumentIO {

/// Reads a document of format 2 or 1. Throws `DocumentFormatError`. The bytes are handed over since
/// the reader works in their own storage.
LoadedSketchDocument decodeDocument(std::string bytes);

/// Takes the next piece of a text that is being written.
using Sink = std::function<void(std::string_view bytes)>;

/// How large a file may become, bytes.
struct FileLimits {
  /// Undo snapshots that would make it larger are left out, the oldest first.
  std::uint64_t withUndo = std::uint64_t{256} << 20;
  /// The longest text that the reader takes. One that would be longer fails the write.
  std::uint64_t whole = (std::uint64_t{4} << 30) - 64;
};

/// Writes the text piece by piece. Coordinates, angles and wall sizes are narrowed to the nearest
/// 32-bit value and written as the shortest text that reads back to it. A number that is not finite
/// then fails the write with `DocumentFormatError`; in an undo snapshot it has that snapshot left out
/// with those older than it.
void encodeDocument(const SketchDocumentV2& document, const Sink& sink, const FileLimits& limits = {});
std::string encodeDocument(const SketchDocumentV2& document);

}  // namespace SketchDocumentIO
}  // namespace ostrelon
