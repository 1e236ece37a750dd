// PDF 1.4 files of straight and curved strokes, fills and plain text, written as they are painted.
//
//   PdfWriter pdf(write);
//   CanvasPainter& painter = pdf.beginPage({1224, 792});
//   paintBackground(painter, frame);
//   pdf.finish();
//
// Strokes of one pen that follow each other become one path, coordinates have three decimals, and the
// content is compressed while it is written, so that a drawing of a million lines takes little time and
// no memory of its own. Painting a stroke that is not wholly opaque is kept apart from its neighbours,
// since overlapping ones add up.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/sketch_point.h"
#include "interaction/canvas_painter.h"
#include "platform/date.h"

namespace ostrelon {

/// What a file says of itself.
struct PdfInformation {
  std::string title = "Ostrelon drawing";  ///< UTF-8
  std::optional<Date> date;                ///< absent: none is written
};

class PdfWriter {
 public:
  /// Takes the next piece of the file.
  using Write = std::function<void(std::string_view bytes)>;

  explicit PdfWriter(Write write, PdfInformation information = {});
  PdfWriter(const PdfWriter&) = delete;
  PdfWriter& operator=(const PdfWriter&) = delete;
  ~PdfWriter();

  /// Starts a page of this size, in points of 1/72 inch. Its painter counts in points from the upper left
  /// corner, y pointing down, and serves until the next page. Numbers that are not finite paint nothing.
  CanvasPainter& beginPage(SketchSize size);
  /// What is painted on this page from now on shows within the rectangle alone.
  void clip(const SketchBox& rect);
  /// Ends the file. Nothing can be painted afterwards.
  void finish();

 private:
  class File;
  class Page;
  std::unique_ptr<File> file_;
  std::unique_ptr<Page> page_;
};

}  // namespace ostrelon
