// Calls of command chains.
#include "automation/call_binding.h"
#include "console/command_chain.h"

namespace ostrelon {
namespace {

using namespace CommandInterpreter;  // NOLINT(google-build-using-namespace)

Json commandToJson(const Action& command) {
  return std::visit(
      Overloaded{
          [](const DrawLine& line) -> Json {
            return {{"case", "line"}, {"from", toJson(line.from)}, {"to", toJson(line.to)}};
          },
          [](const DrawWall& wall) -> Json {
            return {{"case", "wall"},
                    {"from", toJson(wall.from)},
                    {"to", toJson(wall.to)},
                    {"systemSpecID", toJson(wall.systemSpecID)}};
          },
          [](const DrawCircle& circle) -> Json {
            return {{"case", "circle"}, {"center", toJson(circle.center)}, {"radius", toJson(circle.radius)}};
          },
          [](const DrawRectangle& rectangle) -> Json {
            return {{"case", "rectangle"},
                    {"origin", toJson(rectangle.origin)},
                    {"size", toJson(rectangle.size)}};
          },
          [](const DrawRun& run) -> Json {
            Json walls = Json::array();
            for (const auto& [from, to] : run.axes) walls.push_back({toJson(from), toJson(to)});
            return {{"case", "run"},
                    {"walls", walls},
                    {"systemSpecID", toJson(run.systemSpecID)},
                    {"typedLength", toJson(run.typedLength)}};
          },
          [](const AddOpening& add) -> Json {
            return {{"case", "opening"},         {"wall", add.wall},
                    {"kind", toJson(add.kind)},  {"distance", toJson(add.distance)},
                    {"width", add.width},        {"hinge", toJson(add.hinge)},
                    {"swing", toJson(add.swing)}};
          },
          [](const SelectEntities& select) -> Json {
            return {{"case", "select"}, {"indices", toJson(select.indices)}};
          },
          [](const AssignWallSystem& assign) -> Json {
            return {{"case", "assign"}, {"specID", toJson(assign.specID)}};
          },
          [](const UseWallSystem& use) -> Json {
            return {{"case", "specUse"}, {"specID", toJson(use.specID)}};
          },
          [](const ShowWallSystem& show) -> Json {
            return {{"case", "specShow"}, {"name", toJson(show.name)}};
          },
          [](const ListWallSystems&) -> Json {
            return {{"case", "specList"}};
          },
          // The others occur in no chain.
          [](const auto&) -> Json { return nullptr; },
      },
      command);
}

// The commands, or the number of the segment that is wrong and what is wrong with it.
Json parsedChain(AutomationSession& session, const std::string& text) {
  const auto parsed = parseChain(text, session.workspace().sketch);
  if (const auto* error = std::get_if<ChainError>(&parsed)) {
    return {{"case", "failure"}, {"segment", error->segment}, {"message", error->message}};
  }
  Json commands = Json::array();
  for (const Action& command : std::get<std::vector<Action>>(parsed)) {
    commands.push_back(commandToJson(command));
  }
  return commands;
}

Json parsedSegment(AutomationSession& session, const std::vector<std::string>& tokens,
                   const std::optional<ParseState>& state) {
  if (tokens.empty()) throw ArgumentError("Argument 1: expected at least one word.");
  const auto result = parseChainSegment(tokens, state ? *state : parseStateOf(session.workspace().sketch));
  if (const auto* failure = std::get_if<Reply>(&result)) {
    return {{"case", "failure"}, {"message", *failure->text}};
  }
  return {{"case", "success"}, {"command", commandToJson(std::get<Action>(result))}};
}

// The state after the command.
Json advancedState(AutomationSession& session, const Action& command,
                   const std::optional<ParseState>& before) {
  ParseState state = before ? *before : parseStateOf(session.workspace().sketch);
  applyToValidationState(command, state);
  return {{"entities", toJson(state.entities)},
          {"selectedEntityIDs", toJson(state.selected())},
          {"activeWallSystemSpecID", toJson(state.activeWallSystemSpecID)}};
}

}  // namespace

template <>
constexpr std::string_view kValueName<Action> = "command";
template <>
constexpr std::string_view kValueName<ParseState> = "chain state";
template <>
constexpr std::string_view kValueName<ChainExecutionContext> = "chain counters";

template <>
Action Reader<Action>::read(const Json& json, const ReadContext& context) {
  if (!json.is_object()) throw ArgumentError("expected a command of a chain");
  const auto kind = Reader<std::string>::read(memberOf(json, "case"), context);
  const auto point = [&](const char* name) {
    return Reader<SketchPoint>::read(memberOf(json, name), context);
  };
  const auto id = [&](const char* name) { return Reader<UUID>::read(memberOf(json, name), context); };
  if (kind == "line") return DrawLine{point("from"), point("to")};
  if (kind == "wall") return DrawWall{point("from"), point("to"), id("systemSpecID")};
  if (kind == "circle") {
    return DrawCircle{point("center"), Reader<double>::read(memberOf(json, "radius"), context)};
  }
  if (kind == "rectangle") {
    return DrawRectangle{point("origin"), Reader<SketchSize>::read(memberOf(json, "size"), context)};
  }
  if (kind == "select") {
    return SelectEntities{Reader<std::vector<std::int64_t>>::read(memberOf(json, "indices"), context)};
  }
  if (kind == "run") {
    DrawRun run{{}, id("systemSpecID"), Reader<double>::read(memberOf(json, "typedLength"), context)};
    for (const auto& [from, to] :
         Reader<std::vector<std::pair<SketchPoint, SketchPoint>>>::read(memberOf(json, "walls"), context)) {
      run.axes.push_back({from, to});
    }
    return run;
  }
  if (kind == "opening") {
    AddOpening add;
    add.wall = Reader<std::int64_t>::read(memberOf(json, "wall"), context);
    add.kind = Reader<OpeningKind>::read(memberOf(json, "kind"), context);
    add.distance = Reader<std::optional<double>>::read(memberOf(json, "distance"), context);
    add.width = Reader<double>::read(memberOf(json, "width"), context);
    add.hinge = Reader<DoorHinge>::read(memberOf(json, "hinge"), context);
    add.swing = Reader<DoorSwing>::read(memberOf(json, "swing"), context);
    return add;
  }
  if (kind == "assign") return AssignWallSystem{id("specID")};
  if (kind == "specUse") return UseWallSystem{id("specID")};
  if (kind == "specShow") {
    return ShowWallSystem{Reader<std::optional<std::string>>::read(memberOf(json, "name"), context)};
  }
  if (kind == "specList") return ListWallSystems{};
  throw ArgumentError(
      "case: expected line, wall, circle, rectangle, select, assign, specUse, specShow or specList");
}

template <>
ParseState Reader<ParseState>::read(const Json& json, const ReadContext& context) {
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
  counters.doorsAdded = counter("doorsAdded");
  counters.windowsAdded = counter("windowsAdded");
  counters.openingsAdded = counter("openingsAdded");
  return counters;
}

void addChainCalls(CallTable& table) {
  table["runChain"] = call([](AutomationSession& session, const std::string& text) {
    return runChain(text, session.workspace().commands()).text;
  });
  table["parseChain"] =
      call([](AutomationSession& session, const std::string& text) { return parsedChain(session, text); });
  table["parseChainSegment"] =
      call([](AutomationSession& session, const std::vector<std::string>& tokens,
              const std::optional<ParseState>& state) { return parsedSegment(session, tokens, state); });
  table["applyToValidationState"] =
      call([](AutomationSession& session, const Action& command, const std::optional<ParseState>& state) {
        return advancedState(session, command, state);
      });
  // By itself, outside a chain, a command takes the undo steps of what it does.
  table["executeChainCommand"] = call([](AutomationSession& session, const Action& command,
                                         const std::optional<ChainExecutionContext>& context) {
    ChainExecutionContext counters = context.value_or(ChainExecutionContext());
    return executeChainCommand(command, counters, session.workspace().commands());
  });
  table["chainSummary"] = call([](const ChainExecutionContext& counters, std::int64_t count) {
    return chainSummary(counters, static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
  });
}

}  // namespace ostrelon
