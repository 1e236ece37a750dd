// One object of a DXF file: its kind and the groups that say everything about it.
#pragma once

#include <string_view>
#include <vector>

#include "core/sketch_point.h"
#include "exchange/dxf_groups.h"

namespace ostrelon {

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
  /// The bits of a whole number; 0 where there is none.
  unsigned flags(int code) const { return static_cast<unsigned>(integer(code, 0)); }
  double number(int code, double otherwise) const;
  /// Empty where there is none.
  std::string_view text(int code) const;
  /// x at this code, y at 10 more. Throws `DxfError` where one is missing, naming `what`.
  SketchPoint point(int code, std::string_view what) const;
  /// Throws `DxfError` where it is missing, naming `what`.
  double requiredNumber(int code, std::string_view what) const;
  /// Refuses the object: "The HATCH at line 12 " and the complaint.
  [[noreturn]] void refuse(std::string_view complaint) const;

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

}  // namespace ostrelon
