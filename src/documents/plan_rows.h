// The key "plan" of a document file, which is there only when it holds something:
//
//   "plan":{"look":{"clean":true,"fill":true,"weights":true,"dimensions":true},
//           "openings":[…],"rooms":[…],"dividers":[…],"dimensions":[…],"notes":[…],
//           "sheet":{"unitsPerInch":4,"north":30,"project":"Lake House"},
//           "undo":[{"back":1,"plan":{"openings":[…]},"ws":[{"at":0,"before":{"i":…},"after":{"i":…}}]}]}
//
// "look" names what is on. The rows of items are described in documents/plan_item_rows.h. "sheet" has those
// members of `PlanSheet` that say something. "undo" is a twin of the document's list of undo steps, for those
// steps that take back more than entities: "back" counts from 1 for the newest, "plan" is the plan as it was,
// "ws" what the step changed of the wall systems, by their places and rows as under "ws" of the document.
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
