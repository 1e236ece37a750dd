// Where a drawing lands on paper at a true scale. Paper is measured in points, 72 to the inch, with y
// pointing down; the drawing in sketch units, a foot each.
//
//   const PageLayout layout = layOutPages(paintedBounds(entities, systems),
//                                         {.paper = *paperSizeNamed("Letter"), .scale = DrawingScale{48}});
//   for (int page = 0; page < layout.pageCount(); ++page) paint with layout.viewport(page)
//
// What is larger than a sheet goes on several, to be put together edge to edge along the margins.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/drawing_scale.h"
#include "core/entity_bounds.h"
#include "core/entity_list.h"
#include "core/sketch_point.h"
#include "core/sketch_viewport.h"
#include "core/wall_system.h"
#include "platform/user_error.h"

namespace ostrelon {

class PageLayoutError : public UserError {
 public:
  using UserError::UserError;
};

// --- Paper

/// A sheet in portrait orientation. `width` ≤ `height`, points.
struct PaperSize {
  std::string_view name;
  double width = 0;
  double height = 0;
  friend bool operator==(const PaperSize&, const PaperSize&) = default;
};

/// Letter, Legal, Tabloid, the ANSI, ARCH and ISO A sheets, small to large within each family.
std::span<const PaperSize> paperSizes();
/// By name, without regard to case and blanks. Other usual names are known too, such as "ANSI B" and "Ledger"
/// for Tabloid, "US Letter" and "ISO A3".
std::optional<PaperSize> paperSizeNamed(std::string_view name);

// --- Layout

enum class PageOrientation { automatic, portrait, landscape };

struct PageSetup {
  PaperSize paper;
  PageOrientation orientation = PageOrientation::automatic;
  double margin = 36;                 ///< points, on all sides
  std::optional<DrawingScale> scale;  ///< absent: as large as one sheet takes
};

struct PageLayout {
  SketchSize page;    ///< as it lies, points
  double margin = 0;  ///< points
  double pointsPerUnit = 1;
  int columns = 1;
  int rows = 1;
  SketchBox drawing;  ///< what is laid out, sketch units

  int pageCount() const { return columns * rows; }
  /// The part of a page that is painted, points.
  SketchSize printable() const { return {page.width - 2 * margin, page.height - 2 * margin}; }
  /// The scale, whether it was asked for or found.
  DrawingScale scale() const { return {kInchesPerFoot * kPointsPerInch / pointsPerUnit}; }
  /// From sketch units to the points of a page, counted row by row from the top left. The drawing is
  /// centred on the sheets put together.
  SketchViewport viewport(int pageIndex) const;
};

/// More sheets than this are refused.
inline constexpr int kMostPages = 400;

/// The box around all that is painted, walls with their thickness; absent for an empty drawing.
/// Entities that are not finite are left out.
std::optional<SketchBox> paintedBounds(const EntityList& entities, std::span<const WallSystemSpec> systems);

/// Lays a drawing out. Of the two orientations, `automatic` takes the one of fewer sheets, or, with no scale,
/// of the larger drawing. Throws `PageLayoutError` when the margins leave nothing of the sheet, or when it
/// takes more than `kMostPages`.
PageLayout layOutPages(const std::optional<SketchBox>& drawing, const PageSetup& setup);

}  // namespace ostrelon
