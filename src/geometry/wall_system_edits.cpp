#include "geometry/wall_system_edits.h"

#include <algorithm>
#include <cmath>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr double kInchesPerFoot = 12;

// The mark among the further members of the plan, which files, merges and undo carry as they stand.
constexpr std::string_view kConvertedMark = "\"inches\":true";

std::vector<std::string> withConvertedMark(std::vector<std::string> members) {
  members.emplace_back(kConvertedMark);
  return members;
}

bool isSize(double value) { return std::isfinite(value) && value > 0; }

WallSystemResult sizeProblem(const WallSystemSpec& spec) {
  if (!isSize(spec.thickness) || !isSize(spec.height)) return WallSystemProblem::notAboveZero;
  return std::nullopt;
}

std::vector<std::size_t> positionsOfWalls(const EntityList& entities, const UUID& systemID) {
  std::vector<std::size_t> positions;
  std::size_t position = 0;
  for (const SketchEntity& entity : entities) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall != nullptr && wall->systemSpecID == systemID) positions.push_back(position);
    ++position;
  }
  return positions;
}

}  // namespace

std::size_t countWalls(const Sketch& sketch, const UUID& systemID) {
  return positionsOfWalls(sketch.entities(), systemID).size();
}

WallSystemResult nameProblem(const Drawing& drawing, std::string_view name, std::optional<UUID> renamed) {
  if (trimmed(name).empty()) return WallSystemProblem::noName;
  const std::string wanted = lowerCased(trimmed(name));
  for (const WallSystemSpec& spec : drawing.wallSystemSpecs) {
    if (spec.id != renamed && lowerCased(spec.name) == wanted) return WallSystemProblem::nameTaken;
  }
  return std::nullopt;
}

std::string freeWallSystemName(const Drawing& drawing, std::string_view name) {
  std::string free(name);
  for (int number = 2; nameProblem(drawing, free); ++number) {
    free = std::string(name) + "-" + std::to_string(number);
  }
  return free;
}

WallSystemResult addWallSystem(Sketch& sketch, const WallSystemSpec& spec) {
  if (const auto problem = nameProblem(sketch.drawing, spec.name)) return problem;
  if (const auto problem = sizeProblem(spec)) return problem;
  sketch.edit([&](Drawing& drawing) { drawing.wallSystemSpecs.push_back(spec); }, UndoStep::withWallSystems);
  return std::nullopt;
}

WallSystemResult changeWallSystem(Sketch& sketch, const WallSystemSpec& spec) {
  const WallSystemSpec* old = sketch.drawing->wallSystem(spec.id);
  if (old == nullptr) return WallSystemProblem::unknownSystem;
  if (spec.name != old->name) {
    if (const auto problem = nameProblem(sketch.drawing, spec.name, spec.id)) return problem;
  }
  if (spec.thickness != old->thickness || spec.height != old->height) {
    if (const auto problem = sizeProblem(spec)) return problem;
  }
  if (*old == spec) return std::nullopt;
  sketch.edit(
      [&](Drawing& drawing) {
        for (WallSystemSpec& system : drawing.wallSystemSpecs) {
          if (system.id == spec.id) system = spec;
        }
      },
      UndoStep::withWallSystems);
  return std::nullopt;
}

WallSystemResult deleteWallSystem(Sketch& sketch, const UUID& id, std::optional<UUID> successor) {
  const Drawing& present = sketch.drawing;
  if (present.wallSystem(id) == nullptr) return WallSystemProblem::unknownSystem;
  if (successor && (*successor == id || present.wallSystem(*successor) == nullptr)) {
    return WallSystemProblem::unknownSystem;
  }
  const auto walls = positionsOfWalls(sketch.entities(), id);
  if (!walls.empty() && !successor) return WallSystemProblem::inUse;
  if (present.wallSystemSpecs.size() == 1) return WallSystemProblem::lastSystem;

  const auto change = sketch.change();
  sketch.edit(
      [&](Drawing& drawing) {
        std::vector<SketchEntity> moved;
        moved.reserve(walls.size());
        for (const std::size_t position : walls) {
          WallEntity wall = std::get<WallEntity>(drawing.entities[position]);
          wall.systemSpecID = *successor;
          moved.emplace_back(wall);
        }
        drawing.entities.replaceAll(walls, std::move(moved));
        std::erase_if(drawing.wallSystemSpecs, [&](const WallSystemSpec& spec) { return spec.id == id; });
        if (drawing.activeWallSystemSpecID == id) {
          drawing.activeWallSystemSpecID = successor.value_or(drawing.wallSystemSpecs.front().id);
        }
      },
      UndoStep::withWallSystems);
  return std::nullopt;
}

bool areConvertedFromInches(const Drawing& drawing) {
  const auto& members = drawing.plan.further;
  return std::find(members.begin(), members.end(), kConvertedMark) != members.end();
}

WallSystemResult convertWallSystemsFromInches(Sketch& sketch) {
  if (areConvertedFromInches(sketch.drawing)) return WallSystemProblem::alreadyConverted;
  sketch.edit(
      [&](Drawing& drawing) {
        for (WallSystemSpec& spec : drawing.wallSystemSpecs) {
          spec.thickness /= kInchesPerFoot;
          spec.height /= kInchesPerFoot;
        }
        drawing.plan.further = withConvertedMark(drawing.plan.further.list());
      },
      UndoStep::withWallSystems);
  return std::nullopt;
}

}  // namespace ostrelon
