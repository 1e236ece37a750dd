// The reader and the order of versions: up to three versions, one a line.
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "require.h"
#include "updates/app_version.h"

namespace {

using ostrelon::AppVersion;
using ostrelon::require;

bool areEquivalent(const AppVersion& a, const AppVersion& b) { return !(a < b) && !(b < a); }

void checkPair(const AppVersion& a, const AppVersion& b) {
  require(!(a < b && b < a), "no version is both below and above another");
  require((a <= b) == !(a > b), "the four comparisons agree");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::array<std::optional<AppVersion>, 3> versions;
  for (auto& version : versions) {
    const std::size_t end = rest.find('\n');
    version = ostrelon::parseVersion(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  for (const auto& version : versions) {
    if (!version) continue;
    require(version->major >= 0 && version->minor >= 0 && version->patch >= 0, "numbers are not negative");
    require(version->prerelease.has_value() == !version->prereleaseIdentifiers.empty(),
            "a prerelease has identifiers");
    require(areEquivalent(*version, *version), "a version equals itself");
  }
  const auto& [a, b, c] = versions;
  if (a && b) checkPair(*a, *b);
  if (a && b && c) {
    require(!(*a < *b && *b < *c) || *a < *c, "the order is transitive");
    require(!(areEquivalent(*a, *b) && areEquivalent(*b, *c)) || areEquivalent(*a, *c),
            "equivalence is transitive");
  }
  return 0;
}
