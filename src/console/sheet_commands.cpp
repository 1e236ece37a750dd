#include "console/sheet_commands.h"

#include <utility>

#include "console/command_words.h"
#include "core/plan_items.h"
#include "core/plan_look.h"
#include "core/sketch.h"

namespace ostrelon::CommandInterpreter {
namespace {

// As typed in one line: \\n begins another line of the note.
std::string withLineBreaks(std::string text) {
  for (std::size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at)) {
    text.replace(at, 2, "\n");
  }
  return text;
}

}  // namespace

ParseResult parseNote(const Words& words, const ParseState& /*state*/, Place /*where*/) {
  const auto place = readPointAt(words, 1);
  if (const auto* refusal = std::get_if<ParseResult>(&place)) return *refusal;
  const auto [point, afterPlace] = std::get<PointInWords>(place);
  AddNote note{point, {}, std::nullopt};
  std::size_t next = afterPlace;
  // A note may begin with the word "to"; it names a target only where two lengths and a text follow.
  if (lowerCasedWord(words, next) == "to") {
    const auto target = readPointAt(words, next + 1);
    if (const auto* read = std::get_if<PointInWords>(&target); read != nullptr && read->next < words.size()) {
      note.target = read->point;
      next = read->next;
    }
  }
  if (next < words.size()) note.text = withLineBreaks(joinedWords(words, next));
  if (note.text.empty()) return WrongUse{};
  return note;
}

ParseResult parseSheet(const Words& words, const ParseState& /*state*/, Place /*where*/) {
  if (words.size() < 2 || lowerCasedWord(words, 1) != "scale") return WrongUse{};
  if (words.size() == 2) return ScaleSheet{};
  const std::string text = joinedWords(words, 2);
  auto scale = parseDrawingScale(text);
  if (!scale) scale = parseDrawingScale(text + "\"");  // 1/4 alone
  if (!scale) return Reply::error("\"" + text + "\" is not a scale. Write one as 1/4, 1/4\"=1' or 1:50.");
  return ScaleSheet{scale};
}

Reply run(const AddNote& added, const CommandContext& context) {
  const Note note{UUID::random(), added.place, added.text, added.target};
  context.sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, note); });
  return Reply::done("Note added.");
}

Reply run(const ScaleSheet& sheet, const CommandContext& context) {
  if (sheet.scale) setDrawingScale(context.sketch, *sheet.scale);
  return Reply::done("Drawing scale: " + drawingScaleText(drawingScale(context.sketch.drawing->plan)) + ".");
}

}  // namespace ostrelon::CommandInterpreter
