// How a drawing is exported: the kind of file, its size or its sheet and scale, its colours. The options are
// given by name and text, so that the command line, scripts and dialogs share one way to read them and one
// set of error texts.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/plan.h"
#include "core/sketch.h"
#include "core/sketch_viewport.h"
#include "exchange/dxf_version.h"
#include "exchange/page_layout.h"
#include "geometry/annotation.h"
#include "geometry/openings.h"
#include "platform/date.h"

namespace ostrelon {

/// An option that cannot be understood or does not fit the others; or a file name that names no kind
/// of file that is written. The text is one sentence.
class ExportOptionError : public UserError {
 public:
  using UserError::UserError;
};

enum class ExportFormat { png, svg, pdf, dxf };
enum class ExportSchedule { openings, rooms, takeoff };
enum class ExportTheme { light, dark, tansy };

/// The size of an exported picture where none is given, view points.
inline constexpr SketchSize kDefaultExportSize{1200, 800};
/// The largest side of an exported picture, pixels.
inline constexpr int kLargestExportSide = 16384;
inline constexpr int kLargestPixelRatio = 4;
/// Pixels to the inch of a PNG of a sheet, at a pixel ratio of 1.
inline constexpr double kPicturePixelsPerInch = 96;

struct ExportOptions {
  /// View points: pixels of a PNG, user units of an SVG, points of a PDF. Not used on paper.
  SketchSize size = kDefaultExportSize;
  /// Pixels of a PNG to a view point, 1 to 4.
  int pixelRatio = 1;

  /// The sheet; absent with a scale: one just large enough.
  std::optional<PaperSize> paper;
  /// The true scale; absent with a sheet: as large as the sheet takes.
  std::optional<DrawingScale> scale;
  PageOrientation orientation = PageOrientation::automatic;

  ExportTheme theme = ExportTheme::light;
  bool showGrid = false;
  /// The look of the plan. Absent: where a document is exported its own, else everything as it is drawn.
  std::optional<PlanLook> look;
  DxfForm dxf;
  /// What a .csv file holds.
  std::optional<ExportSchedule> schedule;

  /// The openings of the walls, for whoever exports a drawing to give; null: none.
  std::shared_ptr<const OpeningLayout> openings;
  /// The room labels, dimensions and notes, likewise.
  std::shared_ptr<const std::vector<Annotation>> annotations;

  /// The document's name and the present time, for files and sheets that tell them; may be absent.
  std::string documentName = {};
  std::optional<Date> date = std::nullopt;

  bool isOnPaper() const { return paper.has_value() || scale.has_value(); }
};

/// Gives the options the openings and annotations of a drawing. Sizes on paper are those at the scale of the
/// options, or else at the drawing's.
void takePlan(ExportOptions& options, const Sketch& sketch);

/// ".pdf" and so on.
std::string_view fileEnding(ExportFormat format);
/// By the ending of the name, without regard to case. Throws `ExportOptionError`.
ExportFormat exportFormatOf(const std::filesystem::path& path);

/// Whether the file is a table, ".csv", which holds a schedule.
bool isTableFile(const std::filesystem::path& path);

/// "size", "pixel-ratio", "paper", "scale", "orientation", "theme", "grid", "look", "dxf", "dxf-layers",
/// "dxf-units", "schedule".
std::span<const std::string_view> exportOptionNames();
/// Reads one option: size 1200x800, pixel-ratio 2, paper "ARCH D", scale 1/4in=1ft, orientation
/// portrait or landscape, theme light, dark or tansy, grid on or off, look clean,fill,weights or none, dxf
/// r12 or 2000, dxf-layers system or kind, dxf-units ft, in or mm, schedule openings, rooms or takeoff.
/// Throws `ExportOptionError`.
void setExportOption(ExportOptions& options, std::string_view name, const std::string& value);

/// One page of a picture.
struct PicturePage {
  SketchSize size;            ///< view points; on paper points, 72 to the inch
  SketchViewport viewport;    ///< from sketch units to those points
  double margin = 0;          ///< around the part that is painted, in the same unit
  bool hasNeighbors = false;  ///< one of several sheets: what it shows ends at the margin
  std::string label = {};     ///< of one of several: "House, page 2 of 6, row 1, column 2, 1/4" = 1'-0""
};

/// The pages that a picture of the drawing takes. Throws `PageLayoutError`, and `ExportOptionError`
/// when a PNG or SVG would need more than one, or a PNG too many pixels.
std::vector<PicturePage> picturePages(ExportFormat format, const EntityList& entities,
                                      std::span<const WallSystemSpec> systems, const ExportOptions& options);

/// The pixels of a PNG to one of its page's points.
double pixelsPerPoint(const ExportOptions& options);

}  // namespace ostrelon
