// The layers of an exported drawing: "0" for everything but walls, and one for each wall system,
// named after it as far as the file format lets it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/wall_system.h"
#include "exchange/dxf_version.h"

namespace ostrelon {

/// The layer of everything but walls. Every file has it.
inline constexpr std::string_view kDxfBaseLayer = "0";
/// The layers of doors and of windows; a drawing with openings has them.
inline constexpr std::string_view kDxfDoorLayer = "A-DOOR";
inline constexpr std::string_view kDxfGlazingLayer = "A-GLAZ";
/// The layer of the centre lines of walls whose outlines are joined. It is off.
inline constexpr std::string_view kDxfCenterLineLayer = "WALL-CENTER";
/// The layer of walls whose system is not in the document.
inline constexpr std::string_view kDxfUnknownWallLayer = "WALL-UNKNOWN";

/// The name as a layer name, in the bytes of the file: characters that the format keeps for itself
/// become "_". R12 takes the letters, digits, "$", "_" and "-" of ASCII, at most 31, and letters of other
/// scripts in Latin ones; 2000 takes nearly all, at most 255, in the code page Windows-1252 or in the form
/// \U+2713. Never empty.
std::string dxfLayerName(std::string_view systemName, DxfVersion version);

/// The kinds that have layers of their own where layers are named by kind.
enum class DxfKind { line, circle, arc, rectangle, polygon };
/// "A-LINE" for lines; the others lie on layers beside it, as "A-LINE-CIRC".
std::string_view dxfKindLayer(DxfKind kind);

class DxfLayers {
 public:
  DxfLayers(std::span<const WallSystemSpec> systems, DxfForm form, bool hasOpenings = false,
            bool withCenterLines = false);
  /// Layers of these names, which are layer names as they are.
  explicit DxfLayers(std::vector<std::string> names) : names_(std::move(names)) {}

  /// The layer of the walls of this system. Systems of one name, case aside, share a layer; names
  /// that become alike only on their way into the file are distinguished by a number.
  const std::string& layerOf(const UUID& systemID) const;
  /// All layers but the base layer, each once, in the order of the systems; the one of unknown
  /// systems behind them, then those of openings, and that of the centre lines last.
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::unordered_map<UUID, std::string> layers_;
  std::vector<std::string> names_;
  std::string unknown_{kDxfUnknownWallLayer};
};

}  // namespace ostrelon
