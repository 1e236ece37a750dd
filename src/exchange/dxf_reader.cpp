#include "exchange/dxf_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "exchange/dxf_entities.h"

namespace ostrelon {
namespace {

struct NumberedUnit {
  int number;
  DxfUnit unit;
};

// The units by the numbers of $INSUNITS.
constexpr std::array kUnits{
    NumberedUnit{1, {"inches", 1.0 / 12}},
    NumberedUnit{2, {"feet", 1}},
    NumberedUnit{3, {"miles", 5280}},
    NumberedUnit{4, {"millimeters", 0.001 / 0.3048}},
    NumberedUnit{5, {"centimeters", 0.01 / 0.3048}},
    NumberedUnit{6, {"meters", 1 / 0.3048}},
    NumberedUnit{7, {"kilometers", 1000 / 0.3048}},
    NumberedUnit{10, {"yards", 3}},
    NumberedUnit{14, {"decimeters", 0.1 / 0.3048}},
};

std::optional<DxfUnit> unitOf(int number) {
  const auto* found = std::find_if(kUnits.begin(), kUnits.end(),
                                   [number](const NumberedUnit& unit) { return unit.number == number; });
  return found == kUnits.end() ? std::nullopt : std::optional(found->unit);
}

// The flags of a POLYLINE and of its vertices.
constexpr unsigned kPolylineClosed = 1;
constexpr unsigned kPolylineMesh = 16 | 64;
constexpr unsigned kSplineFrameVertex = 16;

bool isPlainKind(std::string_view kind) {
  return !kind.empty() && kind.size() <= 32 && std::all_of(kind.begin(), kind.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  });
}

class Reader {
 public:
  explicit Reader(std::string_view text) : groups_(text) {}

  DxfDrawing read() {
    bool sawSection = false;
    while (const auto group = groups_.next()) {
      if (group->is(0, "EOF")) break;
      if (!group->is(0, "SECTION")) {
        // Comments may come between the sections.
        if (group->code != 999 && !sawSection) throw DxfError("This is not a DXF file.");
        continue;
      }
      sawSection = true;
      const auto name = groups_.next();
      if (!name || name->code != 2)
        throw DxfError(fmt::format("Line {}: a section has no name.", group->line));
      if (name->value == "HEADER") {
        readHeader();
      } else if (name->value == "ENTITIES") {
        readEntities();
      } else {
        skipSection();
      }
    }
    if (!sawSection) throw DxfError("This is not a DXF file.");
    return std::move(drawing_);
  }

 private:
  // Inside a section the file must go on.
  DxfGroup required() {
    auto group = groups_.next();
    if (!group) throw DxfError("The file ends in the middle of a section; it may have been cut off.");
    return *group;
  }

  void skipSection() {
    while (!required().is(0, "ENDSEC")) {
    }
  }

  void readHeader() {
    std::string_view variable;
    for (DxfGroup group = required(); !group.is(0, "ENDSEC"); group = required()) {
      if (group.code == 9) variable = group.value;
      if (variable == "$INSUNITS" && group.code == 70) drawing_.unit = unitOf(group.integer());
    }
  }

  void readEntities() {
    DxfObject object({}, 0);
    for (DxfGroup group = required(); !group.is(0, "ENDSEC"); group = required()) {
      if (group.code != 0) {
        object.add(group);
        continue;
      }
      finish(object);
      object.restart(group.value, group.line);
    }
    finish(object);
    finishPolyline();
  }

  void finish(const DxfObject& object) {
    if (object.kind().empty()) return;
    if (object.kind() == "VERTEX") {
      addVertex(object);
      return;
    }
    finishPolyline();
    if (object.kind() == "SEQEND") return;
    if (object.kind() == "POLYLINE") {
      beginPolyline(object);
    } else if (object.isOnPaper() || !addDxfObject(object, drawing_.entities)) {
      leaveOut(object.kind());
    }
  }

  void beginPolyline(const DxfObject& object) {
    const auto flags = static_cast<unsigned>(object.integer(70, 0));
    const auto plane = object.plane();
    isPolylineOpen_ = true;
    isPolylineDrawn_ =
        !object.isOnPaper() && (flags & kPolylineMesh) == 0 && plane != DxfObject::Plane::other;
    polyline_ = {{}, (flags & kPolylineClosed) != 0, plane == DxfObject::Plane::mirrored};
  }

  void addVertex(const DxfObject& object) {
    // A vertex on its own belongs to nothing.
    if (!isPolylineOpen_ || !isPolylineDrawn_) return;
    if ((static_cast<unsigned>(object.integer(70, 0)) & kSplineFrameVertex) != 0) return;
    polyline_.vertices.push_back({object.point(10, "position"), object.number(42, 0)});
  }

  void finishPolyline() {
    if (!isPolylineOpen_) return;
    isPolylineOpen_ = false;
    if (!isPolylineDrawn_ || !addDxfPolyline(std::move(polyline_), drawing_.entities)) leaveOut("POLYLINE");
  }

  void leaveOut(std::string_view kind) {
    ++drawing_.leftOut[isPlainKind(kind) ? std::string(kind) : std::string("other kinds")];
  }

  DxfGroupReader groups_;
  DxfDrawing drawing_;
  DxfPolyline polyline_;
  bool isPolylineOpen_ = false;
  bool isPolylineDrawn_ = false;
};

}  // namespace

std::size_t DxfDrawing::leftOutCount() const {
  return std::accumulate(leftOut.begin(), leftOut.end(), std::size_t{0},
                         [](std::size_t sum, const auto& kind) { return sum + kind.second; });
}

DxfDrawing readDxf(std::string_view text) { return Reader(text).read(); }

}  // namespace ostrelon
