// Release versions: what the running program and the release feed are compared by. Close to semantic
// versioning (semver.org, 2.0.0), but forgiving in what is left out: "v1.2" is 1.2.0.
//
//   parseVersion("1.10.0-rc.1+77")   1.10.0, prerelease "rc.1", build metadata "77"
//   parseVersion("1.x")              nothing
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ostrelon {

/// One piece of a prerelease between its dots: a number, or a text.
using PreReleaseIdentifier = std::variant<std::int64_t, std::string>;

struct AppVersion {
  std::int64_t major = 0;
  std::int64_t minor = 0;                    ///< 0 when not written
  std::int64_t patch = 0;                    ///< 0 when not written
  std::optional<std::string> prerelease;     ///< between "-" and "+" or the end; never empty
  std::optional<std::string> buildMetadata;  ///< after "+"; never empty, and no part of the order
  std::vector<PreReleaseIdentifier> prereleaseIdentifiers;  ///< `prerelease` at its dots

  friend bool operator==(const AppVersion&, const AppVersion&) = default;
};

/// Reads a version: one to three decimal numbers of ASCII digits that fit 64 bits, a "v" before them
/// and white space around allowed. Anything else gives nothing.
std::optional<AppVersion> parseVersion(std::string_view text);

/// The order of releases. Numbers first; a prerelease is below its release; prerelease identifiers go
/// pair by pair, numbers below texts and texts by character value; then the shorter list is lower.
/// Versions that differ in build metadata alone are neither below nor above each other.
bool operator<(const AppVersion& a, const AppVersion& b);
inline bool operator>(const AppVersion& a, const AppVersion& b) { return b < a; }
inline bool operator<=(const AppVersion& a, const AppVersion& b) { return !(b < a); }
inline bool operator>=(const AppVersion& a, const AppVersion& b) { return !(a < b); }

}  // namespace ostrelon
