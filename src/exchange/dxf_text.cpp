#include "exchange/dxf_text.h"

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>

#include "exchange/dxf_groups.h"

namespace ostrelon {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBinaryMark = "Binary DXF\r\n\x1A";
constexpr std::size_t kLongestMark = 64;  // bytes in front of which the mark of a binary file must stand

// --- UTF-16

enum class ByteOrder { little, big };

// By its mark, or by the zeros beside the first characters, which are digits and blanks.
std::optional<ByteOrder> utf16Order(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return ByteOrder::little;
  if (bytes.starts_with("\xFE\xFF")) return ByteOrder::big;
  if (bytes.size() < 4 || bytes.find(kBinaryMark.substr(0, 10)) != std::string_view::npos)
    return std::nullopt;
  const auto isPlain = [](char c) { return (c >= '0' && c <= '9') || c == ' ' || c == '\r' || c == '\n'; };
  if (isPlain(bytes[0]) && bytes[1] == '\0' && isPlain(bytes[2]) && bytes[3] == '\0')
    return ByteOrder::little;
  if (bytes[0] == '\0' && isPlain(bytes[1]) && bytes[2] == '\0' && isPlain(bytes[3])) return ByteOrder::big;
  return std::nullopt;
}

std::string fromUtf16(std::string_view bytes, ByteOrder order) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<std::uint8_t>(bytes[i]);
    const auto second = static_cast<std::uint8_t>(bytes[i + 1]);
    units += static_cast<char16_t>(order == ByteOrder::little ? first | second << 8U : first << 8U | second);
  }
  if (!units.empty() && units.front() == u'\uFEFF') units.erase(0, 1);
  std::string text;
  icu::UnicodeString(false, units.data(), static_cast<std::int32_t>(units.size())).toUTF8String(text);
  return text;
}

// --- Binary files

enum class ValueForm { text, real, int16, int32, int64, byte, bytes };

struct CodeRange {
  int last;
  ValueForm form;
};
// The form of a value by its code; each range begins behind the one before.
constexpr std::array kForms{
    CodeRange{9, ValueForm::text},     CodeRange{59, ValueForm::real},   CodeRange{79, ValueForm::int16},
    CodeRange{89, ValueForm::text},    CodeRange{99, ValueForm::int32},  CodeRange{109, ValueForm::text},
    CodeRange{149, ValueForm::real},   CodeRange{159, ValueForm::text},  CodeRange{169, ValueForm::int64},
    CodeRange{179, ValueForm::int16},  CodeRange{209, ValueForm::text},  CodeRange{239, ValueForm::real},
    CodeRange{269, ValueForm::text},   CodeRange{289, ValueForm::int16}, CodeRange{299, ValueForm::byte},
    CodeRange{309, ValueForm::text},   CodeRange{319, ValueForm::bytes}, CodeRange{369, ValueForm::text},
    CodeRange{389, ValueForm::int16},  CodeRange{399, ValueForm::text},  CodeRange{409, ValueForm::int16},
    CodeRange{419, ValueForm::text},   CodeRange{429, ValueForm::int32}, CodeRange{439, ValueForm::text},
    CodeRange{459, ValueForm::int32},  CodeRange{469, ValueForm::real},  CodeRange{1003, ValueForm::text},
    CodeRange{1004, ValueForm::bytes}, CodeRange{1009, ValueForm::text}, CodeRange{1059, ValueForm::real},
    CodeRange{1070, ValueForm::int16}, CodeRange{1071, ValueForm::int32}};

ValueForm formOf(int code) {
  const auto* range =
      std::find_if(kForms.begin(), kForms.end(), [code](const CodeRange& r) { return code <= r.last; });
  return range == kForms.end() ? ValueForm::text : range->form;
}

class BinaryReader {
 public:
  // `bytes` from behind the mark on.
  explicit BinaryReader(std::string_view bytes) : rest_(bytes) {
    // Older files have codes of one byte: the first group is 0, and its text "SECTION" begins at once.
    hasShortCodes_ = rest_.size() > 1 && rest_[0] == '\0' && rest_[1] != '\0';
  }

  std::string text() {
    while (!rest_.empty()) appendGroup();
    return std::move(text_);
  }

 private:
  std::string_view taken(std::size_t count) {
    if (rest_.size() < count) throw DxfError("The binary file ends in the middle; it may have been cut off.");
    const std::string_view piece = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return piece;
  }
  template <class Number>
  Number number() {
    Number value{};
    // The format is little-endian, as are the machines that this runs on.
    std::memcpy(&value, taken(sizeof(Number)).data(), sizeof(Number));
    return value;
  }
  std::string_view zeroEnded() {
    const std::size_t end = rest_.find('\0');
    const std::string_view piece = taken(end == std::string_view::npos ? rest_.size() + 1 : end);
    rest_.remove_prefix(1);
    return piece;
  }

  int code() {
    if (!hasShortCodes_) return number<std::int16_t>();
    const auto first = number<std::uint8_t>();
    return first == 255 ? number<std::int16_t>() : first;
  }

  void appendGroup() {
    const int groupCode = code();
    fmt::format_to(std::back_inserter(text_), "{}\n", groupCode);
    switch (formOf(groupCode)) {
      case ValueForm::text:
        for (const char c : zeroEnded()) text_ += c == '\n' || c == '\r' ? ' ' : c;
        break;
      case ValueForm::real:
        fmt::format_to(std::back_inserter(text_), "{}", number<double>());
        break;
      case ValueForm::int16:
        fmt::format_to(std::back_inserter(text_), "{}", number<std::int16_t>());
        break;
      case ValueForm::int32:
        fmt::format_to(std::back_inserter(text_), "{}", number<std::int32_t>());
        break;
      case ValueForm::int64:
        fmt::format_to(std::back_inserter(text_), "{}", number<std::int64_t>());
        break;
      case ValueForm::byte:
        fmt::format_to(std::back_inserter(text_), "{}", number<std::uint8_t>());
        break;
      case ValueForm::bytes:
        taken(number<std::uint8_t>());
        break;
    }
    text_ += '\n';
  }

  std::string_view rest_;
  bool hasShortCodes_ = false;
  std::string text_;
};

// --- Code pages

// "ANSI_1252" as the library for Unicode names it. Empty for what it does not know.
std::string converterName(std::string_view codePage) {
  std::string name(codePage);
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
  if (name.starts_with("ANSI_")) {
    const std::string number = name.substr(5);
    if (number == "932") return "Shift_JIS";
    if (number == "1361") return "ibm-1363";
    return "windows-" + number;
  }
  if (name.starts_with("DOS")) return "ibm-" + name.substr(name.starts_with("DOS_") ? 4 : 3);
  if (name.starts_with("ISO8859-") || name.starts_with("ISO_8859-"))
    return "iso-8859-" + name.substr(name.find('-') + 1);
  return name;
}

bool isUtf8Text(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  for (std::size_t at = 0; at < text.size();) {
    UChar32 c = 0;
    U8_NEXT(bytes, at, text.size(), c);
    if (c < 0) return false;
  }
  return true;
}

std::optional<char32_t> hexadecimal(std::string_view digits) {
  unsigned value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

// "\U+2713" as the character.
icu::UnicodeString withoutEscapes(const icu::UnicodeString& text) {
  constexpr std::int32_t kDigits = 4;
  const icu::UnicodeString mark(u"\\U+");
  icu::UnicodeString result;
  std::int32_t at = 0;
  while (true) {
    const std::int32_t found = text.indexOf(mark, at);
    const std::int32_t digitsAt = found + mark.length();
    if (found < 0 || digitsAt + kDigits > text.length()) break;
    std::string digits;
    text.tempSubString(digitsAt, kDigits).toUTF8String(digits);
    const auto value = hexadecimal(digits);
    result.append(text, at, found - at);
    if (value) {
      result.append(static_cast<char16_t>(*value));
    } else {
      result.append(text, found, mark.length() + kDigits);
    }
    at = digitsAt + kDigits;
  }
  return result.append(text, at, text.length() - at);
}

}  // namespace

DxfText plainDxfText(std::string bytes) {
  if (const std::size_t mark = std::string_view(bytes).substr(0, kLongestMark).find(kBinaryMark);
      mark != std::string::npos) {
    // A zero ends the mark.
    const std::size_t start = std::min(bytes.size(), mark + kBinaryMark.size() + 1);
    return {BinaryReader(std::string_view(bytes).substr(start)).text(), false, true};
  }
  if (const auto order = utf16Order(bytes)) return {fromUtf16(bytes, *order), true, false};
  const bool hasMark = bytes.starts_with(kUtf8Mark);
  if (hasMark) bytes.erase(0, kUtf8Mark.size());
  return {std::move(bytes), hasMark, false};
}

struct DxfTextDecoder::Converter {
  explicit Converter(const std::string& name) {
    UErrorCode status = U_ZERO_ERROR;
    handle = ucnv_open(name.c_str(), &status);
    if (U_FAILURE(status) != 0) handle = nullptr;
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (handle != nullptr) ucnv_close(handle);
  }
  UConverter* handle = nullptr;
  bool isGuessed = false;  // what is UTF-8 is taken as that first
};

DxfTextDecoder::~DxfTextDecoder() = default;
DxfTextDecoder::DxfTextDecoder(DxfTextDecoder&&) noexcept = default;
DxfTextDecoder& DxfTextDecoder::operator=(DxfTextDecoder&&) noexcept = default;

DxfTextDecoder::DxfTextDecoder(std::string_view codePage, std::string_view version, bool isUtf8) {
  constexpr std::string_view kFirstUtf8Version = "AC1021";
  if (isUtf8 || (version.starts_with("AC") && version >= kFirstUtf8Version)) return;
  if (!codePage.empty()) {
    converter_ = std::make_unique<Converter>(converterName(codePage));
    if (converter_->handle != nullptr) return;
  }
  converter_ = std::make_unique<Converter>("windows-1252");
  converter_->isGuessed = true;
}

std::string DxfTextDecoder::decoded(std::string_view text) const {
  const bool isAscii =
      std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
  if (isAscii && text.find('\\') == std::string_view::npos) return std::string(text);
  const bool isPlain = isAscii || converter_ == nullptr || converter_->handle == nullptr ||
                       (converter_->isGuessed && isUtf8Text(text));
  icu::UnicodeString unicode;
  if (isPlain) {
    unicode =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  } else {
    UErrorCode status = U_ZERO_ERROR;
    unicode =
        icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size()), converter_->handle, status);
  }
  std::string result;
  withoutEscapes(unicode).toUTF8String(result);
  return result;
}

}  // namespace ostrelon
