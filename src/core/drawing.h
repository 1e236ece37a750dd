// What a document shows and what is selected in it, as two plain values: a capture is a copy, a
// comparison is `==`, a reset is an assignment.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/entity_list.h"
#include "core/entity_set.h"
#include "core/plan.h"
#include "core/wall_system.h"

namespace ostrelon {

/// The content of a document. Copies share the storage of the entities.
struct Drawing {
  EntityList entities;
  std::vector<WallSystemSpec> wallSystemSpecs = defaultWallSystems();
  UUID activeWallSystemSpecID = wallSystemSpecs.front().id;  ///< may name a system that is gone
  bool showGrid = true;
  Plan plan = {};

  /// The active system, or the first one when it is gone; null only when there is none at all.
  const WallSystemSpec* activeWallSystem() const;
  const WallSystemSpec* wallSystem(const UUID& id) const;
  /// The first system of this name, without regard to case.
  const WallSystemSpec* wallSystem(std::string_view named) const;
  /// The name of a wall's system; absent for other entities and for systems that are gone.
  std::optional<std::string> wallSystemName(const SketchEntity& entity) const;

  friend bool operator==(const Drawing&, const Drawing&) = default;
};

/// The selected entities, by identifier, or in their place one item of the plan.
struct Selection {
  EntitySet ids;
  /// The one that commands for a single entity mean. A marquee that takes nothing leaves it as it was.
  std::optional<UUID> primary;
  /// The inspector is open on the selection.
  bool isInspected = false;
  /// The door, window, … that is selected; no entity is meanwhile.
  std::optional<UUID> planItem;

  static Selection of(const UUID& id) { return {{id}, id, false, {}}; }
  /// No entity is selected.
  bool empty() const { return ids.empty(); }
  /// Neither an entity nor an item of the plan is.
  bool isNothing() const { return ids.empty() && !planItem; }
  friend bool operator==(const Selection&, const Selection&) = default;
};

}  // namespace ostrelon
