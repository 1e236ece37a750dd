// Parsing and checking a chain.
#include "console/command_chain.h"

#include "console/command_interpreter.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {

std::variant<std::vector<Action>, ChainError> parseChain(std::string_view text, const Sketch& sketch) {
  ParseState state = parseStateOf(sketch);
  std::vector<Action> commands;
  for (std::size_t number = 1;; ++number) {
    const auto semicolon = text.find(';');
    const std::string_view piece = trimmed(text.substr(0, semicolon));
    if (piece.empty()) return ChainError{number, "empty command."};
    auto parsed = parseChainSegment(splitAtWhiteSpace(piece), state);
    if (auto* failure = std::get_if<Reply>(&parsed)) return ChainError{number, *std::move(failure->text)};
    commands.push_back(std::move(std::get<Action>(parsed)));
    applyToValidationState(commands.back(), state);
    if (semicolon == std::string_view::npos) return commands;
    text.remove_prefix(semicolon + 1);
  }
}

std::variant<Action, Reply> parseChainSegment(const Words& tokens, const ParseState& state) {
  const std::string word = lowerCased(tokens.front());
  const Command* command = findChainCommand(word);
  if (command == nullptr) return Reply::error(unknownCommandText(word));
  if (!command->chainRefusal.empty()) return Reply::refused(std::string(command->chainRefusal));
  return parseCommand(*command, tokens, state, Place::chain);
}

void applyToValidationState(const Action& command, ParseState& state) {
  std::visit(Overloaded{
                 [&](const DrawLine& line) {
                   state.entities.append(LineEntity{UUID::random(), line.from, line.to});
                 },
                 [&](const DrawWall& wall) {
                   const UUID id = UUID::random();
                   state.entities.append(WallEntity{id, wall.from, wall.to, wall.systemSpecID});
                   state.selectedEntityIDs = EntitySet{id};
                 },
                 [&](const DrawCircle& circle) {
                   state.entities.append(CircleEntity{UUID::random(), circle.center, circle.radius});
                 },
                 [&](const DrawRectangle& rectangle) {
                   state.entities.append(RectangleEntity{UUID::random(), rectangle.origin, rectangle.size});
                 },
                 [&](const DrawRun& run) {
                   std::unordered_set<UUID> added;
                   for (const auto& [from, to] : run.axes) {
                     const UUID id = *added.insert(UUID::random()).first;
                     state.entities.append(WallEntity{id, from, to, run.systemSpecID});
                   }
                   state.selectedEntityIDs = std::move(added);
                 },
                 [&](const SelectEntities& select) {
                   std::unordered_set<UUID> selected;
                   for (const std::int64_t index : select.indices) {
                     if (index < 0 || static_cast<std::uint64_t>(index) >= state.entities.size()) continue;
                     selected.insert(entityID(state.entities[static_cast<std::size_t>(index)]));
                   }
                   state.selectedEntityIDs = std::move(selected);
                 },
                 [&](const UseWallSystem& use) { state.activeWallSystemSpecID = use.specID; },
                 [](const auto&) {},
             },
             command);
}

}  // namespace ostrelon::CommandInterpreter
