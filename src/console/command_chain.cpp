// Parsing and checking a chain.
#include "console/command_chain.h"

#include <array>

#include "console/command_arguments.h"
#include "console/selection_commands.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

using Tokens = std::vector<std::string>;

ChainParseResult failure(std::string message) { return ChainFailure{std::move(message)}; }

ChainParseResult parseLine(const Tokens& tokens, const ChainValidationState& /*state*/) {
  if (tokens.size() == 1) return failure("line tool activation cannot be used in a chain.");
  const auto n = tokens.size() == 5 ? readNumbers(tokens) : std::nullopt;
  if (!n) return failure("Usage: line <x1> <y1> <x2> <y2>");
  return ChainCommand(ChainLine{{(*n)[0], (*n)[1]}, {(*n)[2], (*n)[3]}});
}

ChainParseResult parseWall(const Tokens& tokens, const ChainValidationState& state) {
  const auto n = tokens.size() == 5 || tokens.size() == 6 ? readNumbers(tokens, 1, 5) : std::nullopt;
  if (!n) return failure("Usage: wall <x1> <y1> <x2> <y2> [system]");
  UUID system = state.activeWallSystemSpecID;
  if (tokens.size() == 6) {
    const WallSystemSpec* spec = state.sketch->wallSystemSpec(std::string_view(tokens[5]));
    if (spec == nullptr) return failure("Unknown wall system \"" + tokens[5] + "\". Use spec list.");
    system = spec->id;
  } else if (state.sketch->wallSystemSpec(system) == nullptr) {
    const WallSystemSpec* active = state.sketch->activeWallSystemSpec();
    if (active == nullptr) return failure("Unknown wall system \"\". Use spec list.");
    system = active->id;
  }
  return ChainCommand(ChainWall{{(*n)[0], (*n)[1]}, {(*n)[2], (*n)[3]}, system});
}

ChainParseResult parseCircle(const Tokens& tokens, const ChainValidationState& /*state*/) {
  const auto n = tokens.size() == 4 ? readNumbers(tokens) : std::nullopt;
  if (!n || !((*n)[2] > 0)) return failure("Usage: circle <cx> <cy> <r>");
  return ChainCommand(ChainCircle{{(*n)[0], (*n)[1]}, (*n)[2]});
}

ChainParseResult parseRectangle(const Tokens& tokens, const ChainValidationState& /*state*/) {
  const auto n = tokens.size() == 5 ? readNumbers(tokens) : std::nullopt;
  if (!n || !((*n)[2] > 0) || !((*n)[3] > 0)) return failure("Usage: rect <x> <y> <w> <h>");
  return ChainCommand(ChainRectangle{{(*n)[0], (*n)[1]}, {(*n)[2], (*n)[3]}});
}

ChainParseResult parseSelect(const Tokens& tokens, const ChainValidationState& /*state*/) {
  auto indices = readEntityIndices(tokens);
  if (!indices) return failure("Usage: select [<n>…]  (1-based entity numbers)");
  return ChainCommand(ChainSelect{std::move(*indices)});
}

// What the chain made stands behind the entities of the document, which their index finds; so it is
// looked for from the end.
const SketchEntity* findEntity(const UUID& id, const ChainValidationState& state) {
  if (const SketchEntity* found = state.sketch->entity(id)) return found;
  for (std::size_t i = state.entities.size(); i > 0; --i) {
    const SketchEntity& made = state.entities[i - 1];
    if (entityID(made) == id) return &made;
  }
  return nullptr;
}

ChainParseResult parseAssign(const Tokens& tokens, const ChainValidationState& state) {
  const WallSystemSpec* spec =
      tokens.size() == 2 ? state.sketch->wallSystemSpec(std::string_view(tokens[1])) : nullptr;
  bool isOneWall = false;
  if (state.selectedEntityIDs.size() == 1) {
    const SketchEntity* selected = findEntity(*state.selectedEntityIDs.begin(), state);
    isOneWall = selected != nullptr && std::holds_alternative<WallEntity>(*selected);
  }
  if (spec == nullptr || !isOneWall) return failure("Usage: assign <system>  (select a wall first)");
  return ChainCommand(ChainAssign{spec->id});
}

ChainParseResult parseSpec(const Tokens& tokens, const ChainValidationState& state) {
  const std::string word = tokens.size() > 1 ? lowerCased(tokens[1]) : std::string();
  if (word == "list" && tokens.size() == 2) return ChainCommand(ChainSpecList{});
  if (word == "use") {
    const WallSystemSpec* spec =
        tokens.size() == 3 ? state.sketch->wallSystemSpec(std::string_view(tokens[2])) : nullptr;
    if (spec == nullptr) return failure("Usage: spec use <name>");
    return ChainCommand(ChainSpecUse{spec->id});
  }
  if (word == "show" && tokens.size() <= 3) {
    if (tokens.size() == 2) return ChainCommand(ChainSpecShow{});
    if (state.sketch->wallSystemSpec(std::string_view(tokens[2])) == nullptr) {
      return failure("Unknown wall system.");
    }
    return ChainCommand(ChainSpecShow{tokens[2]});
  }
  return failure("Usage: spec list | spec use <name> | spec show [name]");
}

ChainParseResult refuseClear(const Tokens& /*tokens*/, const ChainValidationState& /*state*/) {
  return failure("clear cannot be used in a chain; run clear by itself.");
}

ChainParseResult refuseHelp(const Tokens& /*tokens*/, const ChainValidationState& /*state*/) {
  return failure("help cannot be used in a chain.");
}

ChainParseResult refuseTrim(const Tokens& /*tokens*/, const ChainValidationState& /*state*/) {
  return failure("trim cannot be used in a chain.");
}

struct ChainWord {
  std::string_view word;
  ChainParseResult (*parse)(const Tokens& tokens, const ChainValidationState& state);
};

// The words that a chain knows; the aliases of single commands are not among them.
constexpr std::array kChainWords{
    ChainWord{"line", parseLine},      ChainWord{"l", parseLine},
    ChainWord{"wall", parseWall},      ChainWord{"circle", parseCircle},
    ChainWord{"rect", parseRectangle}, ChainWord{"rectangle", parseRectangle},
    ChainWord{"select", parseSelect},  ChainWord{"s", parseSelect},
    ChainWord{"assign", parseAssign},  ChainWord{"spec", parseSpec},
    ChainWord{"clear", refuseClear},   ChainWord{"help", refuseHelp},
    ChainWord{"?", refuseHelp},        ChainWord{"trim", refuseTrim},
    ChainWord{"tr", refuseTrim},
};

}  // namespace

std::variant<std::vector<ChainCommand>, ChainError> parseChain(std::string_view text,
                                                               const SketchViewModel& sketch) {
  ChainValidationState state{&sketch, sketch.entities, sketch.selectedEntityIDs,
                             sketch.activeWallSystemSpecID};
  std::vector<ChainCommand> commands;
  for (std::size_t number = 1;; ++number) {
    const auto semicolon = text.find(';');
    const std::string_view piece = trimmed(text.substr(0, semicolon));
    if (piece.empty()) return ChainError{number, "empty command."};
    ChainParseResult result = parseChainSegment(splitAtWhiteSpace(piece), state);
    if (auto* failed = std::get_if<ChainFailure>(&result))
      return ChainError{number, std::move(failed->message)};
    commands.push_back(std::move(std::get<ChainCommand>(result)));
    applyToValidationState(commands.back(), state);
    if (semicolon == std::string_view::npos) return commands;
    text.remove_prefix(semicolon + 1);
  }
}

ChainParseResult parseChainSegment(const std::vector<std::string>& tokens,
                                   const ChainValidationState& state) {
  const std::string word = lowerCased(tokens.front());
  for (const ChainWord& row : kChainWords) {
    if (row.word == word) return row.parse(tokens, state);
  }
  return failure("Unknown command \"" + word + "\". Type help for commands.");
}

void applyToValidationState(const ChainCommand& command, ChainValidationState& state) {
  std::visit(
      Overloaded{
          [&](const ChainLine& line) {
            state.entities.append(LineEntity{UUID::random(), line.from, line.to});
          },
          [&](const ChainWall& wall) {
            const UUID id = UUID::random();
            state.entities.append(WallEntity{id, wall.from, wall.to, wall.systemSpecID});
            state.selectedEntityIDs = {id};
          },
          [&](const ChainCircle& circle) {
            state.entities.append(CircleEntity{UUID::random(), circle.center, circle.radius});
          },
          [&](const ChainRectangle& rectangle) {
            state.entities.append(RectangleEntity{UUID::random(), rectangle.origin, rectangle.size});
          },
          [&](const ChainSelect& select) {
            state.selectedEntityIDs.clear();
            for (const std::int64_t index : select.indices) {
              if (index < 0 || static_cast<std::uint64_t>(index) >= state.entities.size()) continue;
              state.selectedEntityIDs.insert(entityID(state.entities[static_cast<std::size_t>(index)]));
            }
          },
          [&](const ChainSpecUse& use) { state.activeWallSystemSpecID = use.specID; },
          [](const ChainAssign&) {},
          [](const ChainSpecShow&) {},
          [](const ChainSpecList&) {},
      },
      command);
}

}  // namespace ostrelon::CommandInterpreter
