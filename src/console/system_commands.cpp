#include "console/system_commands.h"

#include <fmt/format.h>

#include <utility>

#include "console/command_words.h"
#include "core/length_text.h"
#include "geometry/wall_system_edits.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

constexpr double kUsualHeight = 8;  // feet, of a system that is added without one

Reply unknownSystem(const std::string& name) {
  return Reply::error("Unknown wall system \"" + name + "\". Use spec list.");
}

// The system that the words from `first` on begin with, and the place behind its name. Names may hold blanks;
// the longest that fits counts.
std::pair<const WallSystemSpec*, std::size_t> systemAt(const Words& words, std::size_t first,
                                                       const Drawing& drawing) {
  for (std::size_t end = words.size(); end > first; --end) {
    const std::string name =
        joinedWords(Words(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(end)), first);
    if (const WallSystemSpec* spec = drawing.wallSystem(std::string_view(name))) return {spec, end};
  }
  return {nullptr, first};
}

std::string sizesText(const WallSystemSpec& spec) {
  return fmt::format("{} thick, {} high", formatLength(spec.thickness), formatLength(spec.height));
}

Reply refusal(WallSystemProblem problem, const std::string& name) {
  switch (problem) {
    case WallSystemProblem::noName:
      return Reply::refused("A wall system needs a name.");
    case WallSystemProblem::nameTaken:
      return Reply::refused("There is a wall system \"" + name + "\" already.");
    case WallSystemProblem::notAboveZero:
      return Reply::refused("The thickness and height of a wall system have to be above 0.");
    case WallSystemProblem::unknownSystem:
      return unknownSystem(name);
    case WallSystemProblem::inUse:
      return Reply::refused("Walls use " + name + ".");
    case WallSystemProblem::lastSystem:
      return Reply::refused("The last wall system stays.");
    case WallSystemProblem::alreadyConverted:
      return Reply::refused("The wall systems have been divided by 12 already; undo takes that back.");
  }
  return Reply::silent();
}

// The words from the third on, up to a `to`: the name that was meant where none fits.
std::string nameBeforeTo(const Words& words) {
  std::size_t end = 3;
  while (end < words.size() && lowerCasedWord(words, end) != "to") ++end;
  return joinedWords(Words(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(end)), 2);
}

// Reads a thickness and, where there is one, a height, from `place` on; gives the place behind them.
// In front of notes what does not read as a height belongs to them.
std::variant<std::size_t, WrongUse, Reply> readSizes(const Words& words, std::size_t place,
                                                     bool areNotesBehind, WallSystemSpec& spec) {
  if (place >= words.size()) return WrongUse{};
  const auto thickness = readLengthAt(words, place);
  if (const auto* reply = std::get_if<Reply>(&thickness)) return *reply;
  spec.thickness = std::get<LengthInWords>(thickness).value;
  place = std::get<LengthInWords>(thickness).next;
  if (place < words.size()) {
    const auto height = readLengthAt(words, place);
    if (const auto* read = std::get_if<LengthInWords>(&height)) {
      spec.height = read->value;
      place = read->next;
    } else if (!areNotesBehind) {
      return std::get<Reply>(height);
    }
  }
  if (!areNotesBehind && place < words.size()) return WrongUse{};
  return place;
}

ParseResult parseAdd(const Words& words) {
  if (words.size() < 4) return WrongUse{"system add <name> <thickness> [<height>] [notes…]"};
  AddWallSystem add{{UUID::random(), words[2], 0, kUsualHeight, {}}};
  const auto read = readSizes(words, 3, true, add.spec);
  if (const auto* reply = std::get_if<Reply>(&read)) return *reply;
  add.spec.assemblyNotes = joinedWords(words, std::get<std::size_t>(read));
  return add;
}

ParseResult parseRename(const Words& words, const Drawing& drawing) {
  const auto [spec, place] = systemAt(words, 2, drawing);
  if (spec == nullptr && words.size() > 2) return unknownSystem(nameBeforeTo(words));
  if (spec == nullptr || lowerCasedWord(words, place) != "to" || place + 1 >= words.size()) {
    return WrongUse{"system rename <name> to <new name>"};
  }
  WallSystemSpec renamed = *spec;
  renamed.name = joinedWords(words, place + 1);
  return ChangeWallSystem{std::move(renamed)};
}

ParseResult parseDelete(const Words& words, const Drawing& drawing) {
  const auto [spec, place] = systemAt(words, 2, drawing);
  if (spec == nullptr && words.size() > 2) return unknownSystem(nameBeforeTo(words));
  const bool hasSuccessor = lowerCasedWord(words, place) == "to" && place + 1 < words.size();
  if (spec == nullptr || (place < words.size() && !hasSuccessor)) {
    return WrongUse{"system delete <name> [to <name>]"};
  }
  if (!hasSuccessor) return DeleteWallSystem{spec->id, std::nullopt};
  const std::string name = joinedWords(words, place + 1);
  const WallSystemSpec* successor = drawing.wallSystem(std::string_view(name));
  if (successor == nullptr) return unknownSystem(name);
  if (successor == spec) return Reply::refused("The walls need another system than the one that goes.");
  return DeleteWallSystem{spec->id, successor->id};
}

}  // namespace

ParseResult parseSystem(const Words& words, const ParseState& state, Place /*place*/) {
  if (words.size() < 2) return WrongUse{};
  const std::string what = lowerCasedWord(words, 1);
  if (what == "add") return parseAdd(words);
  if (what == "rename") return parseRename(words, state.drawing());
  if (what == "delete") return parseDelete(words, state.drawing());
  if (what == "inches") {
    if (words.size() == 2) return ConvertWallSystems{};
    if (words.size() == 3 && lowerCasedWord(words, 2) == "yes") return ConvertWallSystems{true};
    return WrongUse{"system inches [yes]"};
  }
  const auto [spec, place] = systemAt(words, 1, state.drawing());
  if (spec == nullptr) {
    return unknownSystem(words[1]);
  }
  ChangeWallSystem change{*spec};
  const auto read = readSizes(words, place, false, change.spec);
  if (const auto* reply = std::get_if<Reply>(&read)) return *reply;
  if (std::holds_alternative<WrongUse>(read)) return WrongUse{};
  return change;
}

Reply run(const AddWallSystem& add, const CommandContext& context) {
  const WallSystemSpec& spec = add.spec;
  if (const auto problem = addWallSystem(context.sketch, spec)) return refusal(*problem, spec.name);
  const std::string notes = spec.assemblyNotes.empty() ? "" : ", notes \"" + spec.assemblyNotes + "\"";
  return Reply::done(fmt::format("Wall system added: {}, {}{}.", spec.name, sizesText(spec), notes));
}

Reply run(const ChangeWallSystem& change, const CommandContext& context) {
  const WallSystemSpec& spec = change.spec;
  const WallSystemSpec* old = context.sketch.drawing->wallSystem(spec.id);
  if (old == nullptr) return Reply::silent();
  const std::string oldName = old->name;
  if (const auto problem = changeWallSystem(context.sketch, spec)) return refusal(*problem, spec.name);
  if (oldName != spec.name) return Reply::done(fmt::format("Wall system {} is now {}.", oldName, spec.name));
  return Reply::done(fmt::format("Wall system {}: {}.", spec.name, sizesText(spec)));
}

Reply run(const DeleteWallSystem& deletion, const CommandContext& context) {
  const Drawing& drawing = context.sketch.drawing;
  const WallSystemSpec* spec = drawing.wallSystem(deletion.specID);
  if (spec == nullptr) return Reply::silent();
  const std::string name = spec->name;
  const std::size_t walls = countWalls(context.sketch, deletion.specID);
  const std::string counted = fmt::format("{} wall{}", walls, walls == 1 ? "" : "s");
  if (const auto problem = deleteWallSystem(context.sketch, deletion.specID, deletion.successorID)) {
    if (*problem != WallSystemProblem::inUse) return refusal(*problem, name);
    return Reply::refused(fmt::format("{} use{} {}; system delete {} to <name> moves {} to another.", counted,
                                      walls == 1 ? "s" : "", name, name, walls == 1 ? "it" : "them"));
  }
  if (walls == 0) return Reply::done("Wall system deleted: " + name + ".");
  return Reply::done(fmt::format("Wall system deleted: {}; {} moved to {}.", name, counted,
                                 context.sketch.drawing->wallSystem(*deletion.successorID)->name));
}

Reply run(const ConvertWallSystems& conversion, const CommandContext& context) {
  const Drawing& drawing = context.sketch.drawing;
  if (areConvertedFromInches(drawing)) return refusal(WallSystemProblem::alreadyConverted, {});
  if (conversion.isConfirmed) {
    if (const auto problem = convertWallSystemsFromInches(context.sketch)) return refusal(*problem, {});
    const std::size_t count = context.sketch.drawing->wallSystemSpecs.size();
    return Reply::done(fmt::format("{} wall system{} divided by 12.", count, count == 1 ? "" : "s"));
  }
  std::string text =
      "system inches yes divides every thickness and height by 12, so that inches become feet:";
  for (const WallSystemSpec& spec : drawing.wallSystemSpecs) {
    text += fmt::format("\n  {}  t={} -> {}  h={} -> {}", spec.name, formatLength(spec.thickness),
                        formatLength(spec.thickness / 12), formatLength(spec.height),
                        formatLength(spec.height / 12));
  }
  context.messages.appendSystem(std::move(text));
  return Reply::silent();
}

}  // namespace ostrelon::CommandInterpreter
