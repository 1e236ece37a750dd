// The document as the model holds it, as a file holds it, and on the disk.
#include <algorithm>
#include <utility>

#include "core/sketch_view_model.h"
#include "documents/document_paths.h"
#include "documents/document_reading.h"
#include "documents/document_save.h"
#include "documents/sketch_document.h"

namespace ostrelon {
namespace {

// The common form of both formats, ready for the fields.
struct DocumentFields {
  std::string name;
  EntityList entities;
  std::vector<WallSystemSpec> systems;
  std::optional<UUID> activeSystemID;
  SketchViewport viewport;
  bool showGrid = true;
  std::vector<SketchUndoSnapshot> undo;
};

SketchViewport viewportOf(const std::vector<double>& numbers) {
  SketchViewport viewport;
  if (numbers.size() >= 2) viewport.pan = {numbers[0], numbers[1]};
  if (numbers.size() >= 3) viewport.scale = numbers[2];
  return viewport;
}

std::optional<UUID> firstSystemID(const std::vector<WallSystemSpec>& systems) {
  if (systems.empty()) return std::nullopt;
  return systems.front().id;
}

DocumentFields fieldsOf(SketchDocumentV2 document) {
  DocumentFields fields;
  fields.name = std::move(document.name);
  fields.entities = std::move(document.e);
  fields.activeSystemID = firstSystemID(document.ws.items);
  const std::int64_t active = document.ws.active;
  if (active >= 0 && static_cast<std::uint64_t>(active) < document.ws.items.size()) {
    fields.activeSystemID = document.ws.items[static_cast<std::size_t>(active)].id;
  }
  fields.systems = std::move(document.ws.items);
  fields.viewport = viewportOf(document.vp);
  fields.showGrid = document.grid;
  if (document.undo) {
    for (EntityList& snapshot : *document.undo) fields.undo.push_back({std::move(snapshot)});
  }
  return fields;
}

DocumentFields fieldsOf(SketchDocumentFile document) {
  DocumentFields fields;
  fields.name = std::move(document.documentName);
  fields.entities = std::move(document.entities);
  const bool isKnown =
      std::any_of(document.wallSystemSpecs.begin(), document.wallSystemSpecs.end(),
                  [&](const WallSystemSpec& system) { return system.id == document.activeWallSystemSpecID; });
  fields.activeSystemID = isKnown ? document.activeWallSystemSpecID : firstSystemID(document.wallSystemSpecs);
  fields.systems = std::move(document.wallSystemSpecs);
  fields.viewport = document.viewport;
  fields.showGrid = document.showGrid;
  return fields;
}

}  // namespace

SketchDocumentV2 SketchViewModel::makeDocumentV2(bool includeUndo) const {
  SketchDocumentV2 document;
  document.name = documentName;
  document.grid = showGrid;
  document.vp = {viewport->pan.x, viewport->pan.y, viewport->scale};
  document.ws.items = wallSystemSpecs;
  const auto active =
      std::find_if(document.ws.items.begin(), document.ws.items.end(),
                   [&](const WallSystemSpec& system) { return system.id == activeWallSystemSpecID.get(); });
  if (active != document.ws.items.end()) document.ws.active = active - document.ws.items.begin();
  document.e = entities;
  const std::vector<SketchUndoSnapshot>& undo = undoStack_.undoSnapshots();
  if (includeUndo && !undo.empty()) {
    document.undo.emplace();
    for (std::size_t index = undo.size() - std::min(undo.size(), kStoredUndoSnapshots); index < undo.size();
         ++index) {
      document.undo->push_back(undo[index].entities);
    }
  }
  return document;
}

void SketchViewModel::applyLoadedDocument(LoadedSketchDocument document) {
  DocumentFields fields =
      std::visit([](auto& format) { return fieldsOf(std::move(format)); }, document.document);
  const ChangeScope scope(tracker_);
  documentName = std::move(fields.name);
  entities = std::move(fields.entities);
  wallSystemSpecs = std::move(fields.systems);
  if (fields.activeSystemID) activeWallSystemSpecID = *fields.activeSystemID;
  viewport = fields.viewport;
  showGrid = fields.showGrid;
  selectedEntityIDs = {};
  primarySelectedEntityID = std::nullopt;
  draft = std::nullopt;
  polygonDraft = std::nullopt;
  selectDrag = std::nullopt;
  selectMarquee = std::nullopt;
  hasInitializedViewport = false;
  entityClipboard = {};
  replaceUndoSnapshots(std::move(fields.undo));
}

void SketchViewModel::saveDocumentFile(const std::filesystem::path& url) {
  DocumentSave save(*this, url);
  save.write(host_.files);
  finishDocumentSave(save);
}

void SketchViewModel::finishDocumentSave(DocumentSave& save) {
  try {
    save.commit();
  } catch (...) {
    // The file may be in its place though it could not be made to last; then it is still ours.
    if (host_.files.info(save.url()) == save.onDisk().info) documentOnDisk_ = save.onDisk();
    throw;
  }
  const ChangeScope scope(tracker_);
  documentOnDisk_ = save.onDisk();
  documentFileURL = save.url();
  documentName = documentNameFor(save.url());
  isDocumentDirty = !save.holdsStateOf(*this);
  lastSavedAt = host_.scheduler.now();
}

void SketchViewModel::openDocumentFile(const std::filesystem::path& url) {
  DocumentReading reading(url);
  reading.read(host_.files);
  finishDocumentOpening(reading);
}

void SketchViewModel::finishDocumentOpening(DocumentReading& reading) {
  const ChangeScope scope(tracker_);
  applyLoadedDocument(reading.take());
  documentOnDisk_ = reading.onDisk();
  documentFileURL = reading.onDisk().path;
  isDocumentDirty = false;
  lastSavedAt = host_.scheduler.now();
}

void SketchViewModel::setSaveDialogActive(bool active) { isSaveDialogActive = active; }

}  // namespace ostrelon
