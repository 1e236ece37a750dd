#include "exchange/page_layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "geometry/entity_geometry.h"
#include "interaction/canvas_frame.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr double inches(double value) { return value * kPointsPerInch; }
constexpr double millimeters(double value) { return value / 25.4 * kPointsPerInch; }

constexpr std::array kPaperSizes{
    PaperSize{"Letter", inches(8.5), inches(11)},        PaperSize{"Legal", inches(8.5), inches(14)},
    PaperSize{"Tabloid", inches(11), inches(17)},        PaperSize{"ANSI C", inches(17), inches(22)},
    PaperSize{"ANSI D", inches(22), inches(34)},         PaperSize{"ANSI E", inches(34), inches(44)},
    PaperSize{"ARCH A", inches(9), inches(12)},          PaperSize{"ARCH B", inches(12), inches(18)},
    PaperSize{"ARCH C", inches(18), inches(24)},         PaperSize{"ARCH D", inches(24), inches(36)},
    PaperSize{"ARCH E", inches(36), inches(48)},         PaperSize{"A4", millimeters(210), millimeters(297)},
    PaperSize{"A3", millimeters(297), millimeters(420)}, PaperSize{"A2", millimeters(420), millimeters(594)},
    PaperSize{"A1", millimeters(594), millimeters(841)}, PaperSize{"A0", millimeters(841), millimeters(1189)},
};

// In lower case without blanks: what else a sheet is called, and its name above.
constexpr std::array<std::pair<std::string_view, std::string_view>, 18> kOtherPaperNames{{
    {"ansia", "letter"},
    {"usletter", "letter"},
    {"uslegal", "legal"},
    {"ansib", "tabloid"},
    {"ledger", "tabloid"},
    {"ustabloid", "tabloid"},
    {"usledger", "tabloid"},
    {"11x17", "tabloid"},
    {"isoa4", "a4"},
    {"isoa3", "a3"},
    {"isoa2", "a2"},
    {"isoa1", "a1"},
    {"isoa0", "a0"},
    {"dina4", "a4"},
    {"dina3", "a3"},
    {"dina2", "a2"},
    {"dina1", "a1"},
    {"dina0", "a0"},
}};

// Sheets that would hold nothing but the rounding of a computation are not counted.
constexpr double kSheetTolerance = 1e-9;
// The scale of a drawing without any extent.
constexpr double kPointScale = 48;

SketchBox paintedBox(const SketchEntity& entity, std::span<const WallSystemSpec> systems) {
  SketchBox box = entityBounds(entity);
  if (const auto* wall = std::get_if<WallEntity>(&entity)) {
    for (const SketchPoint corner : wallCorners(wall->from, wall->to, paintedWallThickness(*wall, systems))) {
      box = box.united(corner);
    }
  } else if (const auto* arc = std::get_if<ArcEntity>(&entity)) {
    // The box of the entity is that of its whole circle.
    const std::vector<SketchPoint> points = arcPoints(*arc);
    if (points.empty()) return box;
    box = SketchBox::spanning(points[0], points[0]);
    for (const SketchPoint point : points) box = box.united(point);
  }
  return box;
}

int sheets(double length, double room) {
  const double count = std::ceil(length / room - kSheetTolerance);
  return count > kMostPages ? kMostPages + 1 : std::max(1, static_cast<int>(count));
}

PageLayout laidOut(const SketchBox& drawing, const PageSetup& setup, bool isLandscape) {
  PageLayout layout;
  layout.page = isLandscape ? SketchSize{setup.paper.height, setup.paper.width}
                            : SketchSize{setup.paper.width, setup.paper.height};
  layout.margin = setup.margin;
  layout.drawing = drawing;
  const SketchSize room = layout.printable();
  if (!(room.width > 0) || !(room.height > 0)) {
    throw PageLayoutError(fmt::format("The margins leave no room on a sheet of {}.", setup.paper.name));
  }
  const double width = drawing.width();
  const double height = drawing.height();
  if (setup.scale) {
    layout.pointsPerUnit = setup.scale->pointsPerUnit();
    layout.columns = sheets(width * layout.pointsPerUnit, room.width);
    layout.rows = sheets(height * layout.pointsPerUnit, room.height);
  } else {
    const double fit = std::min(room.width / width, room.height / height);
    layout.pointsPerUnit = std::isfinite(fit) && fit > 0 ? fit : DrawingScale{kPointScale}.pointsPerUnit();
  }
  return layout;
}

}  // namespace

std::span<const PaperSize> paperSizes() { return kPaperSizes; }

std::optional<PaperSize> paperSizeNamed(std::string_view name) {
  const auto plain = [](std::string_view text) {
    std::string result = lowerCased(text);
    std::erase_if(result, [](char c) { return c == ' ' || c == '-' || c == '_'; });
    return result;
  };
  std::string wanted = plain(name);
  for (const auto& [other, own] : kOtherPaperNames) {
    if (wanted == other) wanted = own;
  }
  const auto* found = std::find_if(kPaperSizes.begin(), kPaperSizes.end(),
                                   [&](const PaperSize& size) { return plain(size.name) == wanted; });
  return found == kPaperSizes.end() ? std::nullopt : std::optional(*found);
}

std::optional<SketchBox> paintedBounds(const EntityList& entities, std::span<const WallSystemSpec> systems) {
  std::optional<SketchBox> all;
  for (const SketchEntity& entity : entities) {
    const auto* polygon = std::get_if<PolygonEntity>(&entity);
    if (polygon != nullptr && polygon->vertices.empty()) continue;
    const SketchBox box = paintedBox(entity, systems);
    if (!isFinite(box)) continue;
    all = all ? all->united(box) : box;
  }
  return all;
}

SketchViewport PageLayout::viewport(int pageIndex) const {
  const SketchSize room = printable();
  const int column = pageIndex % columns;
  const int row = pageIndex / columns;
  const double width = drawing.width() * pointsPerUnit;
  const double height = drawing.height() * pointsPerUnit;
  const double left = margin + (columns * room.width - width) / 2 - column * room.width;
  const double top = margin + (rows * room.height - height) / 2 - row * room.height;
  return viewportWith({drawing.minX, drawing.maxY}, {left, top}, pointsPerUnit);
}

PageLayout layOutPages(const std::optional<SketchBox>& drawing, const PageSetup& setup) {
  const SketchBox box = drawing.value_or(SketchBox{});
  PageLayout best = laidOut(box, setup, setup.orientation == PageOrientation::landscape);
  if (setup.orientation == PageOrientation::automatic) {
    const PageLayout turned = laidOut(box, setup, true);
    // Where both ways take as many sheets at the same scale, the sheet lies as the drawing does.
    const bool isWide = box.width() > box.height();
    const bool isBetter = setup.scale ? turned.pageCount() < best.pageCount() ||
                                            (isWide && turned.pageCount() == best.pageCount())
                                      : turned.pointsPerUnit > best.pointsPerUnit;
    if (isBetter) best = turned;
  }
  if (best.columns > kMostPages || best.rows > kMostPages || best.pageCount() > kMostPages) {
    throw PageLayoutError(fmt::format(
        "At {} the drawing would take more than {} sheets of {}. Choose a smaller scale or larger "
        "paper.",
        drawingScaleText(best.scale()), kMostPages, setup.paper.name));
  }
  return best;
}

}  // namespace ostrelon
