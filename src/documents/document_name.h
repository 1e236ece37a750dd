// What a document is called, found without reading its drawing: a list of many documents shows their names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ostrelon {

/// So much of a document holds its name, bytes. A longer beginning is only needed for files of other origin.
inline constexpr std::size_t kDocumentNameReach = 4096;

/// The name in the text of a document of either format, or in as much of its beginning. Absent where it does
/// not come before the end of these bytes, or before they stop being JSON.
std::optional<std::string> documentNameIn(std::string_view bytes);

}  // namespace ostrelon
