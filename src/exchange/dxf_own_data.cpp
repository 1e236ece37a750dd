#include "exchange/dxf_own_data.h"

#include <fmt/format.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::string_view kWall = "wall";
constexpr std::string_view kPart = "part";
// The longest text of extended data, bytes.
constexpr std::size_t kLongestText = 255;

// The codes of extended data.
constexpr int kText = 1000;
constexpr int kApplication = 1001;
constexpr int kLayer = 1003;
constexpr int kReal = 1040;
constexpr int kDistance = 1041;  // scaled with its entity by other programs

std::string openingText(const Opening& opening) {
  return fmt::format("{} {} {}", openingKindName(opening.kind), hingeName(opening.hinge),
                     swingName(opening.swing));
}

std::optional<Opening> openingNamed(std::string_view text) {
  for (const OpeningKind kind : {OpeningKind::door, OpeningKind::window, OpeningKind::opening}) {
    for (const DoorHinge hinge : {DoorHinge::left, DoorHinge::right}) {
      for (const DoorSwing swing : {DoorSwing::in, DoorSwing::out}) {
        Opening opening;
        opening.kind = kind;
        opening.hinge = hinge;
        opening.swing = swing;
        if (openingText(opening) == text) return opening;
      }
    }
  }
  return std::nullopt;
}

// The groups of our own data, behind the name.
std::span<const DxfGroup> ownGroups(const DxfObject& object) {
  const auto& groups = object.groups();
  const auto begin = std::find_if(groups.begin(), groups.end(), [](const DxfGroup& group) {
    return group.is(kApplication, kDxfOwnApplication);
  });
  if (begin == groups.end()) return {};
  const auto end =
      std::find_if(begin + 1, groups.end(), [](const DxfGroup& group) { return group.code == kApplication; });
  return {begin + 1, end};
}

}  // namespace

std::string dxfEscaped(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  std::string escaped;
  for (std::size_t at = 0; at < text.size();) {
    UChar32 c = 0;
    U8_NEXT(bytes, at, text.size(), c);
    std::string piece;
    if (c >= 0x20 && c < 0x7F) {
      piece = static_cast<char>(c);
    } else if (c < 0) {
      piece = "?";
    } else if (c > 0xFFFF) {
      piece = fmt::format("\\U+{:04X}\\U+{:04X}", static_cast<unsigned>(U16_LEAD(c)),
                          static_cast<unsigned>(U16_TRAIL(c)));
    } else {
      piece = fmt::format("\\U+{:04X}", static_cast<unsigned>(c));
    }
    if (escaped.size() + piece.size() > kLongestText) break;
    escaped += piece;
  }
  return escaped;
}

void writeDxfWallData(DxfOutput& out, std::string_view layer, const WallSystemSpec* system,
                      const std::vector<Opening>& openings, double scale) {
  out.groups({{kApplication, kDxfOwnApplication}, {kText, kWall}, {kLayer, layer}});
  if (system != nullptr) {
    const std::string name = dxfEscaped(system->name);
    const std::string notes = dxfEscaped(system->assemblyNotes);
    out.groups({{kText, name}, {kText, notes}, {kReal, system->thickness}, {kReal, system->height}});
  }
  for (const Opening& opening : openings) {
    const std::string text = openingText(opening);
    out.groups({{kText, text}, {kDistance, opening.distance * scale}, {kDistance, opening.width * scale}});
  }
}

void writeDxfPartMark(DxfOutput& out) { out.groups({{kApplication, kDxfOwnApplication}, {kText, kPart}}); }

DxfOwnRole dxfOwnRole(const DxfObject& object) {
  // Extended data comes last: most objects have none.
  if (object.groups().empty() || object.groups().back().code < kText) return DxfOwnRole::none;
  const auto own = ownGroups(object);
  if (own.empty()) return DxfOwnRole::none;
  if (own.front().is(kText, kPart)) return DxfOwnRole::part;
  return own.front().is(kText, kWall) && object.kind() == "LINE" ? DxfOwnRole::wall : DxfOwnRole::none;
}

std::optional<DxfWallData> dxfWallData(const DxfObject& object, const DxfTextDecoder& decoder) {
  const auto own = ownGroups(object);
  std::size_t at = 1;
  const auto isNext = [&](int code, std::size_t ahead = 0) {
    return at + ahead < own.size() && own[at + ahead].code == code;
  };
  DxfWallData data;
  if (!isNext(kLayer)) return std::nullopt;
  data.layer = own[at++].value;
  if (isNext(kText) && isNext(kText, 1) && isNext(kReal, 2) && isNext(kReal, 3)) {
    WallSystemSpec system;
    system.name = decoder.decoded(own[at].value);
    system.assemblyNotes = decoder.decoded(own[at + 1].value);
    system.thickness = own[at + 2].number();
    system.height = own[at + 3].number();
    if (!(system.thickness > 0) || !(system.height > 0) || trimmed(system.name).empty()) return std::nullopt;
    data.content.system = std::move(system);
    at += 4;
  }
  while (isNext(kText) && isNext(kDistance, 1) && isNext(kDistance, 2)) {
    auto opening = openingNamed(own[at].value);
    if (!opening) return std::nullopt;
    opening->distance = own[at + 1].number();
    opening->width = own[at + 2].number();
    if (!(opening->width > 0)) return std::nullopt;
    data.content.openings.push_back(*opening);
    at += 3;
  }
  return at == own.size() ? std::optional(std::move(data)) : std::nullopt;
}

}  // namespace ostrelon
