// PDF files as a reader finds its way through them, and the content that is painted.
#include "exchange/pdf_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace ostrelon {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct PdfWriterTest : testing::Test {
  std::string file;
  PdfWriter pdf{[this](std::string_view bytes) { file += bytes; }};
  const Stroke pen{.color = {0, 0, 0}, .width = 1.5, .cap = LineCap::round, .join = LineJoin::round};

  /// The content of the page that was written first, unpacked.
  std::string content() {
    pdf.finish();
    const std::size_t start = file.find("stream\n") + 7;
    const std::size_t end = file.find("\nendstream");
    std::string unpacked(1 << 20, '\0');
    auto size = static_cast<uLongf>(unpacked.size());
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(unpacked.data()), &size,
                         reinterpret_cast<const Bytef*>(file.data() + start), end - start),
              Z_OK);
    unpacked.resize(size);
    return unpacked;
  }
  static int count(const std::string& text, const std::string& word) {
    int found = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++found;
    return found;
  }
};

TEST_F(PdfWriterTest, EveryObjectLiesWhereTheTableSays) {
  pdf.beginPage({612, 792}).fillRoundedRect({10, 10, 20, 20}, 3, {{1, 0, 0}, 0.5});
  pdf.beginPage({792, 612.5}).strokeEllipse({{50, 50}, 20}, pen);
  pdf.finish();
  const std::size_t table = std::stoul(file.substr(file.rfind("startxref\n") + 10));
  ASSERT_EQ(file.substr(table, 7), "xref\n0 ");
  const int objects = std::stoi(file.substr(table + 7));
  const std::size_t rows = file.find('\n', table + 7) + 1;
  ASSERT_EQ(objects, 11) << "none, four of the file and three a page";
  for (int number = 1; number < objects; ++number) {
    const std::size_t place = std::stoul(file.substr(rows + static_cast<std::size_t>(number) * 20, 10));
    EXPECT_TRUE(file.compare(place, std::to_string(number).size() + 7, std::to_string(number) + " 0 obj\n") ==
                0)
        << number;
  }
  EXPECT_THAT(file, HasSubstr("/Count 2"));
  EXPECT_THAT(file, HasSubstr("/MediaBox [ 0 0 792 612.5 ]"));
  EXPECT_THAT(file, HasSubstr("/A500 << /CA 0.5 /ca 0.5 >>"));
}

TEST_F(PdfWriterTest, StrokesOfOnePenAreOnePathUntilSomethingComesBetween) {
  CanvasPainter& page = pdf.beginPage({100, 100});
  const CanvasSegment segment{{1, 2}, {3.25, -4.0625}};
  for (int i = 0; i < 3; ++i) page.strokeSegments({&segment, 1}, pen);
  page.fillEllipse({{5, 5}, 2}, {{1, 1, 1}});
  page.strokeSegments({&segment, 1}, pen);
  const std::string text = content();
  EXPECT_EQ(count(text, "S\n"), 2);
  EXPECT_EQ(count(text, " w "), 1) << "the pen stands as it was";
  EXPECT_EQ(count(text, "1 2 m 3.25 -4.063 l\n"), 4);
  EXPECT_LT(text.find("S\n"), text.find("f\n"));
}

TEST_F(PdfWriterTest, StrokesThatLetThroughStayApart) {
  CanvasPainter& page = pdf.beginPage({100, 100});
  Stroke glass = pen;
  glass.opacity = 0.25;
  const CanvasSegment segment{{0, 0}, {9, 9}};
  for (int i = 0; i < 2; ++i) page.strokeSegments({&segment, 1}, glass);
  page.strokeSegments({&segment, 1}, pen);
  const std::string text = content();
  EXPECT_EQ(count(text, "S\n"), 3);
  EXPECT_THAT(text, HasSubstr("/A250 gs"));
  EXPECT_THAT(text, HasSubstr("/A1000 gs"));
}

TEST_F(PdfWriterTest, NumbersThatNoReaderTakesAreNotWritten) {
  CanvasPainter& page = pdf.beginPage({100, 100});
  const double inf = std::numeric_limits<double>::infinity();
  const CanvasSegment lost[] = {{{0, std::nan("")}, {1, 1}}, {{0, 0}, {inf, 1}}};
  page.strokeSegments(lost, pen);
  page.strokeEllipse({{inf, 0}, 2}, pen);
  const CanvasSegment far{{-1e300, 0}, {1e300, 0.0001}};
  page.strokeSegments({&far, 1}, pen);
  const std::string text = content();
  EXPECT_THAT(text, Not(HasSubstr("nan")));
  EXPECT_THAT(text, Not(HasSubstr("inf")));
  EXPECT_THAT(text, HasSubstr("-1000000 0 m 1000000 0 l\n"));
}

TEST_F(PdfWriterTest, SaysItsTitleAndWhenItWasMade) {
  std::string bytes;
  PdfWriter told([&](std::string_view piece) { bytes += piece; },
                 {"Étage", parseISO8601("2026-03-01T12:00:00Z")});
  told.beginPage({100, 100});
  told.finish();
  EXPECT_THAT(bytes, HasSubstr("/Title <FEFF00C90074006100670065> /Creator (Ostrelon) /Producer (Ostrelon) "
                               "/CreationDate (D:20260301120000Z)"));
}

// Programs that read the file find the letters in it, and the characters that they stand for.
TEST_F(PdfWriterTest, CarriesTheLettersOfItsText) {
  pdf.beginPage({100, 100}).drawText("é(é 漢", {50, 50}, 10, {{0, 0, 0}});
  const std::string text = content();
  const std::size_t begin = text.find("Tm <") + 4;
  const std::string numbers = text.substr(begin, text.find("> Tj", begin) - begin);
  ASSERT_EQ(numbers.size(), 20U) << "five letters, that unknown to the typeface a question mark";
  EXPECT_EQ(numbers.substr(0, 4), numbers.substr(8, 4));
  EXPECT_THAT(text, HasSubstr("1 0 0 -1 35 53.6 Tm"));
  EXPECT_THAT(file, HasSubstr("/BaseFont /OSTREL+JetBrainsMono-Medium"));
  EXPECT_THAT(file, HasSubstr("/FontFile2"));
  EXPECT_LT(file.size(), 8000U) << "the four letters alone";
}

TEST_F(PdfWriterTest, AnArcIsOneCurveAQuarter) {
  CanvasPath chords;
  chords.addSegment({60, 50}, {50, 60});
  const double right = std::numbers::pi / 2;
  pdf.beginPage({100, 100}).strokeArc({{50, 50}, 10, -right, 2 * right}, chords, pen);
  EXPECT_THAT(content(), HasSubstr("50 60 m 55.523 60 60 55.523 60 50 c\n"
                                   "60 44.477 55.523 40 50 40 c\nS\n"));
}

TEST_F(PdfWriterTest, ADashIsTold) {
  CanvasPainter& page = pdf.beginPage({100, 100});
  Stroke dashed = pen;
  dashed.dash = {4, 2.5};
  dashed.dashOffset = 1;
  CanvasPath path;
  path.addPiece(std::vector<SketchPoint>{{0, 0}, {5, 0}, {5, 5}}, true);
  page.strokePath(path, dashed);
  const std::string text = content();
  EXPECT_THAT(text, HasSubstr("[4 2.5 ] 1 d\n"));
  EXPECT_THAT(text, HasSubstr("0 0 m 5 0 l\n5 5 l\nh\n"));
}

}  // namespace
}  // namespace ostrelon
