#include "exchange/dxf_layers.h"

#include <fmt/format.h>
#include <unicode/translit.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>
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

// One character in the form that a layer name takes. Bytes that are no UTF-8 arrive as a negative number.
std::string written(UChar32 c, DxfVersion version) {
  const bool isAscii = c >= 0 && c < 0x80;
  if (isAscii && isAsciiLetterOrDigit(static_cast<unsigned char>(c))) return {static_cast<char>(c)};
  if (version == DxfVersion::r12) {
    return {c == '$' || c == '_' || c == '-' ? static_cast<char>(c) : '_'};
  }
  if (isAscii) {
    const char ascii = static_cast<char>(c);
    const bool isControl = c < 0x20 || c == 0x7F;
    return {isControl || kReserved2000.find(ascii) != std::string_view::npos ? '_' : ascii};
  }
  // The code page of the file, Windows-1252, has these at their own numbers.
  if (c >= 0xA0 && c <= 0xFF) return {static_cast<char>(c)};
  // The escape has four digits: what lies beyond has no form of its own.
  if (c < 0 || c > 0xFFFF) return "_";
  return fmt::format("\\U+{:04X}", static_cast<std::uint32_t>(c));
}

// "Étage" and "Стены" in the letters of ASCII, as far as there are such.
std::string inAscii(std::string_view text) {
  const bool isAscii =
      std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
  if (isAscii) return std::string(text);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Transliterator> toAscii(
      icu::Transliterator::createInstance("Any-Latin; Latin-ASCII", UTRANS_FORWARD, status));
  if (U_FAILURE(status) != 0 || !toAscii) return std::string(text);
  auto unicode =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  toAscii->transliterate(unicode);
  std::string result;
  unicode.toUTF8String(result);
  return result;
}

std::size_t longestName(DxfVersion version) {
  return version == DxfVersion::r12 ? kLongestR12Name : kLongestR2000Name;
}

}  // namespace

std::string dxfLayerName(std::string_view systemName, DxfVersion version) {
  const std::string text =
      version == DxfVersion::r12 ? inAscii(trimmed(systemName)) : std::string(trimmed(systemName));
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  std::string name;
  for (std::size_t at = 0; at < text.size();) {
    UChar32 c = 0;
    U8_NEXT(bytes, at, text.size(), c);
    const std::string piece = written(c, version);
    if (name.size() + piece.size() > longestName(version)) break;
    name += piece;
  }
  return name.empty() ? "WALL" : name;
}

std::string_view dxfKindLayer(DxfKind kind) {
  switch (kind) {
    case DxfKind::line:
      break;
    case DxfKind::circle:
      return "A-LINE-CIRC";
    case DxfKind::arc:
      return "A-LINE-ARC";
    case DxfKind::rectangle:
      return "A-LINE-RECT";
    case DxfKind::polygon:
      return "A-LINE-POLY";
  }
  return "A-LINE";
}

DxfLayers::DxfLayers(std::span<const WallSystemSpec> systems, DxfForm form, bool hasOpenings,
                     bool withCenterLines) {
  const DxfVersion version = form.version;
  const bool isByKind = form.layering == DxfLayering::byKind;
  if (isByKind) unknown_ = "A-WALL-UNKNOWN";
  std::unordered_map<std::string, std::string> layerOfName;  // by the system's name in lower case
  std::unordered_set<std::string> taken{std::string(kDxfBaseLayer), lowerCased(unknown_)};
  if (hasOpenings) taken.insert({lowerCased(kDxfDoorLayer), lowerCased(kDxfGlazingLayer)});
  if (withCenterLines) taken.insert(lowerCased(kDxfCenterLineLayer));
  for (const WallSystemSpec& system : systems) {
    std::string& layer = layerOfName[lowerCased(trimmed(system.name))];
    if (layer.empty()) {
      const std::string own = dxfLayerName(system.name, version);
      const std::string wished = isByKind ? ("A-WALL-" + own).substr(0, longestName(version)) : own;
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
  if (hasOpenings) names_.insert(names_.end(), {std::string(kDxfDoorLayer), std::string(kDxfGlazingLayer)});
  if (isByKind) {
    for (const DxfKind kind :
         {DxfKind::line, DxfKind::circle, DxfKind::arc, DxfKind::rectangle, DxfKind::polygon}) {
      names_.emplace_back(dxfKindLayer(kind));
    }
  }
  if (withCenterLines) names_.emplace_back(kDxfCenterLineLayer);
}

const std::string& DxfLayers::layerOf(const UUID& systemID) const {
  const auto found = layers_.find(systemID);
  return found == layers_.end() ? unknown_ : found->second;
}

}  // namespace ostrelon
