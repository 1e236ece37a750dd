// JSON for the automation interface: values, and their text on one line.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace ostrelon {

/// Objects keep the order in which their members were added.
using Json = nlohmann::ordered_json;

/// Deeper nesting than this is refused before it is read.
inline constexpr int kDeepestJson = 100;

/// Reads one value. Absent, with `error` set to a sentence, when the text is not JSON, too deep, or holds a
/// number beyond those of a double.
std::optional<Json> parseJson(std::string_view text, std::string& error);

/// One line of valid JSON: numbers as the shortest text that reads back to the same double, null for
/// those that are not finite; bytes that are no UTF-8 as U+FFFD.
std::string jsonText(const Json& value);

}  // namespace ostrelon
