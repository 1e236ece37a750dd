#include "exchange/dxf_output.h"

#include <fmt/format.h>

#include <iterator>

#include "core/sketch_entity.h"

namespace ostrelon {
namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 16U;

}  // namespace

void DxfOutput::endGroup() {
  buffer_ += '\n';
  if (buffer_.size() >= kPieceSize) flush();
}

void DxfOutput::flush() {
  write_(buffer_);
  buffer_.clear();
}

void DxfOutput::text(int code, std::string_view value) {
  fmt::format_to(std::back_inserter(buffer_), "{}\n{}", code, value);
  endGroup();
}

void DxfOutput::integer(int code, std::int64_t value) {
  fmt::format_to(std::back_inserter(buffer_), "{}\n{}", code, value);
  endGroup();
}

void DxfOutput::real(int code, double value) {
  // A negative zero reads oddly and means nothing here.
  fmt::format_to(std::back_inserter(buffer_), "{}\n{}", code, value == 0 ? 0.0 : value);
  // Older readers recognise a real number by its point.
  const std::string_view written = std::string_view(buffer_).substr(buffer_.rfind('\n') + 1);
  if (written.find_first_of(".e") == std::string_view::npos) buffer_ += ".0";
  endGroup();
}

void DxfOutput::handle(int code, DxfHandle value) {
  fmt::format_to(std::back_inserter(buffer_), "{}\n{:X}", code, value.value);
  endGroup();
}

void DxfOutput::point(int code, SketchPoint value) {
  real(code, value.x);
  real(code + 10, value.y);
}

void DxfOutput::flatPoint(int code, SketchPoint value) {
  point(code, value);
  real(code + 20, 0);
}

void DxfOutput::groups(std::initializer_list<DxfGroupValue> values) {
  for (const DxfGroupValue& group : values) {
    std::visit(Overloaded{[&](std::string_view value) { text(group.code, value); },
                          [&](int value) { integer(group.code, value); },
                          [&](double value) { real(group.code, value); },
                          [&](DxfHandle value) { handle(group.code, value); }},
               group.value);
  }
}

}  // namespace ostrelon
