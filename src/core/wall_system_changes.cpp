#include "core/wall_system_changes.h"

#include <algorithm>

namespace ostrelon {
namespace {

template <class Systems>
auto findSystem(Systems& systems, const UUID& id) {
  return std::find_if(systems.begin(), systems.end(),
                      [&](const WallSystemSpec& system) { return system.id == id; });
}

void takeBack(const WallSystemChange& change, std::vector<WallSystemSpec>& systems) {
  const auto found = findSystem(systems, (change.before ? *change.before : *change.after).id);
  if (!change.before) {
    if (found != systems.end() && systems.size() > 1) systems.erase(found);
  } else if (!change.after) {
    if (found != systems.end()) return;
    const std::size_t position = std::min(change.position, systems.size());
    systems.insert(systems.begin() + static_cast<std::ptrdiff_t>(position), *change.before);
  } else if (found != systems.end()) {
    const auto field = [&](auto member) {
      if (*change.before.*member != *change.after.*member) *found.*member = *change.before.*member;
    };
    field(&WallSystemSpec::name);
    field(&WallSystemSpec::thickness);
    field(&WallSystemSpec::height);
    field(&WallSystemSpec::assemblyNotes);
  }
}

}  // namespace

std::vector<WallSystemChange> wallSystemChanges(const std::vector<WallSystemSpec>& before,
                                                const std::vector<WallSystemSpec>& after) {
  std::vector<WallSystemChange> changes;
  // Taken back from the last one on: first what was added goes, then what was removed comes in again in the
  // order of its positions.
  for (std::size_t i = before.size(); i > 0; --i) {
    const WallSystemSpec& old = before[i - 1];
    const auto now = findSystem(after, old.id);
    if (now == after.end()) {
      changes.push_back({old, std::nullopt, i - 1});
    } else if (!(*now == old)) {
      changes.push_back({old, *now, i - 1});
    }
  }
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (findSystem(before, after[i].id) == before.end()) changes.push_back({std::nullopt, after[i], i});
  }
  return changes;
}

std::vector<WallSystemChange> takeBackWallSystemChanges(const std::vector<WallSystemChange>& changes,
                                                        std::vector<WallSystemSpec>& systems) {
  const std::vector<WallSystemSpec> before = systems;
  for (auto change = changes.rbegin(); change != changes.rend(); ++change) takeBack(*change, systems);
  return wallSystemChanges(before, systems);
}

}  // namespace ostrelon
