// What is placed in a plan, a plain record for each kind. Positions and lengths are in sketch units, which
// are feet.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/record_fields.h"
#include "core/sketch_point.h"
#include "platform/uuid.h"

namespace ostrelon {

// --- Doors, windows and openings

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
  double distance = 0;  ///< from the wall's start to the near jamb; negative in front of it
  double width = 0;
  DoorHinge hinge = DoorHinge::left;
  DoorSwing swing = DoorSwing::in;
  friend bool operator==(const Opening&, const Opening&) = default;
};

// --- Rooms

/// A name for the room around a place. The room itself is worked out from the walls.
struct RoomName {
  UUID id;
  SketchPoint place;
  std::string name;
  SketchPoint labelOffset;  ///< by hand, from where the label would stand
  friend bool operator==(const RoomName&, const RoomName&) = default;
  static constexpr auto fields() {
    return std::tuple(RecordField{"id", &RoomName::id}, RecordField{"place", &RoomName::place},
                      RecordField{"name", &RoomName::name},
                      RecordField{"labelOffset", &RoomName::labelOffset});
  }
};

/// Parts an open plan for rooms alone.
struct RoomDivider {
  UUID id;
  SketchPoint start;
  SketchPoint end;
  friend bool operator==(const RoomDivider&, const RoomDivider&) = default;
  static constexpr auto fields() {
    return std::tuple(RecordField{"id", &RoomDivider::id}, RecordField{"start", &RoomDivider::start},
                      RecordField{"end", &RoomDivider::end});
  }
};

// --- Dimensions

enum class DimensionDirection : std::uint8_t { aligned, horizontal, vertical };
/// What of an entity, or of an opening, the end of a dimension holds on to. Left and right are the faces of a
/// wall as seen from its start to its end.
enum class AnchorKind : std::uint8_t {
  none,
  start,
  end,
  center,
  corner,
  startLeft,
  startRight,
  endLeft,
  endRight,
  jambNear,
  jambFar
};

struct DimensionEnd {
  SketchPoint point;  ///< where it is, or was last
  AnchorKind anchor = AnchorKind::none;
  UUID entityID;             ///< the entity or opening; of no meaning for an end that holds on to nothing
  std::uint32_t corner = 0;  ///< of a rectangle or polygon, from 0
  bool lost = false;         ///< what it held on to has been removed
  friend bool operator==(const DimensionEnd&, const DimensionEnd&) = default;
  static constexpr auto fields() {
    return std::tuple(RecordField{"point", &DimensionEnd::point},
                      RecordField{"anchor", &DimensionEnd::anchor},
                      RecordField{"entityID", &DimensionEnd::entityID},
                      RecordField{"corner", &DimensionEnd::corner}, RecordField{"lost", &DimensionEnd::lost});
  }
};

struct Dimension {
  UUID id;
  DimensionEnd from;
  DimensionEnd to;
  DimensionDirection direction = DimensionDirection::aligned;
  double offset = 0;  ///< of its line from `from`, positive to the left of from → to
  friend bool operator==(const Dimension&, const Dimension&) = default;
  static constexpr auto fields() {
    return std::tuple(RecordField{"id", &Dimension::id}, RecordField{"from", &Dimension::from},
                      RecordField{"to", &Dimension::to}, RecordField{"direction", &Dimension::direction},
                      RecordField{"offset", &Dimension::offset});
  }
};

/// The direction in which it measures, of length one: along the ends, or along x or y towards `to`. Along x
/// for ends that coincide in it.
SketchPoint dimensionAxis(const Dimension& dimension);
/// What it measures, never negative.
double measuredLength(const Dimension& dimension);

// --- Notes

struct Note {
  UUID id;
  SketchPoint place;
  std::string text;                   ///< lines are parted by \n
  std::optional<SketchPoint> target;  ///< where its leader points to
  friend bool operator==(const Note&, const Note&) = default;
  static constexpr auto fields() {
    return std::tuple(RecordField{"id", &Note::id}, RecordField{"place", &Note::place},
                      RecordField{"text", &Note::text}, RecordField{"target", &Note::target});
  }
};

// --- The sheet

/// What the paper around the plan says.
struct PlanSheet {
  double unitsPerInch = 0;  ///< sketch units to an inch of paper, the drawing scale; 0 where it is not said
  std::optional<double> north;  ///< degrees from +y, clockwise
  std::string project;
  std::string sheet;
  std::string client;
  std::string address;
  std::string date;
  std::string by;
  std::string revision;
  friend bool operator==(const PlanSheet&, const PlanSheet&) = default;
  static constexpr auto fields() {
    return std::tuple(RecordField{"unitsPerInch", &PlanSheet::unitsPerInch},
                      RecordField{"north", &PlanSheet::north}, RecordField{"project", &PlanSheet::project},
                      RecordField{"sheet", &PlanSheet::sheet}, RecordField{"client", &PlanSheet::client},
                      RecordField{"address", &PlanSheet::address}, RecordField{"date", &PlanSheet::date},
                      RecordField{"by", &PlanSheet::by}, RecordField{"revision", &PlanSheet::revision});
  }
};

// --- Naming

/// "door", "window", "opening".
std::string_view openingKindName(OpeningKind kind);
/// "Door", "Window", "Opening".
std::string_view openingTypeLabel(OpeningKind kind);
/// "left", "right"; "in", "out".
std::string_view hingeName(DoorHinge hinge);
std::string_view swingName(DoorSwing swing);

constexpr auto caseNamesOf(DimensionDirection) {
  return std::to_array<std::string_view>({"aligned", "horizontal", "vertical"});
}
constexpr auto caseNamesOf(AnchorKind) {
  return std::to_array<std::string_view>({"none", "start", "end", "center", "corner", "startLeft",
                                          "startRight", "endLeft", "endRight", "jambNear", "jambFar"});
}

}  // namespace ostrelon
