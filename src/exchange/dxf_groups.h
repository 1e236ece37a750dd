// The groups of a DXF text: a line with a code, a line with a value. What is not DXF at all is reported here,
// with the number of the offending line.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/user_error.h"

namespace ostrelon {

/// A file that cannot be taken in, and why, as a whole sentence.
class DxfError : public UserError {
 public:
  using UserError::UserError;
};

struct DxfGroup {
  int code = 0;
  std::string_view value;  ///< without white space at its end; into the text
  std::size_t line = 0;    ///< of the value, counted from 1

  bool is(int wantedCode, std::string_view wantedValue) const {
    return code == wantedCode && value == wantedValue;
  }
  /// Throws `DxfError` when the value is not a finite number.
  double number() const;
  /// Throws `DxfError` when the value is not a whole number of 32 bits.
  int integer() const;
};

class DxfGroupReader {
 public:
  /// Lines end in "\n", "\r\n", or, where there is no "\n" at all, "\r". `text` must outlive the object.
  /// Throws `DxfError` for a file of another kind.
  explicit DxfGroupReader(std::string_view text);

  /// The next group; absent at the end of the text. Throws `DxfError` for a line that is no code and
  /// for a code without a value.
  std::optional<DxfGroup> next();

  /// Goes on to the next lines that look like the beginning of an object, after what `next` has refused.
  /// False where there are none.
  bool skipToObject();

  /// How many lines have been read.
  std::size_t line() const { return line_; }

 private:
  std::optional<std::string_view> nextLine();

  std::string_view rest_;
  std::size_t line_ = 0;
  char lineEnd_ = '\n';
};

/// Whether it may be the name of a kind of object: upper-case letters, digits and "_", at most 32.
bool isDxfKind(std::string_view name);

}  // namespace ostrelon
