// What makes a drawing of lines and walls a building plan: how the walls look, and the doors, windows and
// openings that live in them. Everything is off or empty in a new document. A plain value whose copies share
// their storage: an undo step or a snapshot of it costs nothing that grows with it.
//
// A kind of item that is added here is a record with an identifier, a list of it in `Plan` and `PlanChange`,
// and its rows in documents/plan_rows.h; undo, files, the journal and snapshots then have it. As a member of
// `PlanItem` in core/plan_items.h it can be selected, moved and deleted.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/entity_list.h"
#include "core/shared_list.h"
#include "platform/uuid.h"

namespace ostrelon {

struct PlanLook {
  bool cleanWalls = false;   ///< walls that meet are joined
  bool filledWalls = false;  ///< walls are filled
  bool lineWeights = false;  ///< each kind of entity has a pen of its own width
  friend bool operator==(const PlanLook&, const PlanLook&) = default;
};

enum class OpeningKind : std::uint8_t { door, window, opening };
/// Which jamb a door is hung on, as seen from the wall's start to its end: `left` is the jamb nearer the
/// start.
enum class DoorHinge : std::uint8_t { left, right };
/// To which side of the wall a door opens, as seen from its start to its end: `in` is to the left.
enum class DoorSwing : std::uint8_t { in, out };

/// The four ways in which a door hangs and swings, one after the other: left and in, right and in, right and
/// out, left and out.
struct DoorHanging {
  DoorHinge hinge = DoorHinge::left;
  DoorSwing swing = DoorSwing::in;
  friend bool operator==(const DoorHanging&, const DoorHanging&) = default;
};
DoorHanging flipped(DoorHanging hanging);

/// A gap in a wall, which stays whole beneath it. The wall may have become a line meanwhile: the opening
/// then waits, unseen, until it is a wall again.
struct Opening {
  UUID id;
  UUID wallID;
  OpeningKind kind = OpeningKind::door;
  double distance = 0;  ///< from the wall's start to the near jamb, sketch units; negative in front of it
  double width = 0;     ///< sketch units
  DoorHinge hinge = DoorHinge::left;
  DoorSwing swing = DoorSwing::in;
  friend bool operator==(const Opening&, const Opening&) = default;
};

struct Plan {
  PlanLook look;
  SharedList<Opening> openings;  ///< in the order of their making
  /// Members of a file that this version does not know, each as it stands there: "rooms":[…]
  SharedList<std::string> further;

  bool empty() const { return *this == Plan(); }
  /// Null for an unknown identifier. Linear.
  const Opening* opening(const UUID& id) const;
  friend bool operator==(const Plan&, const Plan&) = default;
};

// --- Following the walls

/// Where an opening is once its wall has become `after`: as far from the start as it was, or, where the start
/// alone has moved, as far from the end, so that it keeps its place on the ground.
double followedDistance(double distance, const SketchEntity& before, const SketchEntity& after);
/// The openings after an edit of the entities: moved with their walls, and gone with those that are gone.
SharedList<Opening> followedOpenings(const SharedList<Opening>& openings, const EntityList& before,
                                     const EntityList& after);
/// Copies, under identifiers of their own, of the openings of these walls, for walls that are copies of them;
/// `copies`: the wall's identifier, then its copy's.
std::vector<Opening> copiedOpenings(const std::vector<Opening>& openings,
                                    const std::unordered_map<UUID, UUID>& copies);

// --- Differences

/// What makes one plan another; costs what changed.
struct PlanChange {
  PlanLook look;
  ListSplice<Opening> openings;
  ListSplice<std::string> further;
  friend bool operator==(const PlanChange&, const PlanChange&) = default;
};
PlanChange planChange(const Plan& before, const Plan& after);
/// False, with nothing changed, where it does not fit the plan.
bool applyPlanChange(const PlanChange& change, Plan& plan);

// --- Naming

/// "door", "window", "opening".
std::string_view openingKindName(OpeningKind kind);
/// "Door", "Window", "Opening".
std::string_view openingTypeLabel(OpeningKind kind);
/// "left", "right"; "in", "out".
std::string_view hingeName(DoorHinge hinge);
std::string_view swingName(DoorSwing swing);

}  // namespace ostrelon
