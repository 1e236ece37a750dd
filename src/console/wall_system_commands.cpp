#include "console/wall_system_commands.h"

#include "console/command_words.h"
#include "console/edit_commands.h"
#include "core/adding.h"
#include "core/length_text.h"

namespace ostrelon::CommandInterpreter {
namespace {

// The system that `spec show` without a name means; null when there is none at all.
const WallSystemSpec* presentWallSystem(const Sketch& sketch) {
  if (const auto wall = selectedWallID(sketch)) {
    const UUID& used = std::get<WallEntity>(*sketch.entity(*wall)).systemSpecID;
    if (const WallSystemSpec* known = sketch.drawing->wallSystem(used)) return known;
  }
  return sketch.drawing->activeWallSystem();
}

}  // namespace

ParseResult parseSpec(const Words& words, const ParseState& state, Place place) {
  const auto named = [&](std::size_t position) {
    return state.drawing().wallSystem(std::string_view(words[position]));
  };
  const std::string what = lowerCasedWord(words, 1);
  // By itself the command lets further words pass, in a chain it does not.
  const bool isStrict = place == Place::chain;
  if (what == "list" && (!isStrict || words.size() == 2)) return ListWallSystems{};
  if (what == "use") {
    const WallSystemSpec* spec = words.size() == 3 ? named(2) : nullptr;
    if (spec == nullptr) return WrongUse{"spec use <name>"};
    return UseWallSystem{spec->id};
  }
  if (what == "show" && (!isStrict || words.size() <= 3)) {
    if (words.size() == 2) return ShowWallSystem{};
    if (named(2) == nullptr) return Reply::error("Unknown wall system.");
    return ShowWallSystem{words[2]};
  }
  return WrongUse{};
}

Reply run(const ListWallSystems& /*list*/, const CommandContext& context) {
  const Drawing& drawing = context.sketch.drawing;
  const WallSystemSpec* active = drawing.activeWallSystem();
  std::string text;
  for (const WallSystemSpec& spec : drawing.wallSystemSpecs) {
    if (!text.empty()) text += '\n';
    text += "  " + spec.name + (&spec == active ? " *" : "") + "  t=" + formatExactNumber(spec.thickness) +
            "  h=" + formatExactNumber(spec.height);
  }
  context.messages.appendSystem(std::move(text));
  return Reply::silent();
}

Reply run(const UseWallSystem& use, const CommandContext& context) {
  const WallSystemSpec* spec = context.sketch.drawing->wallSystem(use.specID);
  if (spec == nullptr) return Reply::silent();
  const WallSystemSpec chosen = *spec;
  setActiveWallSystem(context.sketch, context.messages, chosen);
  return Reply::done("Active wall system: " + chosen.name + ".");
}

Reply run(const ShowWallSystem& show, const CommandContext& context) {
  const Sketch& sketch = context.sketch;
  const WallSystemSpec* spec =
      show.name ? sketch.drawing->wallSystem(std::string_view(*show.name)) : presentWallSystem(sketch);
  if (spec == nullptr) return Reply::error("Unknown wall system.");
  context.messages.appendSystem(spec->name + "\n  thickness: " + formatExactNumber(spec->thickness) +
                                "\n  height: " + formatExactNumber(spec->height) + "\n  " +
                                spec->assemblyNotes);
  return Reply::silent();
}

}  // namespace ostrelon::CommandInterpreter
