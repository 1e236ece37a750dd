#include "console/kept_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "console/command_words.h"
#include "platform/host.h"
#include "platform/scheduler.h"
#include "platform/user_error.h"

namespace ostrelon::CommandInterpreter {
namespace {

constexpr std::size_t kMostLines = 40;  // of one reply

// "just now", "5 min ago", "3 h ago", "12 days ago".
std::string ageText(double seconds) {
  constexpr double kMinute = 60;
  constexpr double kHour = 60 * kMinute;
  constexpr double kDay = 24 * kHour;
  if (seconds < kMinute) return "just now";
  if (seconds < kHour) return fmt::format("{:.0f} min ago", std::floor(seconds / kMinute));
  if (seconds < kDay) return fmt::format("{:.0f} h ago", std::floor(seconds / kHour));
  const double days = std::floor(seconds / kDay);
  return fmt::format("{:.0f} day{} ago", days, days == 1 ? "" : "s");
}

std::string entitiesText(std::uint64_t count) {
  return fmt::format("{} {}", count, count == 1 ? "entity" : "entities");
}

}  // namespace

ParseResult parseKept(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() == 1) return ListKept{};
  if (lowerCasedWord(words, 1) != "restore" || words.size() != 3) return WrongUse{};
  const auto indices = readEntityIndices({words[1], words[2]});
  if (!indices) return WrongUse{};
  return RestoreKept{static_cast<std::size_t>(indices->front())};
}

Reply run(const ListKept& /*list*/, const CommandContext& context) {
  const std::vector<KeptDrawing> kept = context.document.keptDrawings();
  if (kept.empty()) return Reply::done("No drawings have been kept.");
  const Date now = context.document.host().scheduler.now();
  std::string text = "Kept drawings, the newest first; kept restore <n> brings one back:";
  for (std::size_t i = 0; i < std::min(kept.size(), kMostLines); ++i) {
    const KeptDrawing& one = kept[i];
    text += fmt::format("\n{:>3}  {}, {}, {}: {}", i + 1, one.name, entitiesText(one.entities),
                        ageText(secondsBetween(one.keptAt, now)), one.reason);
  }
  if (kept.size() > kMostLines) text += fmt::format("\n… and {} more.", kept.size() - kMostLines);
  return Reply::done(std::move(text));
}

Reply run(const RestoreKept& restore, const CommandContext& context) {
  try {
    const std::vector<KeptDrawing> kept = context.document.keptDrawings();
    if (restore.index >= kept.size()) {
      return Reply::error(fmt::format("There is no kept drawing {}; kept lists them.", restore.index + 1));
    }
    const KeptDrawing& one = kept[restore.index];
    context.document.restoreKeptDrawing(one.id);
    return Reply::done(fmt::format("Restored {}: {}.", one.name, entitiesText(one.entities)));
  } catch (const UserError& error) {
    return Reply::refused(std::string("Restore failed: ") + error.what());
  }
}

}  // namespace ostrelon::CommandInterpreter
