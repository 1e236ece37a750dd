#include "exchange/export_options.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <sstream>

#include "core/plan_look.h"
#include "geometry/annotation_builder.h"
#include "geometry/annotations.h"
#include "geometry/joined_walls.h"
#include "geometry/opening_operations.h"
#include "interaction/canvas_transform.h"
#include "interaction/drawing_bounds.h"
#include "platform/near_names.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// Around a drawing on a sheet of its own size, points.
constexpr double kOwnSheetMargin = 18;
// The largest side of a sheet of the drawing's own size: what a PDF may have, 200 inches.
constexpr double kLargestSheetSide = 200 * kPointsPerInch;

[[noreturn]] void refuse(const std::string& text) { throw ExportOptionError(text); }

std::optional<int> wholeNumber(std::string_view text, int most) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (value < 1 || value > most) return std::nullopt;
  return value;
}

SketchSize sizeOf(const std::string& text) {
  const std::size_t cross = text.find_first_of("xX");
  const auto width = wholeNumber(std::string_view(text).substr(0, cross), kLargestExportSide);
  const auto height = cross == std::string::npos
                          ? std::nullopt
                          : wholeNumber(std::string_view(text).substr(cross + 1), kLargestExportSide);
  if (!width || !height) {
    refuse(fmt::format("\"{}\" is not a size such as 1200x800; each side is 1 to {}.", text,
                       kLargestExportSide));
  }
  return {static_cast<double>(*width), static_cast<double>(*height)};
}

int pixelRatioOf(const std::string& text) {
  std::string_view number = text;
  if (number.ends_with('x')) number.remove_suffix(1);
  const auto ratio = wholeNumber(number, kLargestPixelRatio);
  if (!ratio) refuse(fmt::format("\"{}\" is not a pixel ratio; it is 1 to {}.", text, kLargestPixelRatio));
  return *ratio;
}

PaperSize paperOf(const std::string& text) {
  const auto paper = paperSizeNamed(text);
  if (!paper) {
    std::string names;
    for (const PaperSize& size : paperSizes()) names += (names.empty() ? "" : ", ") + std::string(size.name);
    refuse(fmt::format("\"{}\" is not a sheet; there are {}.", text, names));
  }
  return *paper;
}

DrawingScale scaleOf(const std::string& text) {
  const auto scale = parseDrawingScale(text);
  if (!scale) refuse(fmt::format("\"{}\" is not a scale such as 1/4in=1ft or 1:50.", text));
  return *scale;
}

template <class Value>
struct Word {
  std::string_view word;
  Value value;
};

template <class Value, std::size_t count>
Value wordOf(const std::string& text, const std::array<Word<Value>, count>& words,
             std::string_view complaint) {
  for (const Word<Value>& word : words) {
    if (word.word == text) return word.value;
  }
  refuse(fmt::format("\"{}\" {}.", text, complaint));
}

// In the order of the enumeration.
constexpr std::array kEndings{
    Word<ExportFormat>{".png", ExportFormat::png}, Word<ExportFormat>{".svg", ExportFormat::svg},
    Word<ExportFormat>{".pdf", ExportFormat::pdf}, Word<ExportFormat>{".dxf", ExportFormat::dxf}};
constexpr std::array kThemes{Word<ExportTheme>{"light", ExportTheme::light},
                             Word<ExportTheme>{"dark", ExportTheme::dark},
                             Word<ExportTheme>{"tansy", ExportTheme::tansy}};
constexpr std::array kOrientations{Word<PageOrientation>{"automatic", PageOrientation::automatic},
                                   Word<PageOrientation>{"portrait", PageOrientation::portrait},
                                   Word<PageOrientation>{"landscape", PageOrientation::landscape}};
constexpr std::array kDxfVersions{Word<DxfVersion>{"r12", DxfVersion::r12},
                                  Word<DxfVersion>{"2000", DxfVersion::r2000},
                                  Word<DxfVersion>{"r2000", DxfVersion::r2000}};
constexpr std::array kDxfLayerings{Word<DxfLayering>{"system", DxfLayering::bySystem},
                                   Word<DxfLayering>{"kind", DxfLayering::byKind}};
constexpr std::array kDxfUnits{Word<DxfExportUnit>{"ft", DxfExportUnit::feet},
                               Word<DxfExportUnit>{"in", DxfExportUnit::inches},
                               Word<DxfExportUnit>{"mm", DxfExportUnit::millimeters}};
constexpr std::array kSchedules{Word<ExportSchedule>{"openings", ExportSchedule::openings},
                                Word<ExportSchedule>{"rooms", ExportSchedule::rooms},
                                Word<ExportSchedule>{"takeoff", ExportSchedule::takeoff}};
constexpr std::array kSwitches{Word<bool>{"on", true}, Word<bool>{"off", false}};

// "clean,fill,weights", any of them in any order, or "none".
PlanLook lookOf(const std::string& text) {
  PlanLook look;
  if (text == "none") return look;
  std::istringstream words(text);
  for (std::string word; std::getline(words, word, ',');) {
    bool* part = planLookPart(look, word);
    if (part == nullptr) {
      refuse(fmt::format("\"{}\" is not a look; there are clean, fill and weights, or none.", word));
    }
    *part = true;
  }
  return look;
}

struct Option {
  std::string_view name;
  void (*set)(ExportOptions& options, const std::string& value);
};

constexpr std::array kOptions{
    Option{"size", [](ExportOptions& o, const std::string& v) { o.size = sizeOf(v); }},
    Option{"pixel-ratio", [](ExportOptions& o, const std::string& v) { o.pixelRatio = pixelRatioOf(v); }},
    Option{"paper", [](ExportOptions& o, const std::string& v) { o.paper = paperOf(v); }},
    Option{"scale", [](ExportOptions& o, const std::string& v) { o.scale = scaleOf(v); }},
    Option{"orientation",
           [](ExportOptions& o, const std::string& v) {
             o.orientation =
                 wordOf(v, kOrientations, "is not a way a sheet lies; there are portrait and landscape");
           }},
    Option{"theme",
           [](ExportOptions& o, const std::string& v) {
             o.theme = wordOf(v, kThemes, "is not a theme; there are light, dark and tansy");
           }},
    Option{"grid", [](ExportOptions& o,
                      const std::string& v) { o.showGrid = wordOf(v, kSwitches, "is neither on nor off"); }},
    Option{"look", [](ExportOptions& o, const std::string& v) { o.look = lookOf(v); }},
    Option{"dxf",
           [](ExportOptions& o, const std::string& v) {
             o.dxf.version = wordOf(v, kDxfVersions, "is not a version of DXF; there are r12 and 2000");
           }},
    Option{"dxf-layers",
           [](ExportOptions& o, const std::string& v) {
             o.dxf.layering =
                 wordOf(v, kDxfLayerings, "is not a way to name layers; there are system and kind");
           }},
    Option{"dxf-units",
           [](ExportOptions& o, const std::string& v) {
             o.dxf.unit = wordOf(v, kDxfUnits, "is not a unit of DXF files; there are in, ft and mm");
           }},
    Option{"schedule",
           [](ExportOptions& o, const std::string& v) {
             o.schedule = wordOf(v, kSchedules, "is not a schedule; there are openings, rooms and takeoff");
           }},
};

constexpr auto kOptionNames = [] {
  std::array<std::string_view, kOptions.size()> names{};
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = kOptions[i].name;
  return names;
}();

// With what the look of the plan and its openings paint beyond the entities: mitred corners, the leaves of
// doors.
std::optional<SketchBox> withPlan(std::optional<SketchBox> box, const EntityList& entities,
                                  std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  const auto add = [&box](const SketchBox& part) {
    if (isFinite(part)) box = box ? box->united(part) : part;
  };
  if (options.look && options.look->cleanWalls) {
    JoinedWalls::of(entities, systems).visitAll([&](const JoinedWall& wall) {
      for (const SketchPoint corner : wall.body.outline) add(SketchBox::centered(corner, 0));
    });
  }
  if (options.openings != nullptr) {
    for (const PlacedOpening& placed : options.openings->all()) {
      if (placed.fit != OpeningFit::fits) continue;
      add(openingBounds(openingShape(placed.opening, placed.wall)));
    }
  }
  if (options.annotations != nullptr) {
    for (const Annotation& annotation : *options.annotations) add(annotation.box);
  }
  return box;
}

// The drawing on a sheet that is just as large as it needs to be.
PicturePage ownSheet(const SketchBox& box, DrawingScale scale) {
  const double points = scale.pointsPerUnit();
  PicturePage page;
  page.margin = kOwnSheetMargin;
  page.size = {box.width() * points + 2 * page.margin, box.height() * points + 2 * page.margin};
  // Written so that what is not a number is refused too.
  if (!(page.size.width <= kLargestSheetSide && page.size.height <= kLargestSheetSide)) {
    throw PageLayoutError(
        fmt::format("At {} the drawing would be more than {:g} inches long. Choose a smaller scale.",
                    drawingScaleText(scale), kLargestSheetSide / kPointsPerInch));
  }
  page.viewport = viewportWith({box.minX, box.maxY}, {page.margin, page.margin}, points);
  return page;
}

std::vector<PicturePage> paperPages(const EntityList& entities, std::span<const WallSystemSpec> systems,
                                    const ExportOptions& options) {
  const auto box = withPlan(paintedBounds(entities, systems), entities, systems, options);
  if (!options.paper) return {ownSheet(box.value_or(SketchBox{}), *options.scale)};
  const PageLayout layout =
      layOutPages(box, {.paper = *options.paper, .orientation = options.orientation, .scale = options.scale});
  std::vector<PicturePage> pages;
  for (int i = 0; i < layout.pageCount(); ++i) {
    pages.push_back({layout.page, layout.viewport(i), layout.margin, layout.pageCount() > 1});
    if (layout.pageCount() == 1 || options.documentName.empty()) continue;
    const std::string scale = options.scale ? ", " + drawingScaleText(*options.scale) : "";
    pages.back().label =
        fmt::format("{}, page {} of {}, row {}, column {}{}", options.documentName, i + 1, layout.pageCount(),
                    i / layout.columns + 1, i % layout.columns + 1, scale);
  }
  return pages;
}

}  // namespace

void takePlan(ExportOptions& options, const Sketch& sketch) {
  const Drawing& drawing = sketch.drawing;
  options.openings = std::make_shared<const OpeningLayout>(openingLayout(sketch));
  const RoomPlan rooms = needsRooms(drawing.plan) ? roomPlan(drawing) : RoomPlan();
  const double perInch =
      options.scale ? kPointsPerInch / options.scale->pointsPerUnit() : unitsPerInch(drawing.plan);
  options.annotations = std::make_shared<const std::vector<Annotation>>(
      annotations(drawing, &rooms, *options.openings, perInch));
}

std::string_view fileEnding(ExportFormat format) { return kEndings[static_cast<std::size_t>(format)].word; }

ExportFormat exportFormatOf(const std::filesystem::path& path) {
  const std::string extension = lowerCased(path.extension().string());
  for (const auto& [word, format] : kEndings) {
    if (word == extension) return format;
  }
  refuse(
      fmt::format("Cannot export to \"{}\": its name must end in .png, .svg, .pdf or .dxf.", path.string()));
}

bool isTableFile(const std::filesystem::path& path) {
  return lowerCased(path.extension().string()) == ".csv";
}

std::span<const std::string_view> exportOptionNames() { return kOptionNames; }

void setExportOption(ExportOptions& options, std::string_view name, const std::string& value) {
  for (const Option& option : kOptions) {
    if (option.name != name) continue;
    option.set(options, value);
    return;
  }
  refuse(fmt::format("There is no export option \"{}\".{}", name,
                     didYouMean(name, {kOptionNames.begin(), kOptionNames.end()})));
}

std::vector<PicturePage> picturePages(ExportFormat format, const EntityList& entities,
                                      std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  if (!options.isOnPaper() && options.orientation != PageOrientation::automatic) {
    refuse("How a sheet lies can be told only with a sheet.");
  }
  std::vector<PicturePage> pages =
      options.isOnPaper()
          ? paperPages(entities, systems, options)
          : std::vector{PicturePage{
                options.size,
                fittedViewport(withPlan(drawingBounds(entities), entities, systems, options), options.size),
                0}};
  if (format != ExportFormat::pdf && pages.size() > 1) {
    refuse(fmt::format(
        "At {} the drawing takes {} sheets of {}, and only a PDF has pages. Choose a smaller scale, "
        "larger paper or PDF.",
        drawingScaleText(*options.scale), pages.size(), options.paper->name));
  }
  const double longest =
      std::max(pages.front().size.width, pages.front().size.height) * pixelsPerPoint(options);
  if (format == ExportFormat::png && longest > kLargestExportSide) {
    refuse(
        fmt::format("The picture would be {:.0f} pixels long, and {} is the most. Choose a smaller size or "
                    "pixel ratio.",
                    longest, kLargestExportSide));
  }
  return pages;
}

double pixelsPerPoint(const ExportOptions& options) {
  return options.pixelRatio * (options.isOnPaper() ? kPicturePixelsPerInch / kPointsPerInch : 1);
}

}  // namespace ostrelon
