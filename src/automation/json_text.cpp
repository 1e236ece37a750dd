#include "automation/json_text.h"

#include <charconv>
#include <cmath>

#include "platform/nul_byte.h"

namespace ostrelon {
namespace {

// The greatest depth of brackets outside strings.
int depthOf(std::string_view text) {
  int depth = 0;
  int deepest = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char byte = text[i];
    if (inString) {
      if (byte == '\\') {
        ++i;
      } else if (byte == '"') {
        inString = false;
      }
    } else if (byte == '"') {
      inString = true;
    } else if (byte == '[' || byte == '{') {
      deepest = std::max(deepest, ++depth);
    } else if (byte == ']' || byte == '}') {
      --depth;
    }
  }
  return deepest;
}

template <class Number>
void appendNumber(std::string& text, Number number) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
  text.append(buffer, error == std::errc() ? end : buffer);
}

void append(std::string& text, const Json& value) {
  switch (value.type()) {
    case Json::value_t::object: {
      text += '{';
      bool isFirst = true;
      for (const auto& [key, member] : value.items()) {
        if (!isFirst) text += ',';
        isFirst = false;
        append(text, Json(key));
        text += ':';
        append(text, member);
      }
      text += '}';
      return;
    }
    case Json::value_t::array: {
      text += '[';
      bool isFirst = true;
      for (const Json& element : value) {
        if (!isFirst) text += ',';
        isFirst = false;
        append(text, element);
      }
      text += ']';
      return;
    }
    case Json::value_t::number_float: {
      const double number = value.get<double>();
      if (std::isfinite(number)) {
        appendNumber(text, number);
      } else {
        text += "null";
      }
      return;
    }
    case Json::value_t::number_integer:
      appendNumber(text, value.get<std::int64_t>());
      return;
    case Json::value_t::number_unsigned:
      appendNumber(text, value.get<std::uint64_t>());
      return;
    case Json::value_t::string:
      text += value.dump(-1, ' ', false, Json::error_handler_t::replace);
      return;
    case Json::value_t::boolean:
      text += value.get<bool>() ? "true" : "false";
      return;
    case Json::value_t::null:
    case Json::value_t::binary:
    case Json::value_t::discarded:
      text += "null";
      return;
  }
}

}  // namespace

std::optional<Json> parseJson(std::string_view text, std::string& error) {
  if (depthOf(text) > kDeepestJson) {
    error = "The request is nested too deeply.";
    return std::nullopt;
  }
  if (nulByteIn(text)) {
    error = "The request is not JSON.";
    return std::nullopt;
  }
  try {
    return Json::parse(text.begin(), text.end());
  } catch (const Json::out_of_range&) {
    error = "The request holds a number that is too large.";
  } catch (const Json::exception&) {
    error = "The request is not JSON.";
  }
  return std::nullopt;
}

std::string jsonText(const Json& value) {
  std::string text;
  append(text, value);
  return text;
}

}  // namespace ostrelon
