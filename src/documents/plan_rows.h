// The key "plan" of a document file, which is there only when it holds something:
//
//   "plan":{"look":{"clean":true,"fill":true,"weights":true},
//           "openings":[["D","5D7A…","8E11…",3.5,3,"R","O"],["W","03C2…","8E11…",9,4]],
//           "undo":[{"back":1,"plan":{"openings":[…]},"ws":[{"at":0,"before":{"i":…},"after":{"i":…}}]}]}
//
// "look" names what is on. An opening is a row: its kind, "D" door, "W" window or "O" opening; its identifier
// and its wall's; the distance of its near jamb from the wall's start and its width, 64-bit numbers of
// sketch units; of a door whose leaf does not hang left and swing in, "L" or "R" and "I" or "O". "undo" is a
// twin of the document's list of undo steps, for those steps that take back more than entities: "back" counts
// from 1 for the newest, "plan" is the plan as it was, "ws" what the step changed of the wall systems, by
// their places and rows as under "ws" of the document.
//
// Unknown members of the plan are kept and written again, so that a document survives a version that knows
// less; other unknown keys and further elements of a row are passed over.
#pragma once

#include <string>
#include <vector>

#include "core/undo_stack.h"
#include "documents/json_reading.h"

namespace ostrelon {

/// A wall system's object, as under "ws" and in the plan's undo steps.
WallSystemSpec readWallSystem(JsonReading& reading, JsonReading::Value& value, const JsonPlace& place);
/// The wall system must be writable.
std::string wallSystemText(const WallSystemSpec& system);
bool isWritable(const WallSystemSpec& system);

struct ReadPlan {
  Plan plan;
  /// The twins by their "back", the newest step's at 0; as long as the largest of these.
  std::vector<UndoTwin> twins;
};
ReadPlan readPlan(JsonReading& reading, JsonReading::Value& value, const JsonPlace& place);

/// Whether a file can hold all its numbers.
bool isWritable(const Plan& plan);
bool isWritable(const UndoTwin& twin);
/// The value of the key; empty when there is nothing to write. `twins`: oldest first, all writable.
std::string planText(const Plan& plan, const std::vector<UndoTwin>& twins);

}  // namespace ostrelon
