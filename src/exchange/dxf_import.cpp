#include "exchange/dxf_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

#include "geometry/entity_geometry.h"
#include "geometry/wall_system_edits.h"
#include "interaction/board.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

std::optional<SketchBox> boundsOf(const std::vector<SketchEntity>& entities) {
  std::optional<SketchBox> bounds;
  for (const SketchEntity& entity : entities) {
    const SketchBox box = entityBounds(entity);
    bounds = bounds ? bounds->united(box) : box;
  }
  return bounds;
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string_view reasonText(DxfReason reason) {
  switch (reason) {
    case DxfReason::drawn:
    case DxfReason::unknownKind:
      return "that cannot be drawn here";
    case DxfReason::tilted:
      return "in a tilted plane";
    case DxfReason::noSize:
      return "of no size";
    case DxfReason::noBlock:
      return "of blocks that are not in the file";
    case DxfReason::ownBlock:
      return "of blocks that hold themselves";
    case DxfReason::tooFar:
      return "too far away to be saved";
    case DxfReason::onPaper:
      return "on paper sheets";
    case DxfReason::invisible:
      return "made invisible";
    case DxfReason::layerOff:
      return "on layers that are off";
    case DxfReason::layerFrozen:
      return "on frozen layers";
    case DxfReason::layerNotTaken:
      return "on layers not taken";
  }
  return {};
}

std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : "; ") + text;
  return result;
}

std::vector<PreparedDxf::Layer> layersOf(const DxfFile& file, const DxfDrawing& drawing,
                                         const DxfImportOptions& options) {
  std::vector<PreparedDxf::Layer> layers;
  for (std::size_t i = 0; i < file.layers.size(); ++i) {
    if (drawing.objectsOnLayer[i] == 0) continue;
    const DxfLayer& layer = file.layers[i];
    const bool isHidden = layer.isOff || layer.isFrozen;
    const auto isNamed = [&](const std::string& name) { return lowerCased(name) == lowerCased(layer.name); };
    const bool isTaken =
        options.layers ? std::any_of(options.layers->begin(), options.layers->end(), isNamed) : !isHidden;
    layers.push_back({layer.name, drawing.objectsOnLayer[i], isHidden, isTaken});
  }
  return layers;
}

// The walls take the document's systems of the same name and measures, and bring the others with them.
void addWithSystems(Sketch& sketch, DxfDrawing& drawing) {
  Drawing known = sketch.drawing;
  std::vector<WallSystemSpec>& systems = known.wallSystemSpecs;
  std::unordered_map<UUID, UUID> settled;
  for (WallSystemSpec& system : drawing.systems) {
    const auto same = std::find_if(systems.begin(), systems.end(), [&](const WallSystemSpec& one) {
      return lowerCased(one.name) == lowerCased(system.name) && one.thickness == system.thickness &&
             one.height == system.height;
    });
    if (same != systems.end()) {
      settled.emplace(system.id, same->id);
    } else {
      system.name = freeWallSystemName(known, system.name);
      systems.push_back(system);
    }
  }
  for (SketchEntity& entity : drawing.entities) {
    auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr) continue;
    if (const auto other = settled.find(wall->systemSpecID); other != settled.end()) {
      wall->systemSpecID = other->second;
    }
  }
  const bool addsSystems = systems.size() > sketch.drawing->wallSystemSpecs.size();
  const EntityList next = sketch.prepared(drawing.entities.size(), [&, list = sketch.entities()]() mutable {
    list.append(std::exchange(drawing.entities, {}));
    return list;
  });
  sketch.edit(
      [&](Drawing& edited) {
        edited.entities = next;
        if (addsSystems) edited.wallSystemSpecs = std::move(systems);
        if (drawing.openings.empty()) return;
        std::vector<Opening> openings = edited.plan.openings.list();
        openings.insert(openings.end(), drawing.openings.begin(), drawing.openings.end());
        edited.plan.openings = std::move(openings);
      },
      addsSystems ? UndoStep::withWallSystems : UndoStep::own);
}

}  // namespace

PreparedDxf prepareDxf(const DxfFile& file, const DxfImportOptions& options) {
  PreparedDxf prepared;
  DxfChoices choices;
  choices.layers = options.layers;
  const auto draw = [&] {
    choices.feetPerUnit = prepared.unit.feet;
    prepared.drawing = drawDxf(file, choices);
    prepared.bounds = boundsOf(prepared.drawing.entities);
  };
  const auto declared = declaredDxfUnit(file);
  prepared.unit = options.unit.value_or(declared.value_or(kDxfFeet));
  prepared.unitSource = options.unit ? DxfUnitSource::given
                        : declared   ? DxfUnitSource::declared
                                     : DxfUnitSource::likely;
  draw();
  if (prepared.unitSource == DxfUnitSource::likely && prepared.bounds) {
    const SketchSize extent{prepared.bounds->width(), prepared.bounds->height()};
    prepared.unit = likelyDxfUnit(extent, file.isMetric);
    if (prepared.unit != kDxfFeet) draw();
  }
  for (const SketchEntity& entity : prepared.drawing.entities) ++prepared.counts[entityKindName(entity)];
  prepared.layers = layersOf(file, prepared.drawing, options);
  prepared.lostPlaces = file.lostPlaces;
  prepared.losses = file.losses;
  if (options.toOrigin && prepared.bounds) {
    const SketchBox box = *prepared.bounds;
    prepared.moved = {-std::floor(box.minX), -std::floor(box.minY)};
    for (SketchEntity& entity : prepared.drawing.entities)
      entity = translatedEntity(entity, prepared.moved.x, prepared.moved.y);
    prepared.bounds = boundsOf(prepared.drawing.entities);
  }
  return prepared;
}

std::vector<std::string> leftOutTexts(const DxfDrawing& drawing) {
  std::vector<std::string> texts;
  for (auto at = drawing.leftOut.begin(); at != drawing.leftOut.end();) {
    const DxfReason reason = at->first.first;
    std::string kinds;
    std::size_t sum = 0;
    for (; at != drawing.leftOut.end() && at->first.first == reason; ++at) {
      kinds += fmt::format("{}{} {}", kinds.empty() ? "" : ", ", at->first.second, at->second);
      sum += at->second;
    }
    texts.push_back(fmt::format("{} {}: {}", counted(sum, "object", "objects"), reasonText(reason), kinds));
  }
  return texts;
}

std::string dxfImportSentence(const PreparedDxf& prepared, const std::string& fileName) {
  std::string sentence = fmt::format(
      "Imported {} from \"{}\"", counted(prepared.drawing.entities.size(), "entity", "entities"), fileName);
  sentence += prepared.unitSource == DxfUnitSource::likely
                  ? fmt::format(", which names no unit and was taken to be in {}", prepared.unit.name)
                  : fmt::format(" in {}", prepared.unit.name);
  const auto leftOut = leftOutTexts(prepared.drawing);
  if (!leftOut.empty()) sentence += "; left out " + joined(leftOut);
  return sentence + ".";
}

void importDxf(Board& board, PreparedDxf& prepared, const std::string& fileName) {
  if (prepared.drawing.entities.empty()) {
    const auto leftOut = leftOutTexts(prepared.drawing);
    throw DxfError(leftOut.empty() ? "There is nothing in the file."
                                   : "There is nothing in the file but " + joined(leftOut) + ".");
  }
  std::vector<std::string> lines{dxfImportSentence(prepared, fileName)};
  if (prepared.moved != SketchPoint{}) {
    lines.push_back(
        fmt::format("Moved by ({:g}, {:g}) feet to the origin.", prepared.moved.x, prepared.moved.y));
  } else if (liesFarFromOrigin(*prepared.bounds)) {
    lines.push_back(farFromOriginText(*prepared.bounds) + "; import it moved to the origin.");
  }
  if (prepared.lostPlaces > 0) {
    lines.push_back(fmt::format("{} could not be read:",
                                counted(prepared.lostPlaces, "damaged place", "damaged places")));
    lines.insert(lines.end(), prepared.losses.begin(), prepared.losses.end());
  }
  const bool wasEmpty = board.sketch().entities().empty();
  addWithSystems(board.sketch(), prepared.drawing);
  for (std::string& line : lines) board.messages().append(std::move(line), false, true);
  if (wasEmpty) board.zoomToFit(board.view->canvasSize);
}

}  // namespace ostrelon
