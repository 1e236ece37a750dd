#include "platform/near_names.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace ostrelon {
namespace {

constexpr std::size_t kMostNames = 3;
constexpr std::size_t kLettersForEachMistake = 3;
// Nobody mistypes a longer one, and what is sent may be of any length.
constexpr std::size_t kLongestName = 64;

char lowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Row by row of the table of distances between the beginnings of the two; the last two rows are kept.
std::size_t mistakesBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  const auto same = [&](std::size_t i, std::size_t j) { return lowerCase(a[i - 1]) == lowerCase(b[j - 1]); };
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same(i, j) ? 0 : 1)});
      const bool isSwapped = i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j);
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    std::swap(beforeLast, last);
    std::swap(last, row);
  }
  return last.back();
}

}  // namespace

std::vector<std::string_view> nearNames(std::string_view typed, const std::vector<std::string_view>& names) {
  std::vector<std::pair<std::size_t, std::string_view>> near;
  if (typed.size() > kLongestName) return {};
  for (const std::string_view name : names) {
    const std::size_t mistakes = mistakesBetween(typed, name);
    if (mistakes * kLettersForEachMistake <= typed.size()) near.emplace_back(mistakes, name);
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  if (near.size() > kMostNames) near.resize(kMostNames);
  std::vector<std::string_view> found;
  found.reserve(near.size());
  for (const auto& [mistakes, name] : near) found.push_back(name);
  return found;
}

std::string didYouMean(std::string_view typed, const std::vector<std::string_view>& names) {
  const std::vector<std::string_view> near = nearNames(typed, names);
  if (near.empty()) return {};
  std::string text = " Did you mean ";
  for (std::size_t i = 0; i < near.size(); ++i) {
    if (i > 0) text += i + 1 == near.size() ? " or " : ", ";
    text.append("\"").append(near[i]).append("\"");
  }
  return text + "?";
}

}  // namespace ostrelon
