#include "exchange/dxf_layers.h"

#include <fmt/format.h>

#include <cstdint>
#include <unordered_set>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::size_t kLongestR12Name = 31;
constexpr std::size_t kLongestR2000Name = 255;
constexpr std::string_view kReserved2000 = "<>/\\\":;?*|,=`";

bool isAsciiLetterOrDigit(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

struct CodePoint {
  std::uint32_t value = 0;
  std::size_t length = 1;  // bytes
  bool isValid = false;
};

// The first character of a text in UTF-8. A byte that begins none stands for itself, as not valid.
CodePoint firstCodePoint(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1, true};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  std::uint32_t value = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return {};
    value = (value << 6U) | (byte(i) & 0x3FU);
  }
  return {value, length, true};
}

// One character as it stands in a layer name.
std::string written(const CodePoint& c, DxfVersion version) {
  const bool isAscii = c.isValid && c.value < 0x80;
  if (isAscii && isAsciiLetterOrDigit(static_cast<unsigned char>(c.value))) {
    return {static_cast<char>(c.value)};
  }
  if (version == DxfVersion::r12) {
    const bool isAllowed = c.isValid && (c.value == '$' || c.value == '_' || c.value == '-');
    return {isAllowed ? static_cast<char>(c.value) : '_'};
  }
  if (isAscii) {
    const char ascii = static_cast<char>(c.value);
    const bool isControl = c.value < 0x20 || c.value == 0x7F;
    return {isControl || kReserved2000.find(ascii) != std::string_view::npos ? '_' : ascii};
  }
  // The code page of the file, Windows-1252, has these at their own numbers.
  if (c.isValid && c.value >= 0xA0 && c.value <= 0xFF) return {static_cast<char>(c.value)};
  // The escape has four digits: what lies beyond has no form of its own.
  if (!c.isValid || c.value > 0xFFFF || (c.value >= 0xD800 && c.value <= 0xDFFF)) return "_";
  return fmt::format("\\U+{:04X}", c.value);
}

std::size_t longestName(DxfVersion version) {
  return version == DxfVersion::r12 ? kLongestR12Name : kLongestR2000Name;
}

}  // namespace

std::string dxfLayerName(std::string_view systemName, DxfVersion version) {
  std::string_view rest = trimmed(systemName);
  std::string name;
  while (!rest.empty()) {
    const CodePoint c = firstCodePoint(rest);
    const std::string piece = written(c, version);
    if (name.size() + piece.size() > longestName(version)) break;
    name += piece;
    rest.remove_prefix(c.length);
  }
  return name.empty() ? "WALL" : name;
}

DxfLayers::DxfLayers(std::span<const WallSystemSpec> systems, DxfVersion version) {
  std::unordered_map<std::string, std::string> layerOfName;  // by the system's name in lower case
  std::unordered_set<std::string> taken{std::string(kDxfBaseLayer), lowerCased(kDxfUnknownWallLayer)};
  for (const WallSystemSpec& system : systems) {
    std::string& layer = layerOfName[lowerCased(trimmed(system.name))];
    if (layer.empty()) {
      const std::string wished = dxfLayerName(system.name, version);
      layer = wished;
      for (int number = 2; !taken.insert(lowerCased(layer)).second; ++number) {
        const std::string suffix = fmt::format("_{}", number);
        // A shortened name may end within an escape, and is then as good a name as another.
        layer = wished.substr(0, longestName(version) - suffix.size()) + suffix;
      }
      names_.push_back(layer);
    }
    layers_.emplace(system.id, layer);
  }
  names_.push_back(unknown_);
}

const std::string& DxfLayers::layerOf(const UUID& systemID) const {
  const auto found = layers_.find(systemID);
  return found == layers_.end() ? unknown_ : found->second;
}

}  // namespace ostrelon
