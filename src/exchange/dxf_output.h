// Writes DXF groups, a code and a value each, and hands them on in pieces, so that a drawing of any
// size passes through a buffer of a fixed one.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

#include "core/sketch_point.h"
#include "platform/file_system.h"

namespace ostrelon {

/// A number by which one object of a file names another; written in hexadecimal.
struct DxfHandle {
  std::uint64_t value = 0;
};

struct DxfGroupValue {
  int code = 0;
  std::variant<std::string_view, int, double, DxfHandle> value;
};

class DxfOutput {
 public:
  /// `write` must outlive the object.
  explicit DxfOutput(const FileSystem::Writer& write) : write_(write) {}

  void text(int code, std::string_view value);
  void integer(int code, std::int64_t value);
  /// The shortest text that reads back to the same number.
  void real(int code, double value);
  void handle(int code, DxfHandle value);
  /// x at `code`, y at `code` + 10.
  void point(int code, SketchPoint value);
  /// As `point`, with a z of 0 at `code` + 20.
  void flatPoint(int code, SketchPoint value);
  void groups(std::initializer_list<DxfGroupValue> values);

  /// Hands on what is left. Called once, at the end.
  void flush();

 private:
  void endGroup();

  const FileSystem::Writer& write_;
  std::string buffer_;
};

}  // namespace ostrelon
