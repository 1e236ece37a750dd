// A document between its file and its fields: what a file holds, in the form of the values that it
// becomes, and the other way round.
#pragma once

#include <string>
#include <vector>

#include "core/drawing.h"
#include "core/sketch_viewport.h"
#include "core/undo_stack.h"
#include "documents/sketch_document.h"

namespace ostrelon {

struct OpenedDocument {
  std::string name;
  Drawing drawing;
  SketchViewport viewport;
  std::vector<SketchUndoSnapshot> undo;  ///< oldest first
  std::vector<std::string> mergedCheckpointIDs = {};
};

/// `before`: the drawing whose place it takes; its active wall system stays where the file holds none.
OpenedDocument openedDocument(LoadedSketchDocument document, const Drawing& before);

/// What a file is to hold. `undo`: the steps, oldest first, of which the last 20 are taken.
SketchDocumentV2 documentOf(std::string name, const Drawing& drawing, const SketchViewport& viewport,
                            const std::vector<SketchUndoSnapshot>& undo = {});

}  // namespace ostrelon
