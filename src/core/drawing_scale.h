// The scale of a drawing on paper, and how it is written. Paper is measured in points, 72 to the inch.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ostrelon {

inline constexpr double kPointsPerInch = 72;
inline constexpr double kInchesPerFoot = 12;

/// How many times larger the building is than its drawing: 48 for a quarter of an inch to the foot.
struct DrawingScale {
  double ratio = 48;
  /// The length of one sketch unit on paper, points.
  double pointsPerUnit() const { return kInchesPerFoot * kPointsPerInch / ratio; }
  friend bool operator==(const DrawingScale&, const DrawingScale&) = default;
};

/// The scales in common use, large drawings first.
std::span<const DrawingScale> commonScales();
/// Reads `1:50`, `1/4"`, `1/4" = 1'`, `1 1/2" = 1'-0"`, `1" = 20'`, with "in" for the inch mark and
/// "ft" for the foot mark as well; absent for anything else. The ratio lies in 0.001 to 1,000,000.
std::optional<DrawingScale> parseDrawingScale(std::string_view text);
/// `1/4" = 1'-0"`, `1" = 20'` or `1:50`, whichever is the usual form of the scale; it reads back.
std::string drawingScaleText(DrawingScale scale);

}  // namespace ostrelon
