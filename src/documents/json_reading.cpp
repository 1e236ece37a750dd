#include "documents/json_reading.h"

#include <unicode/utf8.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace ostrelon {
namespace {

constexpr int kDeepestNesting = 512;
constexpr double kBeyondIntegers = 9'223'372'036'854'775'808.0;  // 2 to the 63rd

bool startsNumber(char first) { return first == '-' || (first >= '0' && first <= '9'); }

bool beginsValue(std::string_view token) {
  switch (token.front()) {
    case '"':
    case '[':
    case '{':
      return true;
    case 't':
      return token.starts_with("true");
    case 'f':
      return token.starts_with("false");
    case 'n':
      return token.starts_with("null");
    default:
      return startsNumber(token.front());
  }
}

// The first byte that is not part of a UTF-8 text.
std::size_t firstNonUTF8(std::string_view bytes) {
  std::size_t at = 0;
  while (at < bytes.size()) {
    // A window keeps the lengths within what the macro counts.
    const std::string_view window = bytes.substr(at, 4);
    const auto* start = reinterpret_cast<const std::uint8_t*>(window.data());
    std::int32_t next = 0;
    UChar32 scalar = 0;
    U8_NEXT(start, next, static_cast<std::int32_t>(window.size()), scalar);
    if (scalar < 0) return at;
    at += static_cast<std::size_t>(next);
  }
  return at;
}

// The first control character within a string.
std::size_t firstBareControl(std::string_view bytes) {
  bool inString = false;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] == '"') {
      inString = !inString;
    } else if (inString && bytes[at] == '\\') {
      ++at;
    } else if (inString && static_cast<unsigned char>(bytes[at]) < 0x20) {
      return at;
    }
  }
  return bytes.size();
}

}  // namespace

std::string JsonPlace::text() const {
  std::string above = parent == nullptr ? std::string() : parent->text();
  if (index) return above + '[' + std::to_string(*index) + ']';
  if (key.empty()) return above;
  if (!above.empty()) above += '.';
  return above.append(key);
}

JsonReading::JsonReading(std::string& bytes) : bytes_(bytes) {
  // The parser reads in blocks and so a little past the end.
  bytes_.reserve(bytes_.size() + simdjson::SIMDJSON_PADDING);
  const simdjson::padded_string_view padded(bytes_.data(), bytes_.size(), bytes_.capacity());
  if (const auto error = parser_.iterate(padded).get(document_)) failStart(error);
  (void)root();
}

simdjson::ondemand::object JsonReading::root() {
  document_.rewind();
  simdjson::ondemand::json_type type{};
  if (document_.type().get(type) != simdjson::SUCCESS) failHere();
  if (type != simdjson::ondemand::json_type::object) fail({}, "expected an object");
  simdjson::ondemand::object fields;
  if (document_.get_object().get(fields) != simdjson::SUCCESS) failAt(end());
  return fields;
}

void JsonReading::expectEnd() {
  const char* rest = nullptr;
  if (document_.current_location().get(rest) == simdjson::SUCCESS && rest < end()) failAt(rest);
}

double JsonReading::number32(Value& value, const JsonPlace& place) {
  const double wide = number(value, place);
  auto narrow = static_cast<float>(wide);
  // Reading to 64 bits first rounds twice, which can only go wrong where the first rounding landed
  // in the very middle between two 32-bit values.
  const bool isTie = (std::bit_cast<std::uint64_t>(wide) & 0x1FFF'FFFFU) == 0x1000'0000U;
  if (isTie || (wide != 0 && std::abs(narrow) < std::numeric_limits<float>::min())) {
    const std::string_view token = value.raw_json_token();
    float exact = 0;
    if (std::from_chars(token.data(), token.data() + token.size(), exact).ec == std::errc()) narrow = exact;
  }
  if (!std::isfinite(narrow)) fail(place, "the number is too large");
  return narrow;
}

std::int64_t JsonReading::integer(Value& value, const JsonPlace& place) {
  std::int64_t result = 0;
  if (value.get_int64().get(result) == simdjson::SUCCESS) return result;
  double wide = 0;
  if (value.get_double().get(wide) != simdjson::SUCCESS) {
    if (startsNumber(*start(value))) failNumber(value, place);
    failType(value, place, "an integer");
  }
  if (wide != std::trunc(wide)) fail(place, "expected an integer");
  if (wide < -kBeyondIntegers || wide >= kBeyondIntegers) fail(place, "the integer is too large");
  return static_cast<std::int64_t>(wide);
}

std::optional<std::int64_t> JsonReading::optionalInteger(Value& value, const JsonPlace& place) {
  if (isNull(value)) return std::nullopt;
  return integer(value, place);
}

std::string JsonReading::text(Value& value, const JsonPlace& place) {
  std::string_view content;
  if (value.get_string().get(content) != simdjson::SUCCESS) failType(value, place, "a text");
  return std::string(content);
}

bool JsonReading::boolean(Value& value, const JsonPlace& place) {
  bool result = false;
  if (value.get_bool().get(result) != simdjson::SUCCESS) failType(value, place, "true or false");
  return result;
}

UUID JsonReading::uuid(Value& value, const JsonPlace& place) {
  // The 36 characters are plain in every file that this program wrote; escapes take the long way.
  constexpr std::size_t kLength = 36;
  const char* first = start(value);
  if (*first != '"') failType(value, place, "an identifier");
  simdjson::ondemand::raw_json_string raw;
  if (bytesFrom(first) > kLength + 1 && first[kLength + 1] == '"') {
    const auto id = UUID::parse({first + 1, kLength});
    if (id && value.get_raw_json_string().get(raw) == simdjson::SUCCESS) return *id;
  }
  const auto id = UUID::parse(text(value, place));
  if (!id) fail(place, "expected an identifier");
  return *id;
}

char JsonReading::letter(Value& value, const JsonPlace& place, std::string& other) {
  const char* first = start(value);
  if (*first != '"') failType(value, place, "a text");
  simdjson::ondemand::raw_json_string raw;
  if (first[1] != '\\' && bytesFrom(first) > 2 && first[2] == '"' &&
      value.get_raw_json_string().get(raw) == simdjson::SUCCESS) {
    return first[1];
  }
  other = text(value, place);
  return other.size() == 1 ? other.front() : '\0';
}

bool JsonReading::isNull(Value& value) {
  bool result = false;
  if (value.is_null().get(result) != simdjson::SUCCESS) failAt(start(value));
  return result;
}

simdjson::ondemand::array JsonReading::array(Value& value, const JsonPlace& place) {
  simdjson::ondemand::array elements;
  if (*start(value) != '[') failType(value, place, "an array");
  if (value.get_array().get(elements) != simdjson::SUCCESS) failHere();
  return elements;
}

simdjson::ondemand::object JsonReading::object(Value& value, const JsonPlace& place) {
  simdjson::ondemand::object fields;
  if (*start(value) != '{') failType(value, place, "an object");
  if (value.get_object().get(fields) != simdjson::SUCCESS) failHere();
  return fields;
}

void JsonReading::pass(Value& value, const JsonPlace& place, int depth) {
  if (depth > kDeepestNesting) fail(place, "the values are nested too deeply");
  switch (*start(value)) {
    case '[': {
      Elements elements(*this, array(value, place));
      Value element;
      while (elements.next(element)) pass(element, place, depth + 1);
      return;
    }
    case '{':
      forEachField(object(value, place),
                   [&](std::string_view, Value& field) { pass(field, place, depth + 1); });
      return;
    case '"': {
      std::string_view ignored;
      if (value.get_string().get(ignored) != simdjson::SUCCESS) failAt(start(value));
      return;
    }
    case 't':
    case 'f':
      (void)boolean(value, place);
      return;
    case 'n':
      if (!isNull(value)) failAt(start(value));
      return;
    default:
      (void)number(value, place);
  }
}

const char* JsonReading::here() {
  const char* place = nullptr;
  return document_.current_location().get(place) == simdjson::SUCCESS ? place : end();
}

void JsonReading::fail(const JsonPlace& place, std::string_view what) {
  const std::string where = place.text();
  throw DocumentFormatError("The file is damaged" + (where.empty() ? where : " at " + where) + ": " +
                            std::string(what) + ".");
}

void JsonReading::failMissing(const JsonPlace& place, std::string_view key) {
  fail(place, "the key \"" + std::string(key) + "\" is missing");
}

void JsonReading::failHere() { failAt(here()); }

void JsonReading::failAt(const char* place) {
  const std::size_t offset = place < end() ? static_cast<std::size_t>(place - bytes_.data()) : bytes_.size();
  throw DocumentFormatError(
      "The file is damaged at byte " + std::to_string(offset) +
      (offset == bytes_.size() ? ": its JSON does not end as it should." : ": it is not JSON."));
}

void JsonReading::failStart(simdjson::error_code error) {
  switch (error) {
    case simdjson::EMPTY:
      throw DocumentFormatError("The file is empty.");
    case simdjson::UTF8_ERROR:
      throw DocumentFormatError("The file is damaged at byte " + std::to_string(firstNonUTF8(bytes_)) +
                                ": it is not UTF-8 text.");
    case simdjson::UNESCAPED_CHARS:
      failAt(bytes_.data() + firstBareControl(bytes_));
    case simdjson::CAPACITY:
      throw DocumentFormatError("The file is too large to be read.");
    case simdjson::MEMALLOC:
      throw DocumentFormatError("There is not enough memory to read the file.");
    default:
      failAt(end());
  }
}

void JsonReading::failNumber(Value& value, const JsonPlace& place) {
  const std::string_view token = value.raw_json_token();
  if (!startsNumber(token.front())) failType(value, place, "a number");
  double ignored = 0;
  const auto read = std::from_chars(token.data(), token.data() + token.size(), ignored);
  if (read.ec == std::errc::result_out_of_range) fail(place, "the number is too large");
  failAt(token.data());
}

void JsonReading::failType(Value& value, const JsonPlace& place, std::string_view expected) {
  const std::string_view token = value.raw_json_token();
  if (!beginsValue(token)) failAt(token.data());
  fail(place, "expected " + std::string(expected));
}

}  // namespace ostrelon
