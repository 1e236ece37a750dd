#include "exchange/dxf_object.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace ostrelon {
namespace {

// Extrusion directions this near to straight up or down lie in the plan.
constexpr double kUprightTolerance = 1e-6;

}  // namespace

void DxfObject::restart(std::string_view kind, std::size_t line) {
  kind_ = kind;
  line_ = line;
  groups_.clear();
}

const DxfGroup* DxfObject::find(int code) const {
  const auto found =
      std::find_if(groups_.rbegin(), groups_.rend(), [code](const DxfGroup& g) { return g.code == code; });
  return found == groups_.rend() ? nullptr : &*found;
}

int DxfObject::integer(int code, int otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->integer();
}

double DxfObject::number(int code, double otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->number();
}

std::string_view DxfObject::text(int code) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? std::string_view() : group->value;
}

void DxfObject::refuse(std::string_view complaint) const {
  throw DxfError(fmt::format("The {} at line {} {}.", kind_, line_, complaint));
}

const DxfGroup& DxfObject::required(int code, std::string_view what) const {
  const DxfGroup* group = find(code);
  if (group == nullptr) refuse(fmt::format("has no {}", what));
  return *group;
}

SketchPoint DxfObject::point(int code, std::string_view what) const {
  return {required(code, what).number(), required(code + 10, what).number()};
}

double DxfObject::requiredNumber(int code, std::string_view what) const {
  return required(code, what).number();
}

DxfObject::Plane DxfObject::plane() const {
  const double x = number(210, 0);
  const double y = number(220, 0);
  const double z = number(230, 1);
  const double flatness = kUprightTolerance * std::abs(z);
  if (z == 0 || std::abs(x) > flatness || std::abs(y) > flatness) return Plane::other;
  return z > 0 ? Plane::plan : Plane::mirrored;
}

}  // namespace ostrelon
