// Tables of texts, as schedules are: rows with their headings first.
#pragma once

#include <string>
#include <vector>

namespace ostrelon {

using TextTable = std::vector<std::vector<std::string>>;

/// The rows as lines of aligned columns with two blanks between; nothing behind the last text of a line.
std::string columnsText(const TextTable& table);
/// As comma-separated values (RFC 4180).
std::string commaSeparated(const TextTable& table);

}  // namespace ostrelon
