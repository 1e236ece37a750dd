// A document as a file holds it: the values between its bytes and the open document.
//
// Entities are held as lists with shared storage, so that making the value of an open document costs
// nothing that grows with it, and the undo snapshots of a file share with each other whatever rows
// they have in common. Numbers are as the model holds them; writing a file narrows those of entities
// and wall systems to 32 bits, and what was read from a format 2 file is 32-bit values widened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "core/entity_list.h"
#include "core/plan.h"
#include "core/sketch_viewport.h"
#include "core/undo_stack.h"
#include "core/wall_system.h"
#include "platform/uuid.h"

namespace ostrelon {

struct WallSystemsV2 {
  std::int64_t active = 0;  ///< index into `items`; a file may hold any number
  std::vector<WallSystemSpec> items;
  friend bool operator==(const WallSystemsV2&, const WallSystemsV2&) = default;
};

/// Format 2, the one that is written. A wall holds the identifier of its system here, and the index
/// of that system in a file.
struct SketchDocumentV2 {
  std::string name;
  bool grid = true;
  std::vector<double> vp;  ///< pan x, pan y, scale; a file may hold fewer or more numbers
  WallSystemsV2 ws;
  EntityList e;
  std::optional<std::vector<EntityList>> undo;  ///< oldest first; absent when there is none to store
  Plan plan = {};
  /// What the snapshots of `undo` take back beside the entities: as many as these, or none.
  std::vector<UndoTwin> undoTwins = {};
  /// What was merged into the drawing and is recorded by no checkpoint yet; left out of a file where there is
  /// none.
  std::vector<std::string> mergedCheckpointIDs = {};
  friend bool operator==(const SketchDocumentV2&, const SketchDocumentV2&) = default;
};

/// Format 1, which is only read.
struct SketchDocumentFile {
  std::string documentName;
  EntityList entities;
  std::vector<WallSystemSpec> wallSystemSpecs;
  UUID activeWallSystemSpecID;
  SketchViewport viewport;
  bool showGrid = true;
  friend bool operator==(const SketchDocumentFile&, const SketchDocumentFile&) = default;
};

/// The result of a read.
struct LoadedSketchDocument {
  std::variant<SketchDocumentFile, SketchDocumentV2> document;

  void setName(std::string name) {
    std::visit(Overloaded{[&](SketchDocumentFile& file) { file.documentName = std::move(name); },
                          [&](SketchDocumentV2& compact) { compact.name = std::move(name); }},
               document);
  }
  friend bool operator==(const LoadedSketchDocument&, const LoadedSketchDocument&) = default;
};

}  // namespace ostrelon
