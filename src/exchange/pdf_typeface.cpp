#include "exchange/pdf_typeface.h"

#include <fmt/format.h>
#include <hb-ot.h>
#include <hb-subset.h>
#include <unicode/utf8.h>

#include <cmath>

#include "platform/user_error.h"

namespace ostrelon {

namespace {

constexpr hb_tag_t tagOf(const char (&name)[5]) { return HB_TAG(name[0], name[1], name[2], name[3]); }

// A number of 16 bits in a table of the typeface, which may be below 0; 0 beyond its end.
int shortAt(std::string_view table, std::size_t at) {
  if (at + 2 > table.size()) return 0;
  const auto high = static_cast<unsigned char>(table[at]);
  const auto low = static_cast<unsigned char>(table[at + 1]);
  return static_cast<std::int16_t>(high << 8 | low);
}

std::string_view bytesOf(hb_blob_t* blob) {
  unsigned length = 0;
  const char* data = hb_blob_get_data(blob, &length);
  return data == nullptr ? std::string_view() : std::string_view(data, length);
}

}  // namespace

PdfTypeface::PdfTypeface() {
  const std::span<const unsigned char> bytes = typefaceBytes();
  hb_blob_t* blob =
      hb_blob_create(reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned>(bytes.size()),
                     HB_MEMORY_MODE_READONLY, nullptr, nullptr);
  face_ = std::shared_ptr<hb_face_t>(hb_face_create(blob, 0), hb_face_destroy);
  hb_blob_destroy(blob);
  font_ = std::shared_ptr<hb_font_t>(hb_font_create(face_.get()), hb_font_destroy);
}

PdfTypeface::Letters PdfTypeface::letters(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  Letters result;
  for (std::size_t at = 0; at < text.size(); ++result.count) {
    UChar32 c = 0;
    U8_NEXT(bytes, at, text.size(), c);
    hb_codepoint_t number = 0;
    if (c < 0x20 || hb_font_get_nominal_glyph(font_.get(), static_cast<hb_codepoint_t>(c), &number) == 0) {
      c = '?';
      hb_font_get_nominal_glyph(font_.get(), '?', &number);
    }
    used_.emplace(static_cast<std::uint16_t>(number), static_cast<char32_t>(c));
    result.numbers += fmt::format("{:04X}", number);
  }
  return result;
}

std::string PdfTypeface::subset() const {
  const std::shared_ptr<hb_subset_input_t> input(hb_subset_input_create_or_fail(), hb_subset_input_destroy);
  if (!input) throw UserError("There is not enough memory to write a PDF.");
  // The content of the file names the letters by their numbers in the whole typeface.
  hb_subset_input_set_flags(input.get(), HB_SUBSET_FLAGS_RETAIN_GIDS | HB_SUBSET_FLAGS_NO_HINTING);
  hb_set_t* numbers = hb_subset_input_glyph_set(input.get());
  for (const auto& [number, character] : used_) hb_set_add(numbers, number);
  // What places and replaces letters, and the names, serve programs that set text, not those that show it.
  hb_set_t* dropped = hb_subset_input_set(input.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
  for (const hb_tag_t tag : {tagOf("GSUB"), tagOf("GPOS"), tagOf("GDEF"), tagOf("name"), tagOf("post")}) {
    hb_set_add(dropped, tag);
  }
  const std::shared_ptr<hb_face_t> face(hb_subset_or_fail(face_.get(), input.get()), hb_face_destroy);
  if (!face) throw UserError("There is not enough memory to write a PDF.");
  const std::shared_ptr<hb_blob_t> blob(hb_face_reference_blob(face.get()), hb_blob_destroy);
  return std::string(bytesOf(blob.get()));
}

PdfTypeface::Metrics PdfTypeface::metrics() const {
  const double unit = 1000.0 / hb_face_get_upem(face_.get());
  const auto scaled = [unit](double value) { return static_cast<int>(std::lround(value * unit)); };
  // The box of all letters lies at byte 36 of the head table.
  const std::shared_ptr<hb_blob_t> head(hb_face_reference_table(face_.get(), tagOf("head")), hb_blob_destroy);
  const std::string_view table = bytesOf(head.get());
  hb_font_extents_t extents{};
  hb_font_get_h_extents(font_.get(), &extents);
  hb_position_t capitals = 0;
  hb_ot_metrics_get_position_with_fallback(font_.get(), HB_OT_METRICS_TAG_CAP_HEIGHT, &capitals);
  return {scaled(shortAt(table, 36)),
          scaled(shortAt(table, 38)),
          scaled(shortAt(table, 40)),
          scaled(shortAt(table, 42)),
          scaled(extents.ascender),
          scaled(extents.descender),
          scaled(capitals)};
}

}  // namespace ostrelon
