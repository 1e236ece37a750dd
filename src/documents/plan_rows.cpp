#include "documents/plan_rows.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "documents/number_text.h"
#include "documents/plan_item_rows.h"

namespace ostrelon {
namespace {

using Value = JsonReading::Value;

bool isWritable32(double value) { return std::isfinite(static_cast<float>(value)); }

// --- Reading

PlanLook readLook(JsonReading& reading, Value& value, const JsonPlace& place) {
  PlanLook look;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "clean") {
      look.cleanWalls = reading.boolean(field, here);
    } else if (key == "fill") {
      look.filledWalls = reading.boolean(field, here);
    } else if (key == "weights") {
      look.lineWeights = reading.boolean(field, here);
    } else if (key == "dimensions") {
      look.dimensionStrings = reading.boolean(field, here);
    } else {
      reading.pass(field, here);
    }
  });
  return look;
}

WallSystemChange readSystemChange(JsonReading& reading, Value& value, const JsonPlace& place) {
  WallSystemChange change;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "at") {
      change.position = static_cast<std::size_t>(std::max<std::int64_t>(0, reading.integer(field, here)));
    } else if (key == "before") {
      change.before = readWallSystem(reading, field, here);
    } else if (key == "after") {
      change.after = readWallSystem(reading, field, here);
    } else {
      reading.pass(field, here);
    }
  });
  if (!change.before && !change.after) JsonReading::failMissing(place, "before");
  return change;
}

// Everything of a plan but its undo steps, which `other` reads.
template <class Other>
Plan readPlanMembers(JsonReading& reading, Value& value, const JsonPlace& place, Other other) {
  Plan plan;
  std::vector<std::string> further;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "look") {
      plan.look = readLook(reading, field, here);
    } else if (key == "sheet") {
      plan.sheet = readPlanSheet(reading, field, here);
    } else if (!readPlanItems(reading, key, field, here, plan) && !other(key, field, here)) {
      const std::string name = quotedText(std::string(key));
      const char* const first = JsonReading::start(field);
      reading.pass(field, here);
      // The next token is the comma or the brace behind the value.
      std::string_view text(first, static_cast<std::size_t>(reading.here() - first));
      text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
      further.push_back(name + ":" + std::string(text));
    }
  });
  plan.further = std::move(further);
  return plan;
}

void readUndoStep(JsonReading& reading, Value& value, const JsonPlace& place, std::vector<UndoTwin>& twins) {
  std::optional<std::int64_t> back;
  UndoTwin twin;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "back") {
      back = reading.integer(field, here);
    } else if (key == "plan") {
      const auto none = [](std::string_view, Value&, const JsonPlace&) { return false; };
      twin.plan = readPlanMembers(reading, field, here, none);
    } else if (key == "ws") {
      JsonReading::Elements changes(reading, reading.array(field, here));
      Value change;
      while (changes.next(change)) {
        twin.wallSystems.push_back(readSystemChange(reading, change, here.at(twin.wallSystems.size())));
      }
    } else {
      reading.pass(field, here);
    }
  });
  if (!back) JsonReading::failMissing(place, "back");
  // Steps further back than a file keeps are none of its own.
  if (*back < 1 || *back > static_cast<std::int64_t>(kStoredUndoSnapshots)) return;
  const auto at = static_cast<std::size_t>(*back - 1);
  if (twins.size() <= at) twins.resize(at + 1);
  twins[at] = std::move(twin);
}

// --- Writing

JoinedJson planMembers(const Plan& plan) {
  JoinedJson members;
  JoinedJson look;
  if (plan.look.cleanWalls) look.add("\"clean\":true");
  if (plan.look.filledWalls) look.add("\"fill\":true");
  if (plan.look.lineWeights) look.add("\"weights\":true");
  if (plan.look.dimensionStrings) look.add("\"dimensions\":true");
  if (!look.empty()) members.add("\"look\":" + look.in('{', '}'));
  writePlanItems(plan, [&](std::string_view key, const std::string& rows) {
    members.add(quotedText(std::string(key)) + ":" + rows);
  });
  if (plan.sheet != PlanSheet()) members.add("\"sheet\":" + planSheetText(plan.sheet));
  for (const std::string& member : plan.further) members.add(member);
  return members;
}

std::string twinText(const UndoTwin& twin, std::size_t back) {
  JoinedJson step;
  step.add("\"back\":" + std::to_string(back));
  if (twin.plan) step.add("\"plan\":" + planMembers(*twin.plan).in('{', '}'));
  JoinedJson systems;
  for (const WallSystemChange& change : twin.wallSystems) {
    JoinedJson one;
    one.add("\"at\":" + std::to_string(change.position));
    if (change.before) one.add("\"before\":" + wallSystemText(*change.before));
    if (change.after) one.add("\"after\":" + wallSystemText(*change.after));
    systems.add(one.in('{', '}'));
  }
  if (!systems.empty()) step.add("\"ws\":" + systems.in('[', ']'));
  return step.in('{', '}');
}

}  // namespace

// --- Wall systems

WallSystemSpec readWallSystem(JsonReading& reading, Value& value, const JsonPlace& place) {
  WallSystemSpec system;
  bool hasID = false;
  bool hasName = false;
  bool hasThickness = false;
  bool hasHeight = false;
  bool hasNotes = false;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    if (key == "i") {
      system.id = reading.uuid(field, here);
      hasID = true;
    } else if (key == "n") {
      system.name = reading.text(field, here);
      hasName = true;
    } else if (key == "t") {
      system.thickness = reading.number32(field, here);
      hasThickness = true;
    } else if (key == "h") {
      system.height = reading.number32(field, here);
      hasHeight = true;
    } else if (key == "a") {
      system.assemblyNotes = reading.text(field, here);
      hasNotes = true;
    } else {
      reading.pass(field, here);
    }
  });
  if (!hasID) JsonReading::failMissing(place, "i");
  if (!hasName) JsonReading::failMissing(place, "n");
  if (!hasThickness) JsonReading::failMissing(place, "t");
  if (!hasHeight) JsonReading::failMissing(place, "h");
  if (!hasNotes) JsonReading::failMissing(place, "a");
  return system;
}

std::string wallSystemText(const WallSystemSpec& system) {
  return "{\"i\":\"" + system.id.text() + "\",\"n\":" + quotedText(system.name) +
         ",\"t\":" + number32Text(system.thickness) + ",\"h\":" + number32Text(system.height) +
         ",\"a\":" + quotedText(system.assemblyNotes) + "}";
}

bool isWritable(const WallSystemSpec& system) {
  return isWritable32(system.thickness) && isWritable32(system.height);
}

// --- The plan

ReadPlan readPlan(JsonReading& reading, Value& value, const JsonPlace& place) {
  ReadPlan read;
  read.plan =
      readPlanMembers(reading, value, place, [&](std::string_view key, Value& field, const JsonPlace& here) {
        if (key != "undo") return false;
        JsonReading::Elements steps(reading, reading.array(field, here));
        Value step;
        std::size_t count = 0;
        while (steps.next(step)) readUndoStep(reading, step, here.at(count++), read.twins);
        return true;
      });
  return read;
}

bool isWritable(const Plan& plan) { return arePlanItemsWritable(plan) && isWritable(plan.sheet); }

bool isWritable(const UndoTwin& twin) {
  return (!twin.plan || isWritable(*twin.plan)) &&
         std::all_of(twin.wallSystems.begin(), twin.wallSystems.end(), [](const WallSystemChange& change) {
           return (!change.before || isWritable(*change.before)) &&
                  (!change.after || isWritable(*change.after));
         });
}

std::string planText(const Plan& plan, const std::vector<UndoTwin>& twins) {
  JoinedJson members = planMembers(plan);
  JoinedJson steps;
  for (std::size_t i = 0; i < twins.size(); ++i) {
    if (!twins[i].empty()) steps.add(twinText(twins[i], twins.size() - i));
  }
  if (!steps.empty()) members.add("\"undo\":" + steps.in('[', ']'));
  return members.empty() ? std::string() : members.in('{', '}');
}

}  // namespace ostrelon
