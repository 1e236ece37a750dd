#include "core/text_table.h"

#include <algorithm>

#include "platform/unicode.h"

namespace ostrelon {

std::string columnsText(const TextTable& table) {
  std::vector<std::size_t> widths;
  for (const auto& row : table) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], characterCount(row[i]));
  }
  std::string text;
  for (const auto& row : table) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i] + std::string(widths[i] - characterCount(row[i]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
}

std::string commaSeparated(const TextTable& table) {
  std::string text;
  for (const auto& row : table) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) text += ',';
      if (row[i].find_first_of(",\"\r\n") == std::string::npos) {
        text += row[i];
        continue;
      }
      text += '"';
      for (const char c : row[i]) text += c == '"' ? std::string("\"\"") : std::string(1, c);
      text += '"';
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace ostrelon
