// Calls of command chains.
#include "automation/call_binding.h"
#include "console/command_chain.h"

namespace ostrelon {
namespace {

using namespace CommandInterpreter;  // NOLINT(google-build-using-namespace)

Json commandToJson(const ChainCommand& command) {
  return std::visit(
      Overloaded{
          [](const ChainLine& line) -> Json {
            return {{"case", "line"}, {"from", toJson(line.from)}, {"to", toJson(line.to)}};
          },
          [](const ChainWall& wall) -> Json {
            return {{"case", "wall"},
                    {"from", toJson(wall.from)},
                    {"to", toJson(wall.to)},
                    {"systemSpecID", toJson(wall.systemSpecID)}};
          },
          [](const ChainCircle& circle) -> Json {
            return {{"case", "circle"}, {"center", toJson(circle.center)}, {"radius", toJson(circle.radius)}};
          },
          [](const ChainRectangle& rectangle) -> Json {
            return {{"case", "rectangle"},
                    {"origin", toJson(rectangle.origin)},
                    {"size", toJson(rectangle.size)}};
          },
          [](const ChainSelect& select) -> Json {
            return {{"case", "select"}, {"indices", toJson(select.indices)}};
          },
          [](const ChainAssign& assign) -> Json {
            return {{"case", "assign"}, {"specID", toJson(assign.specID)}};
          },
          [](const ChainSpecUse& use) -> Json {
            return {{"case", "specUse"}, {"specID", toJson(use.specID)}};
          },
          [](const ChainSpecShow& show) -> Json {
            return {{"case", "specShow"}, {"name", toJson(show.name)}};
          },
          [](const ChainSpecList&) -> Json {
            return {{"case", "specList"}};
          },
      },
      command);
}

// The commands, or the number of the segment that is wrong and what is wrong with it.
Json parsedChain(AutomationSession& session, const std::string& text) {
  const auto parsed = parseChain(text, session.sketch());
  if (const auto* error = std::get_if<ChainError>(&parsed)) {
    return {{"case", "failure"}, {"segment", error->segment}, {"message", error->message}};
  }
  Json commands = Json::array();
  for (const ChainCommand& command : std::get<std::vector<ChainCommand>>(parsed)) {
    commands.push_back(commandToJson(command));
  }
  return commands;
}

// What a chain that begins now is checked against.
ChainValidationState stateOfDocument(const SketchViewModel& sketch) {
  return {&sketch, sketch.entities, sketch.selectedEntityIDs, sketch.activeWallSystemSpecID};
}

Json parsedSegment(AutomationSession& session, const std::vector<std::string>& tokens,
                   const std::optional<ChainValidationState>& state) {
  if (tokens.empty()) throw ArgumentError("Argument 1: expected at least one word.");
  const ChainParseResult result =
      parseChainSegment(tokens, state ? *state : stateOfDocument(session.sketch()));
  if (const auto* failure = std::get_if<ChainFailure>(&result)) {
    return {{"case", "failure"}, {"message", failure->message}};
  }
  return {{"case", "success"}, {"command", commandToJson(std::get<ChainCommand>(result))}};
}

// The state that the command leaves behind.
Json advancedState(AutomationSession& session, const ChainCommand& command,
                   const std::optional<ChainValidationState>& before) {
  ChainValidationState state = before ? *before : stateOfDocument(session.sketch());
  applyToValidationState(command, state);
  return {{"entities", toJson(state.entities)},
          {"selectedEntityIDs", toJson(state.selectedEntityIDs)},
          {"activeWallSystemSpecID", toJson(state.activeWallSystemSpecID)}};
}

}  // namespace

template <>
ChainCommand Reader<ChainCommand>::read(const Json& json, const ReadContext& context) {
  if (!json.is_object()) throw ArgumentError("expected a command of a chain");
  const auto kind = Reader<std::string>::read(memberOf(json, "case"), context);
  const auto point = [&](const char* name) {
    return Reader<SketchPoint>::read(memberOf(json, name), context);
  };
  const auto id = [&](const char* name) { return Reader<UUID>::read(memberOf(json, name), context); };
  if (kind == "line") return ChainLine{point("from"), point("to")};
  if (kind == "wall") return ChainWall{point("from"), point("to"), id("systemSpecID")};
  if (kind == "circle") {
    return ChainCircle{point("center"), Reader<double>::read(memberOf(json, "radius"), context)};
  }
  if (kind == "rectangle") {
    return ChainRectangle{point("origin"), Reader<SketchSize>::read(memberOf(json, "size"), context)};
  }
  if (kind == "select") {
    return ChainSelect{Reader<std::vector<std::int64_t>>::read(memberOf(json, "indices"), context)};
  }
  if (kind == "assign") return ChainAssign{id("specID")};
  if (kind == "specUse") return ChainSpecUse{id("specID")};
  if (kind == "specShow") {
    return ChainSpecShow{Reader<std::optional<std::string>>::read(memberOf(json, "name"), context)};
  }
  if (kind == "specList") return ChainSpecList{};
  throw ArgumentError(
      "case: expected line, wall, circle, rectangle, select, assign, specUse, specShow or specList");
}

template <>
ChainValidationState Reader<ChainValidationState>::read(const Json& json, const ReadContext& context) {
  if (!json.is_object()) throw ArgumentError("expected the state that a chain is checked against");
  return {&context.sketch, Reader<EntityList>::read(memberOf(json, "entities"), context),
          Reader<std::unordered_set<UUID>>::read(memberOf(json, "selectedEntityIDs"), context),
          Reader<UUID>::read(memberOf(json, "activeWallSystemSpecID"), context)};
}

template <>
ChainExecutionContext Reader<ChainExecutionContext>::read(const Json& json, const ReadContext& context) {
  if (!json.is_object()) throw ArgumentError("expected the counters of a chain");
  const auto counter = [&](const char* name) {
    return Reader<std::optional<int>>::read(memberOf(json, name), context).value_or(0);
  };
  ChainExecutionContext counters;
  counters.linesAdded = counter("linesAdded");
  counters.wallsAdded = counter("wallsAdded");
  counters.circlesAdded = counter("circlesAdded");
  counters.rectanglesAdded = counter("rectanglesAdded");
  counters.selectionUpdates = counter("selectionUpdates");
  counters.wallAssignments = counter("wallAssignments");
  counters.specCommands = counter("specCommands");
  counters.collinearMerges = counter("collinearMerges");
  counters.cornerJoins = counter("cornerJoins");
  return counters;
}

void addChainCalls(CallTable& table) {
  table["runChain"] = call(
      [](AutomationSession& session, const std::string& text) { return runChain(text, session.sketch()); });
  table["parseChain"] =
      call([](AutomationSession& session, const std::string& text) { return parsedChain(session, text); });
  table["parseChainSegment"] = call(
      [](AutomationSession& session, const std::vector<std::string>& tokens,
         const std::optional<ChainValidationState>& state) { return parsedSegment(session, tokens, state); });
  table["applyToValidationState"] = call([](AutomationSession& session, const ChainCommand& command,
                                            const std::optional<ChainValidationState>& state) {
    return advancedState(session, command, state);
  });
  // By itself, outside a chain, a command takes the undo steps of what it does.
  table["executeChainCommand"] = call([](AutomationSession& session, const ChainCommand& command,
                                         const std::optional<ChainExecutionContext>& context) {
    ChainExecutionContext counters = context.value_or(ChainExecutionContext());
    return executeChainCommand(command, counters, session.sketch());
  });
  table["chainSummary"] = call([](const ChainExecutionContext& counters, std::int64_t count) {
    return chainSummary(counters, static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
  });
}

}  // namespace ostrelon
