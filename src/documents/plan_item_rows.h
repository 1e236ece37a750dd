// The rows in which a document file holds the items of a plan: a list for each kind, under a key of its own.
//
//   "openings":[["D","5D7A…","8E11…",3.5,3,"R","O"],["W","03C2…","8E11…",9,4]],
//   "rooms":[["77F0…",12,4.5,"Bath",0,0]],
//   "dividers":[["90AA…",12,0,12,9]],
//   "dimensions":[["1C2D…",[0,0,"start","8E11…"],[42,0,"end","8E11…"],"aligned",-3]],
//   "notes":[["4B5A…",3,7,"Verify on site",[1,2]]]
//
// An opening: its kind, "D" door, "W" window or "O" opening; its identifier and its wall's; the distance of
// its near jamb from the wall's start and its width; of a door whose leaf does not hang left and swing in,
// "L" or "R" and "I" or "O". The others are their members in the order of their records: identifiers, x and y
// of a point (of one that may be missing, an array or null), texts, names of cases; of the end of a
// dimension, an array. What ends a row and is as in an empty record, identifier and points aside, is left
// out. Numbers are 64-bit, of sketch units. Further elements of a row are passed over.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/plan.h"
#include "documents/json_reading.h"

namespace ostrelon {

/// Takes over the list of the kind that has this key; false for a key of none.
bool readPlanItems(JsonReading& reading, std::string_view key, JsonReading::Value& value,
                   const JsonPlace& place, Plan& plan);
/// Calls `put(key, text of the list)` for each kind of which there are some. All must be writable.
void writePlanItems(const Plan& plan, const std::function<void(std::string_view, const std::string&)>& put);
/// Whether a file can hold all their numbers.
bool arePlanItemsWritable(const Plan& plan);

/// The sheet as an object of those members that are not as in an empty one.
PlanSheet readPlanSheet(JsonReading& reading, JsonReading::Value& value, const JsonPlace& place);
std::string planSheetText(const PlanSheet& sheet);
bool isWritable(const PlanSheet& sheet);

/// The members of an object or the elements of an array, in the order in which they come.
class JoinedJson {
 public:
  void add(const std::string& text) { text_ += (text_.empty() ? "" : ",") + text; }
  bool empty() const { return text_.empty(); }
  /// Nothing around them.
  const std::string& inner() const { return text_; }
  std::string in(char open, char close) const { return open + text_ + close; }

 private:
  std::string text_;
};

}  // namespace ostrelon
