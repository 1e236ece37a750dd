#include "documents/opened_document.h"

#include <algorithm>
#include <utility>

namespace ostrelon {
namespace {

SketchViewport viewportOf(const std::vector<double>& numbers) {
  SketchViewport viewport;
  if (numbers.size() >= 2) viewport.pan = {numbers[0], numbers[1]};
  if (numbers.size() >= 3) viewport.scale = numbers[2];
  return viewport;
}

// The identifier of the active system, where there is any system at all.
UUID activeSystemOr(const UUID& otherwise, const std::vector<WallSystemSpec>& systems, std::size_t active) {
  if (systems.empty()) return otherwise;
  return systems[active < systems.size() ? active : 0].id;
}

OpenedDocument opened(SketchDocumentV2 document, const UUID& activeBefore) {
  OpenedDocument result;
  result.name = std::move(document.name);
  // A file may hold any number; what is no index means the first one.
  const auto active = document.ws.active < 0 ? std::size_t{0} : static_cast<std::size_t>(document.ws.active);
  const UUID activeID = activeSystemOr(activeBefore, document.ws.items, active);
  result.drawing = {std::move(document.e), std::move(document.ws.items), activeID, document.grid,
                    std::move(document.plan)};
  result.viewport = viewportOf(document.vp);
  result.mergedCheckpointIDs = std::move(document.mergedCheckpointIDs);
  if (document.undo) {
    for (EntityList& snapshot : *document.undo) result.undo.push_back({std::move(snapshot)});
    for (std::size_t i = 0; i < document.undoTwins.size(); ++i) {
      result.undo.at(i).twin = std::move(document.undoTwins[i]);
    }
  }
  return result;
}

OpenedDocument opened(SketchDocumentFile document, const UUID& activeBefore) {
  const auto& systems = document.wallSystemSpecs;
  const auto known = std::find_if(systems.begin(), systems.end(), [&](const WallSystemSpec& system) {
    return system.id == document.activeWallSystemSpecID;
  });
  const UUID activeID =
      activeSystemOr(activeBefore, systems, static_cast<std::size_t>(known - systems.begin()));
  OpenedDocument result;
  result.name = std::move(document.documentName);
  result.drawing = {std::move(document.entities), std::move(document.wallSystemSpecs), activeID,
                    document.showGrid};
  result.viewport = document.viewport;
  return result;
}

}  // namespace

OpenedDocument openedDocument(LoadedSketchDocument document, const Drawing& before) {
  return std::visit([&](auto& format) { return opened(std::move(format), before.activeWallSystemSpecID); },
                    document.document);
}

SketchDocumentV2 documentOf(std::string name, const Drawing& drawing, const SketchViewport& viewport,
                            const std::vector<SketchUndoSnapshot>& undo) {
  SketchDocumentV2 document;
  document.name = std::move(name);
  document.grid = drawing.showGrid;
  document.vp = {viewport.pan.x, viewport.pan.y, viewport.scale};
  document.ws.items = drawing.wallSystemSpecs;
  const auto active =
      std::find_if(document.ws.items.begin(), document.ws.items.end(),
                   [&](const WallSystemSpec& system) { return system.id == drawing.activeWallSystemSpecID; });
  if (active != document.ws.items.end()) document.ws.active = active - document.ws.items.begin();
  document.e = drawing.entities;
  document.plan = drawing.plan;
  if (!undo.empty()) {
    document.undo.emplace();
    for (std::size_t index = undo.size() - std::min(undo.size(), kStoredUndoSnapshots); index < undo.size();
         ++index) {
      document.undo->push_back(undo[index].entities);
      document.undoTwins.push_back(undo[index].twin);
    }
  }
  const auto isEmpty = [](const UndoTwin& twin) { return twin.empty(); };
  if (std::all_of(document.undoTwins.begin(), document.undoTwins.end(), isEmpty)) document.undoTwins.clear();
  return document;
}

}  // namespace ostrelon
