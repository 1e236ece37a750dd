// What makes a drawing of lines and walls a building plan: how the walls look, the doors, windows and
// openings that live in them, rooms, dimensions and notes, and what the sheet says. Everything is off or
// empty in a new document. A plain value whose copies share their storage: an undo step or a snapshot of it
// costs nothing that grows with it.
//
// A kind of item that is added here is a record in core/plan_records.h, a member of `PlanItem` and
// `ForPlanKinds`, and a list in `Plan` and `forEachPlanList`; undo, files, the journal, comparing, merging
// and snapshots then have it, and the compiler names what else must be said of it.
#pragma once

#include <string>
#include <string_view>
#include <tuple>
#include <variant>
#include <vector>

#include "core/plan_records.h"
#include "core/shared_list.h"

namespace ostrelon {

struct PlanLook {
  bool cleanWalls = false;        ///< walls that meet are joined
  bool filledWalls = false;       ///< walls are filled
  bool lineWeights = false;       ///< each kind of entity has a pen of its own width
  bool dimensionStrings = false;  ///< the outside of the plan is dimensioned
  friend bool operator==(const PlanLook&, const PlanLook&) = default;
};

struct Plan {
  PlanLook look;
  SharedList<Opening> openings;  ///< in the order of their making, as all of them
  /// Members of a file that this version does not know, each as it stands there: "levels":[…]
  SharedList<std::string> further;
  SharedList<RoomName> roomNames;
  SharedList<RoomDivider> roomDividers;
  SharedList<Dimension> dimensions;
  SharedList<Note> notes;
  PlanSheet sheet;

  bool empty() const { return *this == Plan(); }
  /// Null for an unknown identifier. Linear.
  const Opening* opening(const UUID& id) const;
  friend bool operator==(const Plan&, const Plan&) = default;
};

// --- Its items, whatever their kind

using PlanItem = std::variant<Opening, RoomName, RoomDivider, Dimension, Note>;

/// One of something for each kind of item.
template <template <class> class Of>
using ForPlanKinds = std::tuple<Of<Opening>, Of<RoomName>, Of<RoomDivider>, Of<Dimension>, Of<Note>>;

/// Calls `visit(&Plan::openings)`, … for the list of each kind:
///   forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) { … plan.*list … });
template <class Visit>
constexpr void forEachPlanList(Visit&& visit) {
  visit(&Plan::openings);
  visit(&Plan::roomNames);
  visit(&Plan::roomDividers);
  visit(&Plan::dimensions);
  visit(&Plan::notes);
}

// --- Differences

/// What makes one plan another; costs what changed, and the sheet's texts where one of them did.
struct PlanChange {
  PlanLook look;
  ForPlanKinds<ListSplice> items;
  ListSplice<std::string> further;
  std::optional<PlanSheet> sheet;  ///< where it is another
  friend bool operator==(const PlanChange&, const PlanChange&) = default;
};
PlanChange planChange(const Plan& before, const Plan& after);
/// False, with nothing changed, where it does not fit the plan.
bool applyPlanChange(const PlanChange& change, Plan& plan);

}  // namespace ostrelon
