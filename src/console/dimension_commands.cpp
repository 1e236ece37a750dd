#include "console/dimension_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "console/command_words.h"
#include "core/plan_items.h"
#include "core/plan_look.h"
#include "geometry/dimension_ends.h"

namespace ostrelon::CommandInterpreter {
namespace {

std::optional<DimensionDirection> directionOf(std::string_view word) {
  const auto names = caseNamesOf(DimensionDirection::aligned);
  const auto* const found = std::find(names.begin(), names.end(), word);
  if (found == names.end()) return std::nullopt;
  return static_cast<DimensionDirection>(found - names.begin());
}

}  // namespace

ParseResult parseDimension(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (lowerCasedWord(words, 1) == "auto") {
    const std::string state = lowerCasedWord(words, 2);
    if (words.size() != 3 || (state != "on" && state != "off")) return WrongUse{};
    return SwitchDimensionStrings{state == "on"};
  }
  AddDimension add;
  std::size_t next = 1;
  std::optional<Reply> refusal;
  const auto readNext = [&](double& into) {
    if (refusal || next >= words.size()) return false;
    const auto length = readLengthAt(words, next);
    if (const auto* reply = std::get_if<Reply>(&length)) {
      refusal = *reply;
      return false;
    }
    into = std::get<LengthInWords>(length).value;
    next = std::get<LengthInWords>(length).next;
    return true;
  };
  for (double* coordinate : {&add.from.x, &add.from.y, &add.to.x, &add.to.y}) {
    if (!readNext(*coordinate)) return refusal ? ParseResult(*refusal) : WrongUse{};
  }
  if (next < words.size() && !directionOf(lowerCasedWord(words, next))) {
    double offset = 0;
    if (!readNext(offset)) return *refusal;
    add.offset = offset;
  }
  if (next == words.size()) return add;
  const auto direction = directionOf(lowerCasedWord(words, next));
  if (!direction || next + 1 != words.size()) return WrongUse{};
  add.direction = *direction;
  return add;
}

Reply run(const AddDimension& add, const CommandContext& context) {
  Sketch& sketch = context.sketch;
  const Dimension dimension = dimensionBetween(add.from, add.to, add.direction, add.offset, sketch.drawing,
                                               sketch.index(), kTypedPointTolerance);
  if (std::string refusal = dimensionRefusal(dimension); !refusal.empty()) {
    return Reply::refused(std::move(refusal));
  }
  sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, dimension); });
  return Reply::done(dimensionAddedText(sketch, dimension));
}

Reply run(const SwitchDimensionStrings& strings, const CommandContext& context) {
  PlanLook look = context.sketch.drawing->plan.look;
  look.dimensionStrings = strings.isOn;
  setPlanLook(context.sketch, look);
  return Reply::done(strings.isOn ? "Dimension strings on." : "Dimension strings off.");
}

}  // namespace ostrelon::CommandInterpreter
