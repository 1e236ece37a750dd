#include "console/compare_commands.h"

#include <fmt/format.h>

#include <algorithm>

#include "console/command_words.h"
#include "documents/named_drawing.h"
#include "platform/user_error.h"

namespace ostrelon::CommandInterpreter {
namespace {

constexpr std::size_t kMostLines = 40;  // of one reply

void addMore(std::string& text, std::size_t all) {
  if (all > kMostLines) text += fmt::format("\n… and {} more.", all - kMostLines);
}

}  // namespace

ParseResult parseCompare(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() < 2) return WrongUse{};
  return CompareDrawing{joinedWords(words, 1)};
}

ParseResult parseMerge(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() < 2) return WrongUse{};
  const auto choice =
      words.size() > 2 ? mergeChoiceNamed(lowerCasedWord(words, words.size() - 1)) : std::nullopt;
  if (!choice) return MergeDrawing{joinedWords(words, 1), std::nullopt};
  return MergeDrawing{joinedWords(Words(words.begin(), words.end() - 1), 1), choice};
}

Reply run(const CompareDrawing& compare, const CommandContext& context) {
  try {
    const NamedDrawing named = namedDrawing(context.document, compare.name);
    const Drawing& ours = context.sketch.drawing;
    const DrawingDifference difference = compareDrawings(named.drawing, ours, NumberPrecision::asInFiles);
    std::string text = fmt::format("Compared with {}: {}", named.name, differenceCounts(difference));
    for (const std::string& line : differenceLines(difference, named.drawing, ours, kMostLines)) {
      text += "\n" + line;
    }
    addMore(text, difference.count());
    return Reply::done(std::move(text));
  } catch (const UserError& error) {
    return Reply::refused(std::string("Compare failed: ") + error.what());
  }
}

Reply run(const MergeDrawing& merge, const CommandContext& context) {
  try {
    const NamedDrawing named = namedDrawing(context.document, merge.name);
    const Drawing ours = context.sketch.drawing;
    const MergeOutcome outcome = mergeIntoDocument(context.document, named, merge.choice);
    if (outcome.isDone) {
      return Reply::done(fmt::format("Merged {}: {}", named.name, differenceCounts(outcome.taken)));
    }
    if (outcome.conflicts.empty()) {
      return Reply::done(fmt::format("Nothing to merge: {} has nothing that is not here.", named.name));
    }
    const std::size_t count = outcome.conflicts.size();
    std::string text = fmt::format("Merge failed: {} conflict{}; settle with merge {} ours, theirs or both.",
                                   count, count == 1 ? "" : "s", merge.name);
    for (std::size_t i = 0; i < std::min(count, kMostLines); ++i) {
      text += "\n" + conflictText(outcome.conflicts[i], ours, named.drawing);
    }
    addMore(text, count);
    return Reply::refused(std::move(text));
  } catch (const UserError& error) {
    return Reply::refused(std::string("Merge failed: ") + error.what());
  }
}

}  // namespace ostrelon::CommandInterpreter
