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

Json parsedSegment(AutomationSession& session, const std::vector<std::string>& tokens) {
  if (tokens.empty()) throw ArgumentError("Argument 1: expected at least one word.");
  const SketchViewModel& sketch = session.sketch();
  const ChainParseResult result = parseChainSegment(
      tokens, {&sketch, sketch.entities, sketch.selectedEntityIDs, sketch.activeWallSystemSpecID});
  if (const auto* failure = std::get_if<ChainFailure>(&result)) {
    return {{"case", "failure"}, {"message", failure->message}};
  }
  return {{"case", "success"}, {"command", commandToJson(std::get<ChainCommand>(result))}};
}

}  // namespace

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
  table["runChain"] = sessionCall(
      [](AutomationSession& session, const std::string& text) { return runChain(text, session.sketch()); });
  table["parseChain"] = sessionCall(
      [](AutomationSession& session, const std::string& text) { return parsedChain(session, text); });
  table["parseChainSegment"] =
      sessionCall([](AutomationSession& session, const std::vector<std::string>& tokens) {
        return parsedSegment(session, tokens);
      });
  table["chainSummary"] =
      sessionCall([](AutomationSession&, const ChainExecutionContext& counters, std::int64_t count) {
        return chainSummary(counters, static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
      });
}

}  // namespace ostrelon
