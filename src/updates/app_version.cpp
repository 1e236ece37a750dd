#include "updates/app_version.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

/// The pieces between the separators, empty ones kept: one more than there are separators.
std::vector<std::string_view> splitAt(char separator, std::string_view text) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  while (true) {
    const std::size_t end = text.find(separator, start);
    pieces.push_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + 1;
  }
}

/// What comes before the first separator, and what comes after it if there is one.
std::pair<std::string_view, std::optional<std::string_view>> splitOnce(char separator,
                                                                       std::string_view text) {
  const std::size_t at = text.find(separator);
  if (at == std::string_view::npos) return {text, std::nullopt};
  return {text.substr(0, at), text.substr(at + 1)};
}

/// A whole decimal number, with "-" before it allowed, that fits 64 bits.
std::optional<std::int64_t> decimalInteger(std::string_view text) {
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

bool identifierBelow(const PreReleaseIdentifier& a, const PreReleaseIdentifier& b) {
  // Numbers come before texts in the variant, which is their order too; texts compare by bytes, and the bytes
  // of UTF-8 are in the order of the characters' values.
  return a < b;
}

}  // namespace

std::optional<AppVersion> parseVersion(std::string_view text) {
  std::string_view rest = trimmed(text);
  if (!rest.empty() && (rest.front() == 'v' || rest.front() == 'V')) rest.remove_prefix(1);

  const auto [beforeBuild, build] = splitOnce('+', rest);
  const auto [core, prerelease] = splitOnce('-', beforeBuild);
  if ((build && build->empty()) || (prerelease && prerelease->empty())) return std::nullopt;

  const auto pieces = splitAt('.', core);
  if (pieces.size() > 3) return std::nullopt;
  std::array<std::int64_t, 3> numbers{};
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const auto number = decimalInteger(pieces[i]);
    if (!number || *number < 0) return std::nullopt;
    numbers[i] = *number;
  }

  AppVersion version;
  version.major = numbers[0];
  version.minor = numbers[1];
  version.patch = numbers[2];
  if (build) version.buildMetadata = std::string(*build);
  if (!prerelease) return version;
  version.prerelease = std::string(*prerelease);
  for (const std::string_view piece : splitAt('.', *prerelease)) {
    if (piece.empty()) return std::nullopt;
    if (const auto number = decimalInteger(piece)) {
      version.prereleaseIdentifiers.emplace_back(*number);
    } else {
      version.prereleaseIdentifiers.emplace_back(std::string(piece));
    }
  }
  return version;
}

bool operator<(const AppVersion& a, const AppVersion& b) {
  if (a.major != b.major) return a.major < b.major;
  if (a.minor != b.minor) return a.minor < b.minor;
  if (a.patch != b.patch) return a.patch < b.patch;
  if (a.prereleaseIdentifiers.empty()) return false;
  if (b.prereleaseIdentifiers.empty()) return true;
  return std::lexicographical_compare(a.prereleaseIdentifiers.begin(), a.prereleaseIdentifiers.end(),
                                      b.prereleaseIdentifiers.begin(), b.prereleaseIdentifiers.end(),
                                      identifierBelow);
}

}  // namespace ostrelon
