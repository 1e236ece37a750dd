// One object of a DXF file at a time becomes entities.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "core/sketch_entity.h"
#include "exchange/dxf_groups.h"

namespace ostrelon {

/// A vertex of a polyline. `bulge` is the tangent of a quarter of the angle of the arc to the next
/// vertex, positive counter-clockwise; 0 for a straight piece.
struct DxfVertex {
  SketchPoint point;
  double bulge = 0;
};

struct DxfPolyline {
  std::vector<DxfVertex> vertices;
  bool isClosed = false;
  bool isMirrored = false;  ///< drawn on a plane seen from below
};

/// The groups of one object, after the one that names its kind.
class DxfObject {
 public:
  DxfObject(std::string_view kind, std::size_t line) : kind_(kind), line_(line) {}

  std::string_view kind() const { return kind_; }
  void add(const DxfGroup& group) { groups_.push_back(group); }
  const std::vector<DxfGroup>& groups() const { return groups_; }
  /// Makes it the object of another kind, with its storage kept.
  void restart(std::string_view kind, std::size_t line);

  /// The last group of this code; null where there is none.
  const DxfGroup* find(int code) const;
  int integer(int code, int otherwise) const;
  double number(int code, double otherwise) const;
  /// x at this code, y at 10 more. Throws `DxfError` where one is missing, naming `what`.
  SketchPoint point(int code, std::string_view what) const;
  /// Throws `DxfError` where it is missing, naming `what`.
  double requiredNumber(int code, std::string_view what) const;

  bool isOnPaper() const { return integer(67, 0) == 1; }
  /// The plane in which it is drawn.
  enum class Plane { plan, mirrored, other };
  Plane plane() const;

 private:
  const DxfGroup& required(int code, std::string_view what) const;

  std::string_view kind_;
  std::size_t line_;
  std::vector<DxfGroup> groups_;
};

/// Adds what the object draws. False where it is of a kind, in a plane or of a size that is left out.
bool addDxfObject(const DxfObject& object, std::vector<SketchEntity>& entities);
/// False for a polyline without two different vertices.
bool addDxfPolyline(DxfPolyline polyline, std::vector<SketchEntity>& entities);

}  // namespace ostrelon
