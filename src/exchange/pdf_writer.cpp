#include "exchange/pdf_writer.h"

#include <fmt/format.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <numbers>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "exchange/pdf_typeface.h"
#include "platform/user_error.h"

namespace ostrelon {

namespace {

constexpr std::size_t kPieceSize = std::size_t{64} << 10;
/// A path of more strokes than this is ended: programs that read the file hold a whole path.
constexpr int kMostStrokesInPath = 1000;
/// Beyond this, in points, programs that read PDF no longer agree on a number.
constexpr double kLargestCoordinate = 1e6;
/// How far the control points of a quarter of a circle lie along its tangents, in radii:
/// 4/3 · (√2 − 1).
constexpr double kQuarterCircle = 0.5522847498307936;
// The objects that every file has, by number.
constexpr int kCatalog = 1;
constexpr int kPages = 2;
constexpr int kResources = 3;
constexpr int kInformation = 4;

void appendNumber(std::string& text, double value) {
  if (!std::isfinite(value)) value = 0;
  const auto thousandths = static_cast<std::int64_t>(
      std::llround(std::clamp(value, -kLargestCoordinate, kLargestCoordinate) * 1000));
  const auto magnitude = static_cast<std::uint64_t>(std::abs(thousandths));
  std::array<char, 24> digits{};
  if (thousandths < 0) text += '-';
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), magnitude / 1000).ptr;
  text.append(digits.data(), end);
  auto fraction = static_cast<unsigned>(magnitude % 1000);
  if (fraction == 0) return;
  text += '.';
  for (unsigned place = 100; fraction > 0; place /= 10) {
    text += static_cast<char>('0' + fraction / place);
    fraction %= place;
  }
}

int thousandthsOf(double opacity) {
  return static_cast<int>(std::lround(std::clamp(opacity, 0.0, 1.0) * 1000));
}

// UTF-16 in hexadecimal.
std::string utf16Digits(char32_t c) {
  if (c <= 0xFFFF) return fmt::format("{:04X}", static_cast<unsigned>(c));
  return fmt::format("{:04X}{:04X}", static_cast<unsigned>(U16_LEAD(c)), static_cast<unsigned>(U16_TRAIL(c)));
}

// A text of the file's information: UTF-16 in hexadecimal, which every character has.
std::string textString(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  std::string result = "<FEFF";
  for (std::size_t at = 0; at < text.size();) {
    UChar32 c = 0;
    U8_NEXT(bytes, at, text.size(), c);
    if (c < 0) c = 0xFFFD;
    result += utf16Digits(static_cast<char32_t>(c));
  }
  return result + ">";
}

// The bytes as a stream of the file holds them, compressed.
std::string deflated(std::string_view bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string result(size, '\0');
  if (compress(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
               static_cast<uLong>(bytes.size())) != Z_OK) {
    throw UserError("There is not enough memory to write a PDF.");
  }
  result.resize(size);
  return result;
}

// Which character each letter of the typeface stands for, so that text can be searched and copied.
std::string characterMap(const std::map<std::uint16_t, char32_t>& letters) {
  constexpr std::size_t kMostInBlock = 100;
  std::string text =
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
  for (auto letter = letters.begin(); letter != letters.end();) {
    const auto left = static_cast<std::size_t>(std::distance(letter, letters.end()));
    const std::size_t count = std::min(left, kMostInBlock);
    text += fmt::format("{} beginbfchar\n", count);
    for (std::size_t i = 0; i < count; ++i, ++letter) {
      text += fmt::format("<{:04X}> <{}>\n", letter->first, utf16Digits(letter->second));
    }
    text += "endbfchar\n";
  }
  return text + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

// " /CreationDate (D:20260301120000Z)"; empty for none.
std::string dateEntry(const std::optional<Date>& date) {
  if (!date) return {};
  std::string digits;
  for (const char c : iso8601Text(*date)) {
    if (c >= '0' && c <= '9') digits += c;
  }
  return " /CreationDate (D:" + digits + "Z)";
}

}  // namespace

// The objects of the file and where they lie.
class PdfWriter::File {
 public:
  File(Write write, PdfInformation information)
      : write_(std::move(write)), information_(std::move(information)) {
    offsets_.resize(kInformation + 1);
    // Bytes beyond ASCII show programs that carry files that this one is binary.
    put("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
  }

  int newObject() {
    offsets_.push_back(0);
    return static_cast<int>(offsets_.size()) - 1;
  }
  void beginObject(int number) {
    offsets_[static_cast<std::size_t>(number)] = position_;
    put(fmt::format("{} 0 obj\n", number));
  }
  void put(std::string_view bytes) {
    write_(bytes);
    position_ += bytes.size();
  }
  std::uint64_t position() const { return position_; }

  /// The name of the state in which strokes and fills have this opacity.
  std::string opacityName(int thousandths) {
    opacities_.insert(thousandths);
    return fmt::format("/A{}", thousandths);
  }
  void addPage(int number) { pages_.push_back(number); }
  PdfTypeface& typeface() { return typeface_; }

  void finish() {
    const std::string type = typeface_.isUsed() ? fmt::format("/Font << /F1 {} 0 R >> ", putTypeface()) : "";
    beginObject(kCatalog);
    put(fmt::format("<< /Type /Catalog /Pages {} 0 R >>\nendobj\n", kPages));
    beginObject(kPages);
    std::string kids;
    for (const int page : pages_) kids += fmt::format("{} 0 R ", page);
    put(fmt::format("<< /Type /Pages /Count {} /Kids [ {}] >>\nendobj\n", pages_.size(), kids));
    beginObject(kResources);
    std::string states;
    for (const int thousandths : opacities_) {
      std::string opacity;
      appendNumber(opacity, thousandths / 1000.0);
      states += fmt::format("/A{0} << /CA {1} /ca {1} >> ", thousandths, opacity);
    }
    put(fmt::format("<< /ExtGState << {}>> {}>>\nendobj\n", states, type));
    beginObject(kInformation);
    put(fmt::format("<< /Title {} /Creator (Ostrelon) /Producer (Ostrelon){} >>\nendobj\n",
                    textString(information_.title), dateEntry(information_.date)));
    const std::uint64_t table = position_;
    put(fmt::format("xref\n0 {}\n0000000000 65535 f \n", offsets_.size()));
    for (std::size_t number = 1; number < offsets_.size(); ++number) {
      put(fmt::format("{:010} 00000 n \n", offsets_[number]));
    }
    put(fmt::format("trailer\n<< /Size {} /Root {} 0 R /Info {} 0 R >>\nstartxref\n{}\n%%EOF\n",
                    offsets_.size(), kCatalog, kInformation, table));
  }

 private:
  int putStream(std::string_view bytes, std::string_view entries) {
    const int number = newObject();
    const std::string packed = deflated(bytes);
    beginObject(number);
    put(fmt::format("<< /Length {} /Filter /FlateDecode{} >>\nstream\n", packed.size(), entries));
    put(packed);
    put("\nendstream\nendobj\n");
    return number;
  }
  int putObject(std::string_view entries) {
    const int number = newObject();
    beginObject(number);
    put(fmt::format("<< {} >>\nendobj\n", entries));
    return number;
  }

  // The letters used of the typeface, with all that tells a reader about them: the number of its object.
  int putTypeface() {
    // Six letters before the name say that it is a part of the typeface.
    constexpr std::string_view kName = "OSTREL+JetBrainsMono-Medium";
    constexpr int kFixedPitchAndOwnLetters = 5;
    constexpr int kWidth = static_cast<int>(PdfTypeface::kLetterWidth * 1000);
    const std::string bytes = typeface_.subset();
    const int letters = putStream(bytes, fmt::format(" /Length1 {}", bytes.size()));
    const PdfTypeface::Metrics metrics = typeface_.metrics();
    const int descriptor = putObject(fmt::format(
        "/Type /FontDescriptor /FontName /{} /Flags {} /FontBBox [ {} {} {} {} ] /ItalicAngle 0 /Ascent {} "
        "/Descent {} /CapHeight {} /StemV 80 /FontFile2 {} 0 R",
        kName, kFixedPitchAndOwnLetters, metrics.left, metrics.bottom, metrics.right, metrics.top,
        metrics.ascent, metrics.descent, metrics.capitals, letters));
    const int font = putObject(
        fmt::format("/Type /Font /Subtype /CIDFontType2 /BaseFont /{} /CIDSystemInfo << /Registry (Adobe) "
                    "/Ordering (Identity) /Supplement 0 >> /DW {} /CIDToGIDMap /Identity "
                    "/FontDescriptor {} 0 R",
                    kName, kWidth, descriptor));
    const int characters = putStream(characterMap(typeface_.used()), "");
    return putObject(
        fmt::format("/Type /Font /Subtype /Type0 /BaseFont /{} /Encoding /Identity-H "
                    "/DescendantFonts [ {} 0 R ] /ToUnicode {} 0 R",
                    kName, font, characters));
  }

  Write write_;
  PdfInformation information_;
  PdfTypeface typeface_;
  std::uint64_t position_ = 0;
  std::vector<std::uint64_t> offsets_;  // by number of the object; 0 is none
  std::vector<int> pages_;
  std::set<int> opacities_;
};

// One page: its content, compressed on the way, and the pen and brush that are in force in it.
class PdfWriter::Page final : public CanvasPainter {
 public:
  Page(File& file, SketchSize size)
      : file_(file), size_(size), content_(file.newObject()), length_(file.newObject()) {
    file_.beginObject(content_);
    file_.put(fmt::format("<< /Length {} 0 R /Filter /FlateDecode >>\nstream\n", length_));
    start_ = file_.position();
    if (deflateInit(&deflater_, Z_BEST_SPEED) != Z_OK) {
      throw UserError("There is not enough memory to write a PDF.");
    }
    // Points from the upper left corner, y down; the miter limit of every stroke.
    text_ += "1 0 0 -1 0 ";
    number(size.height);
    text_ += "cm ";
    number(kMiterLimit);
    text_ += "M\n";
  }
  ~Page() override { deflateEnd(&deflater_); }

  void finish() {
    endStrokes();
    compress(Z_FINISH);
    const std::uint64_t length = file_.position() - start_;
    file_.put("\nendstream\nendobj\n");
    file_.beginObject(length_);
    file_.put(fmt::format("{}\nendobj\n", length));
    const int page = file_.newObject();
    file_.beginObject(page);
    std::string box;
    appendNumber(box, size_.width);
    box += ' ';
    appendNumber(box, size_.height);
    file_.put(
        fmt::format("<< /Type /Page /Parent {} 0 R /MediaBox [ 0 0 {} ] /Resources {} 0 R "
                    "/Contents {} 0 R >>\nendobj\n",
                    kPages, box, kResources, content_));
    file_.addPage(page);
  }

  void clip(const SketchBox& rect) {
    endStrokes();
    rectangle(rect);
    text_ += "W n\n";
  }

  void strokePath(const CanvasPath& path, const Stroke& stroke) override {
    beginStroke(stroke);
    pieces(path);
    endStroke();
  }

  void strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) override {
    for (const CanvasSegment& segment : segments) {
      if (!isFinite(segment.from) || !isFinite(segment.to)) continue;
      beginStroke(stroke);
      moveTo(segment.from);
      lineTo(segment.to);
      endStroke();
    }
  }

  void strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) override {
    beginStroke(stroke);
    circle(ellipse);
    endStroke();
  }

  void strokeArc(const CanvasArc& arc, const CanvasPath& chords, const Stroke& stroke) override {
    if (!areFinite(chords.points(chords.pieces().front()))) return;
    beginStroke(stroke);
    const int quarters = std::max(1, static_cast<int>(std::ceil(arc.sweep / (std::numbers::pi / 2) - 1e-9)));
    const double step = arc.sweep / quarters;
    // How far the control points lie along the tangents, in radii: 4/3 · tan(step / 4).
    const double along = 4.0 / 3.0 * std::tan(step / 4);
    SketchPoint from = arc.at(arc.startAngle);
    moveTo(from);
    for (int i = 1; i <= quarters; ++i) {
      const double angle = arc.startAngle + step * i;
      const SketchPoint to = arc.at(angle);
      const auto tangent = [&](double at) {
        return SketchPoint{-arc.radius * std::sin(at) * along, -arc.radius * std::cos(at) * along};
      };
      curveTo(from + tangent(angle - step), to - tangent(angle), to);
      from = to;
    }
    endStroke();
  }

  void strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) override {
    beginStroke(stroke);
    roundedRectangle(rect, cornerRadius);
    endStroke();
  }

  void fillPath(const CanvasPath& path, const Fill& fill) override {
    beginFill(fill);
    pieces(path);
    text_ += "f\n";
    compressWhenFull();
  }

  void fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) override {
    beginFill(fill);
    circle(ellipse);
    text_ += "f\n";
    compressWhenFull();
  }

  void fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) override {
    beginFill(fill);
    roundedRectangle(rect, cornerRadius);
    text_ += "f\n";
    compressWhenFull();
  }

  void drawText(std::string_view text, SketchPoint center, double height, const Fill& fill,
                double angle) override {
    beginFill(fill);
    const PdfTypeface::Letters letters = file_.typeface().letters(text);
    text_ += "BT /F1 ";
    number(height);
    text_ += "Tf ";
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (const double part : {cosine, -sine, -sine, -cosine}) number(part);
    const double left = letters.count * PdfTypeface::kLetterWidth * height / 2;
    const double down = PdfTypeface::kMiddle * height;
    number(center.x - left * cosine + down * sine);
    number(center.y + left * sine + down * cosine);
    text_ += "Tm <" + letters.numbers + "> Tj ET\n";
    compressWhenFull();
  }

 private:
  // --- Pen and brush

  void beginStroke(const Stroke& stroke) {
    if (stroke_ != stroke) {
      endStrokes();
      useOpacity(stroke.opacity);
      color(stroke.color, "RG ");
      number(stroke.width);
      text_ += "w ";
      text_ += stroke.cap == LineCap::round ? "1 J " : "0 J ";
      text_ += stroke.join == LineJoin::round ? "1 j [" : "0 j [";
      if (stroke.isDashed()) {
        number(stroke.dash.on);
        number(stroke.dash.off);
      }
      text_ += "] ";
      number(stroke.isDashed() ? stroke.dashOffset : 0);
      text_ += "d\n";
      stroke_ = stroke;
    }
    ++strokes_;
  }

  // Opaque strokes of one pen look the same as one path and as many.
  void endStroke() {
    if (thousandthsOf(stroke_->opacity) < 1000 || strokes_ >= kMostStrokesInPath) endStrokes();
    compressWhenFull();
  }

  void endStrokes() {
    if (strokes_ > 0) text_ += "S\n";
    strokes_ = 0;
  }

  void beginFill(const Fill& fill) {
    endStrokes();
    if (thousandthsOf(fill.opacity) != opacity_) stroke_.reset();
    useOpacity(fill.opacity);
    if (fillColor_ == fill.color) return;
    color(fill.color, "rg\n");
    fillColor_ = fill.color;
  }

  void useOpacity(double opacity) {
    const int thousandths = thousandthsOf(opacity);
    if (thousandths == opacity_) return;
    text_ += file_.opacityName(thousandths) + " gs ";
    opacity_ = thousandths;
  }

  void color(Color color, std::string_view command) {
    for (const double part : {color.red, color.green, color.blue}) number(std::clamp(part, 0.0, 1.0));
    text_ += command;
  }

  // --- Paths

  void number(double value) {
    appendNumber(text_, value);
    text_ += ' ';
  }
  void point(SketchPoint at) {
    number(at.x);
    number(at.y);
  }
  void moveTo(SketchPoint at) {
    point(at);
    text_ += "m ";
  }
  void lineTo(SketchPoint at) {
    point(at);
    text_ += "l\n";
  }
  void curveTo(SketchPoint first, SketchPoint second, SketchPoint end) {
    point(first);
    point(second);
    point(end);
    text_ += "c\n";
  }

  void pieces(const CanvasPath& path) {
    for (const CanvasPath::Piece& piece : path.pieces()) {
      const auto points = path.points(piece);
      if (points.empty() || !areFinite(points)) continue;
      moveTo(points.front());
      for (const SketchPoint at : points.subspan(1)) {
        lineTo(at);
        compressWhenFull();
      }
      if (piece.closed) text_ += "h\n";
    }
  }

  void circle(const CanvasEllipse& ellipse) {
    const auto [center, radius] = ellipse;
    if (!isFinite(center) || !std::isfinite(radius)) return;
    const SketchBox box = SketchBox::centered(center, radius);
    roundedRectangle(box, radius);
  }

  void rectangle(const SketchBox& rect) {
    for (const double part : {rect.minX, rect.minY, rect.width(), rect.height()}) number(part);
    text_ += "re\n";
  }

  void roundedRectangle(const SketchBox& rect, double cornerRadius) {
    if (!isFinite(rect)) return;
    const double radius = std::min({cornerRadius, rect.width() / 2, rect.height() / 2});
    if (!(radius > 0)) {
      rectangle(rect);
      return;
    }
    const double rest = radius * (1 - kQuarterCircle);
    const auto [minX, minY, maxX, maxY] = rect;
    moveTo({minX + radius, minY});
    lineTo({maxX - radius, minY});
    curveTo({maxX - rest, minY}, {maxX, minY + rest}, {maxX, minY + radius});
    lineTo({maxX, maxY - radius});
    curveTo({maxX, maxY - rest}, {maxX - rest, maxY}, {maxX - radius, maxY});
    lineTo({minX + radius, maxY});
    curveTo({minX + rest, maxY}, {minX, maxY - rest}, {minX, maxY - radius});
    lineTo({minX, minY + radius});
    curveTo({minX, minY + rest}, {minX + rest, minY}, {minX + radius, minY});
    text_ += "h\n";
  }

  // --- Compression

  void compressWhenFull() {
    if (text_.size() >= kPieceSize) compress(Z_NO_FLUSH);
  }

  void compress(int flush) {
    deflater_.next_in = reinterpret_cast<Bytef*>(text_.data());
    deflater_.avail_in = static_cast<uInt>(text_.size());
    do {
      deflater_.next_out = reinterpret_cast<Bytef*>(compressed_.data());
      deflater_.avail_out = static_cast<uInt>(compressed_.size());
      deflate(&deflater_, flush);
      file_.put({compressed_.data(), compressed_.size() - deflater_.avail_out});
    } while (deflater_.avail_out == 0);
    text_.clear();
  }

  File& file_;
  SketchSize size_;
  int content_;
  int length_;
  std::uint64_t start_ = 0;
  z_stream deflater_{};
  std::string text_;  // content that has not been compressed yet
  std::array<char, kPieceSize> compressed_{};
  std::optional<Stroke> stroke_;
  std::optional<Color> fillColor_;
  int opacity_ = 1000;  // thousandths
  int strokes_ = 0;     // in the path that is open
};

PdfWriter::PdfWriter(Write write, PdfInformation information)
    : file_(std::make_unique<File>(std::move(write), std::move(information))) {}

PdfWriter::~PdfWriter() = default;

CanvasPainter& PdfWriter::beginPage(SketchSize size) {
  if (page_) page_->finish();
  page_.reset();
  page_ = std::make_unique<Page>(*file_, size);
  return *page_;
}

void PdfWriter::clip(const SketchBox& rect) { page_->clip(rect); }

void PdfWriter::finish() {
  if (page_) page_->finish();
  page_.reset();
  file_->finish();
}

}  // namespace ostrelon
