// Building the object, observation, and finding entities by their identifiers.
#include "core/sketch_view_model.h"

#include <cassert>

namespace ostrelon {

SketchViewModel::SketchViewModel(Host host) : host_(host) {
  wallSystemSpecs = defaultWallSystems();
  activeWallSystemSpecID = wallSystemSpecs->front().id;
  appendConsoleLine("Ostrelon console ready.", false, true);
  appendConsoleLine("Type help for commands.", false, true);
  tracker_.setClosingHook([this] { assert(undoCheckpointSuppressionDepth_ >= 0); });
}

SketchViewModel::~SketchViewModel() = default;

Subscription SketchViewModel::observe(FieldMask fields, std::function<void(const SketchChange&)> changed) {
  return tracker_.observe(fields, [this, changed = std::move(changed)](FieldMask mask) {
    changed(SketchChange{mask, tracker_.revision()});
  });
}

void SketchViewModel::performAsOneChange(const std::function<void()>& operations) {
  const ChangeScope scope(tracker_);
  operations();
}

const EntityIndex& SketchViewModel::index() const {
  index_.update(entities);
  return index_;
}

const SketchEntity* SketchViewModel::entity(const UUID& id) const { return index().find(id); }

std::optional<std::size_t> SketchViewModel::entityIndex(const UUID& id) const {
  return index().positionOf(id);
}

std::optional<std::string> SketchViewModel::entityLabelText(const UUID& id) const {
  const auto index = entityIndex(id);
  if (!index) return std::nullopt;
  const SketchEntity& found = entities.get()[*index];
  return entityLabel(found, static_cast<int>(*index) + 1, wallSystemName(found));
}

std::optional<std::string> SketchViewModel::wallSystemName(const SketchEntity& entity) const {
  const auto* wall = std::get_if<WallEntity>(&entity);
  if (wall == nullptr) return std::nullopt;
  const WallSystemSpec* spec = wallSystemSpec(wall->systemSpecID);
  if (spec == nullptr) return std::nullopt;
  return spec->name;
}

}  // namespace ostrelon
