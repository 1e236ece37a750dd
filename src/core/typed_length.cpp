#include "core/typed_length.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <numeric>
#include <optional>
#include <utility>

#include "core/length_text.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr double kInchesPerFoot = 12;
constexpr double kSixteenthsPerInch = 16;

// Plain marks for the typographic ones, and a blank for each run of white space.
std::string withPlainMarks(std::string_view text) {
  constexpr std::array<std::pair<std::string_view, char>, 4> marks{
      std::pair{"\u2032", '\''}, std::pair{"\u2019", '\''}, std::pair{"\u2033", '"'},
      std::pair{"\u201D", '"'}};
  std::string plain;
  for (const std::string& piece : splitAtWhiteSpace(text)) {
    if (!plain.empty()) plain += ' ';
    plain += piece;
  }
  for (const auto& [mark, replacement] : marks) {
    for (auto at = plain.find(mark); at != std::string::npos; at = plain.find(mark, at)) {
      plain.replace(at, mark.size(), 1, replacement);
    }
  }
  return plain;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// What is left of a text that is read from its front.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool isAtEnd() const { return rest_.empty(); }
  bool isAtDigit() const { return !rest_.empty() && isDigit(rest_.front()); }
  bool take(char expected) {
    if (rest_.empty() || rest_.front() != expected) return false;
    rest_.remove_prefix(1);
    return true;
  }
  // A hyphen or a blank or both, as they stand between feet, inches and fractions.
  bool takeSeparator() {
    const std::size_t before = rest_.size();
    take(' ');
    if (take('-')) take(' ');
    return rest_.size() < before;
  }
  // Digits with at most one point among them.
  std::optional<double> number() {
    std::size_t length = 0;
    bool hasPoint = false;
    while (length < rest_.size() && (isDigit(rest_[length]) || (rest_[length] == '.' && !hasPoint))) {
      hasPoint = hasPoint || rest_[length] == '.';
      ++length;
    }
    const auto value = parseNumber(rest_.substr(0, length));
    if (value) rest_.remove_prefix(length);
    return value;
  }

 private:
  std::string_view rest_;
};

struct Inches {
  double value = 0;
  bool hasFraction = false;
};

// Inches without their mark: `6`, `6.5`, `6-1/2`, `3/4`.
std::variant<Inches, LengthProblem> readInches(Reader& reader) {
  const auto first = reader.number();
  if (!first) return LengthProblem::notALength;
  double whole = 0;
  double numerator = *first;
  if (!reader.take('/')) {
    Reader ahead = reader;
    if (!ahead.takeSeparator() || !ahead.isAtDigit()) return Inches{*first, false};
    reader = ahead;
    whole = *first;
    numerator = reader.number().value_or(0);
    if (!reader.take('/')) return LengthProblem::notALength;
  }
  const auto denominator = reader.number();
  if (!denominator) return LengthProblem::notALength;
  for (const double part : {whole, numerator, *denominator}) {
    if (std::trunc(part) != part) return LengthProblem::notALength;
  }
  if (*denominator == 0) return LengthProblem::divisionByZero;
  return Inches{whole + numerator / *denominator, true};
}

LengthReading inFeet(double value) {
  if (!std::isfinite(value)) return LengthProblem::tooLarge;
  return value;
}

// `6 1/2`, from sixteenths of an inch; empty for none.
std::string sixteenthsText(double sixteenths) {
  const double inches = std::floor(sixteenths / kSixteenthsPerInch);
  const int rest = static_cast<int>(std::fmod(sixteenths, kSixteenthsPerInch));
  std::string text = inches > 0 ? fmt::format("{:.0f}", inches) : std::string();
  if (rest > 0) {
    const int divisor = std::gcd(rest, 16);
    text += fmt::format("{}{}/{}", text.empty() ? "" : " ", rest / divisor, 16 / divisor);
  }
  return text;
}

}  // namespace

LengthReading readLength(std::string_view text) {
  const std::string plain = withPlainMarks(text);
  if (const auto feet = parsePlainDecimal(plain)) return *feet;
  Reader reader(plain);
  const double sign = reader.take('-') ? -1 : 1;
  if (sign > 0) reader.take('+');

  double feet = 0;
  Reader ahead = reader;
  const auto first = ahead.number();
  const bool hasFeet = first && ahead.take('\'');
  if (hasFeet) {
    feet = *first;
    reader = ahead;
    if (reader.isAtEnd()) return inFeet(sign * feet);
    reader.takeSeparator();
  }
  const auto read = readInches(reader);
  if (const auto* problem = std::get_if<LengthProblem>(&read)) return *problem;
  const auto inches = std::get<Inches>(read);
  const bool isMarked = reader.take('"');
  if (!reader.isAtEnd()) return LengthProblem::notALength;
  if (!isMarked && !hasFeet) {
    // A plain number would have been read above, unless it is too large.
    return inches.hasFraction ? LengthProblem::unmarkedFraction : LengthProblem::tooLarge;
  }
  return inFeet(sign * (feet + inches.value / kInchesPerFoot));
}

std::string lengthProblemText(LengthProblem problem) {
  switch (problem) {
    case LengthProblem::notALength:
      return "Write a length as 12'6-1/2\", 6-1/2\", 12' or 12.5 (feet).";
    case LengthProblem::unmarkedFraction:
      return "A fraction is of an inch and ends in its mark: 6-1/2\".";
    case LengthProblem::divisionByZero:
      return "A fraction cannot be over 0.";
    case LengthProblem::tooLarge:
      return "That length is too large.";
  }
  return {};
}

bool continuesLength(std::string_view word, std::string_view next) {
  const std::string fraction = withPlainMarks(next);
  const auto slash = fraction.find('/');
  if (slash == std::string::npos || fraction.back() != '"') return false;
  const auto isWhole = [](std::string_view digits) {
    return !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
  };
  const std::string_view view = fraction;
  if (!isWhole(view.substr(0, slash)) || !isWhole(view.substr(slash + 1, view.size() - slash - 2)))
    return false;
  const std::string plain = withPlainMarks(word);
  if (plain.empty()) return false;
  if (plain.back() == '\'') return true;
  if (!isDigit(plain.back())) return false;
  const auto last = plain.find_last_not_of("0123456789");
  return last == std::string::npos || (plain[last] != '/' && plain[last] != '.');
}

std::string formatLength(double feet) {
  if (!std::isfinite(feet)) return "0\"";
  const double magnitude = std::fabs(feet);
  const double sixteenths = std::round(magnitude * kInchesPerFoot * kSixteenthsPerInch);
  if (sixteenths == 0) return "0\"";
  const std::string_view sign = feet < 0 ? "-" : "";
  if (!std::isfinite(sixteenths)) return fmt::format("{}{:.0f}'-0\"", sign, magnitude);
  const double whole = std::floor(sixteenths / (kInchesPerFoot * kSixteenthsPerInch));
  const double rest = std::fmod(sixteenths, kInchesPerFoot * kSixteenthsPerInch);
  if (whole == 0) return fmt::format("{}{}\"", sign, sixteenthsText(rest));
  const std::string_view noInches = rest < kSixteenthsPerInch ? rest > 0 ? "0 " : "0" : "";
  return fmt::format("{}{:.0f}'-{}{}\"", sign, whole, noInches, sixteenthsText(rest));
}

std::string formatInches(double feet) {
  const double sixteenths = std::round(std::fabs(feet) * kInchesPerFoot * kSixteenthsPerInch);
  if (!std::isfinite(feet) || sixteenths == 0) return "0\"";
  const std::string_view sign = feet < 0 ? "-" : "";
  if (!std::isfinite(sixteenths)) return fmt::format("{}{:g}\"", sign, std::fabs(feet));
  return fmt::format("{}{}\"", sign, sixteenthsText(sixteenths));
}

}  // namespace ostrelon
