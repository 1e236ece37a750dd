// The typeface that a PDF carries: which of its letters a file uses, and the typeface cut down to them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct hb_face_t;
struct hb_font_t;

namespace ostrelon {

/// The bytes of the typeface of the drawings, TrueType, which the program holds.
std::span<const unsigned char> typefaceBytes();

class PdfTypeface {
 public:
  /// All letters are as wide, in heights of the type.
  static constexpr double kLetterWidth = 0.6;
  /// From the middle of a line of text down to where its letters stand, in heights of the type.
  static constexpr double kMiddle = 0.36;

  PdfTypeface();

  /// The letters of a text of UTF-8 by their numbers in the typeface, in hexadecimal, as a content stream
  /// shows them; a question mark for each that the typeface has not. From now on they are used.
  struct Letters {
    std::string numbers;
    int count = 0;
  };
  Letters letters(std::string_view text);

  bool isUsed() const { return !used_.empty(); }
  /// The letters used, by number, and the characters that they stand for.
  const std::map<std::uint16_t, char32_t>& used() const { return used_; }
  /// The typeface with the letters used alone, by the same numbers. Throws `UserError` without memory.
  std::string subset() const;

  /// As its descriptor in a file tells them, thousandths of the height of the type.
  struct Metrics {
    int left = 0;
    int bottom = 0;
    int right = 0;
    int top = 0;
    int ascent = 0;
    int descent = 0;  ///< below 0
    int capitals = 0;
  };
  Metrics metrics() const;

 private:
  std::shared_ptr<hb_face_t> face_;
  std::shared_ptr<hb_font_t> font_;
  std::map<std::uint16_t, char32_t> used_;
};

}  // namespace ostrelon
