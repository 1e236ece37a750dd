// The text of a DXF file out of its bytes: binary files, UTF-16 and marks of byte order are made plain here,
// and names are read in the code page of the file.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ostrelon {

struct DxfText {
  std::string text;       ///< groups, a line with a code and a line with a value each
  bool isUtf8 = false;    ///< its characters are known to be UTF-8
  bool isBinary = false;  ///< it came from the binary form, whose places have no lines
};

/// Throws `DxfError` for a binary file that is cut off.
DxfText plainDxfText(std::string bytes);

/// Reads the texts of a file in its encoding.
class DxfTextDecoder {
 public:
  /// `codePage` as $DWGCODEPAGE names it, and `version` as $ACADVER does. Files of AC1021 and later are
  /// UTF-8. Without a code page that is known, texts that are no UTF-8 are read as Windows-1252.
  DxfTextDecoder(std::string_view codePage, std::string_view version, bool isUtf8);
  ~DxfTextDecoder();
  DxfTextDecoder(DxfTextDecoder&&) noexcept;
  DxfTextDecoder& operator=(DxfTextDecoder&&) noexcept;

  /// As UTF-8, with characters in the form \U+2713 as themselves. What cannot be read becomes U+FFFD.
  std::string decoded(std::string_view text) const;

 private:
  struct Converter;
  std::unique_ptr<Converter> converter_;  // null: UTF-8
};

}  // namespace ostrelon
