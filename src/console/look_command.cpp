#include "console/look_command.h"

#include <fmt/format.h>

#include "console/command_words.h"
#include "core/plan_look.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseLook(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  ChangeLook change;
  if (words.size() % 2 == 0) return WrongUse{};
  for (std::size_t i = 1; i < words.size(); i += 2) {
    PlanLook look;
    const std::string part = lowerCasedWord(words, i);
    const std::string state = lowerCasedWord(words, i + 1);
    if (planLookPart(look, part) == nullptr || (state != "on" && state != "off")) return WrongUse{};
    change.parts.emplace_back(part, state == "on");
  }
  return change;
}

Reply run(const ChangeLook& change, const CommandContext& context) {
  PlanLook look = context.sketch.drawing->plan.look;
  for (const auto& [part, isOn] : change.parts) *planLookPart(look, part) = isOn;
  setPlanLook(context.sketch, look);
  const auto state = [](bool isOn) { return isOn ? "on" : "off"; };
  return Reply::done(fmt::format("Plan look: clean walls {}, filled walls {}, line weights {}.",
                                 state(look.cleanWalls), state(look.filledWalls), state(look.lineWeights)));
}

}  // namespace ostrelon::CommandInterpreter
