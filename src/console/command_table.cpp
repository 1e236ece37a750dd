// The one table of the commands.
#include <algorithm>

#include "console/command.h"
#include "console/compare_commands.h"
#include "console/dimension_commands.h"
#include "console/drawing_commands.h"
#include "console/edit_commands.h"
#include "console/help_commands.h"
#include "console/history_commands.h"
#include "console/kept_commands.h"
#include "console/look_command.h"
#include "console/opening_commands.h"
#include "console/room_commands.h"
#include "console/run_command.h"
#include "console/schedule_commands.h"
#include "console/selection_commands.h"
#include "console/sheet_commands.h"
#include "console/system_commands.h"
#include "console/trim_commands.h"
#include "console/wall_system_commands.h"
#include "console/zoom_command.h"

namespace ostrelon::CommandInterpreter {
namespace {

using Names = Completion::Names;

std::vector<Command> makeTable() {
  return {
      {.word = "line",
       .aliases = {"l"},
       .usage = "line [<x1> <y1> <x2> <y2>]",
       .chainUsage = "line <x1> <y1> <x2> <y2>",
       .help = "line [<x1> <y1> <x2> <y2>]     draw a line or activate line tool\n"
               "l [<x1> <y1> <x2> <y2>]        alias for line\n",
       .isKnownInChains = true,
       .parse = parseLine},
      {.word = "trim",
       .spellings = {"tr"},
       .usage = "trim [<n> <edge> <keep-x> <keep-y>]",
       .help = "trim <n> <edge> <x> <y>           trim entity; point x y on portion to remove\n"
               "tr [<n> <edge> <x> <y>]           alias for trim (no args → Trim tool)\n",
       .isKnownInChains = true,
       .chainRefusal = "trim cannot be used in a chain.",
       .parse = parseTrim},
      {.word = "move",
       .aliases = {"m"},
       .usage = "move <dx> <dy>  (select a line first)",
       .help = "move <dx> <dy>                 move selected line by delta\n"
               "m <dx> <dy>                    alias for move\n",
       .parse = parseMove},
      {.word = "extend",
       .aliases = {"ex"},
       .usage = "extend [<line>] <boundary>",
       .help = "extend [<line>] <boundary>      extend line to line/wall boundary\n"
               "ex [<line>] <boundary>          alias for extend\n",
       .parse = parseExtend},
      {.word = "zoom",
       .aliases = {"z"},
       .usage = "zoom [in|out|fit|reset]",
       .help = "zoom [in|out|fit|reset]         zoom view (default: in)\n"
               "z [in|out|fit|reset]            alias for zoom; canvas Z in, Shift+Z out\n",
       .completions = {{.words = {"fit", "in", "out", "reset"}}},
       .parse = parseZoom},
      {.word = "wall",
       .usage = "wall <x1> <y1> <x2> <y2> [system]",
       .help = "wall <x1> <y1> <x2> <y2>       draw a wall (active system)\n"
               "wall <x1> <y1> <x2> <y2> <sys> draw wall with named system\n",
       .completions = {{.position = 5, .names = Names::wallSystems}},
       .isKnownInChains = true,
       .parse = parseWall},
      {.word = "circle",
       .usage = "circle <cx> <cy> <r>",
       .help = "circle <cx> <cy> <r>           draw a circle\n",
       .isKnownInChains = true,
       .parse = parseCircle},
      {.word = "rect",
       .aliases = {"rectangle"},
       .usage = "rect <x> <y> <w> <h>",
       .help = "rect <x> <y> <w> <h>           draw a rectangle\n",
       .isKnownInChains = true,
       .parse = parseRectangle},
      {.word = "poly",
       .aliases = {"polygon", "pl", "poly"},
       .usage = "poly [<x1> <y1> <x2> <y2> ...]  (≥3 vertices)",
       .help = "poly [<x1> <y1> <x2> <y2> ...] draw a polygon (≥3 vertices) or activate polygon tool\n"
               "pl [<x1> <y1> ...]             alias for poly\n",
       .parse = parsePolygon},
      {.word = "select",
       .spellings = {"s"},
       .usage = "select [<n>…]  (1-based entity numbers)",
       .help = "select [<n>…]                  select entities or activate select tool\n"
               "s [<n>]                          alias for select\n",
       .isKnownInChains = true,
       .parse = parseSelect},
      {.word = "copy",
       .spellings = {"co", "cp"},
       .usage = "copy",
       .help = "copy | co | cp                 copy selected entities to clipboard\n",
       .parse = parseCopy},
      {.word = "paste",
       .usage = "paste",
       .help = "paste                          paste clipboard entities\n",
       .parse = parsePaste},
      {.word = "assign",
       .usage = "assign <system>  (select a wall first)",
       .help = "assign <system>                set wall system on selected wall\n",
       .completions = {{.names = Names::wallSystems}},
       .isKnownInChains = true,
       .parse = parseAssign},
      {.word = "length",
       .usage = "length <value>  (select an entity first)",
       .help = "length <value>                 set selected length/diameter\n",
       .parse = parseLength},
      {.word = "nudge",
       .usage = "nudge <dx> <dy>  (select an entity first)",
       .help = "nudge <dx> <dy>                move selected entity by delta\n",
       .parse = parseNudge},
      {.word = "center",
       .usage = "center h|v  (align selected entities; need ≥2 selected)",
       .help = "center h|v                     align selected entities to shared centerline (≥2 selected)\n",
       .completions = {{.words = {"h", "v"}}},
       .parse = parseCenter},
      {.word = "convert",
       .spellings = {"type"},
       .usage = "convert line|wall [system]",
       .help = "convert line|wall [system]     convert selected line/wall\n"
               "type line|wall [system]        alias for convert\n",
       .completions = {{.words = {"line", "wall"}},
                       {.position = 2, .names = Names::wallSystems, .onlyAfter = "wall"}},
       .parse = parseConvert},
      {.word = "spec",
       .usage = "spec list | spec use <name> | spec show [name]",
       .help = "spec list                      list wall system specs\n"
               "spec use <name>                set active system for new walls\n"
               "spec show [name]               show system details\n",
       .completions = {{.words = {"list", "show", "use"}},
                       {.position = 2, .names = Names::wallSystems, .onlyAfter = "use"},
                       {.position = 2, .names = Names::wallSystems, .onlyAfter = "show"}},
       .isKnownInChains = true,
       .parse = parseSpec},
      {.word = "checkpoint",
       .help = "checkpoint [message]           save a named document checkpoint\n",
       .parse = parseCheckpoint},
      {.word = "history",
       .help = "history                        list document branches and checkpoints\n",
       .parse = parseHistory},
      {.word = "branch",
       .usage = "branch list | branch create <name> [checkpoint-id] | branch switch <name>",
       .help = "branch list                    list branches\n"
               "branch create <name> [cp-id]   create branch from checkpoint/current head\n"
               "branch switch <name>           switch active branch\n",
       .completions = {{.words = {"create", "list", "switch"}},
                       {.position = 2, .names = Names::branches, .onlyAfter = "switch"}},
       .parse = parseBranch},
      {.word = "clear",
       .help = "clear                          remove all entities\n",
       .isKnownInChains = true,
       .chainRefusal = "clear cannot be used in a chain; run clear by itself.",
       .parse = parseClear},
      // The help text begins with chains and typed sizes, which are no commands.
      {.word = "help",
       .aliases = {"?"},
       .help = "cmd; cmd                       run chained immediate commands all-or-nothing\n"
               "                               chains reject empty segments, help, clear, and tool-only "
               "line/wall    while drawing: <length> [angle] line/wall numeric input    help               "
               "            show this message\n",
       .isKnownInChains = true,
       .chainRefusal = "help cannot be used in a chain.",
       .parse = parseHelp},
      {.word = "run",
       .usage = "run <x>,<y> <direction><length>… [c] [out|in|mid]",
       .summary = "draw walls along a path by one of their faces; c closes it",
       .example = "run 0,0 e42' n28' w42' c out",
       .completions = {{.position = 2,
                        .words = {"c", "e", "in", "mid", "n", "ne", "nw", "out", "s", "se", "sw", "w"},
                        .isLasting = true}},
       .isKnownInChains = true,
       .parse = parseRun},
      {.word = "door",
       .usage = "door <wall> <distance>|mid <width> [left|right] [in|out]",
       .summary = "add a door to a wall; the distance is from its start to the near jamb",
       .example = "door 1 4' 3' right out",
       .completions = {{.position = 2, .words = {"mid"}},
                       {.position = 4, .words = {"in", "left", "out", "right"}},
                       {.position = 5, .words = {"in", "out"}, .onlyAfter = "left"},
                       {.position = 5, .words = {"in", "out"}, .onlyAfter = "right"}},
       .isKnownInChains = true,
       .parse = parseDoor},
      {.word = "window",
       .usage = "window <wall> <distance>|mid <width>",
       .summary = "add a window to a wall",
       .example = "window 1 mid 4'",
       .completions = {{.position = 2, .words = {"mid"}}},
       .isKnownInChains = true,
       .parse = parseWindow},
      {.word = "opening",
       .usage = "opening <wall> <distance>|mid <width>",
       .summary = "add an opening with neither door nor window to a wall",
       .example = "opening 1 12'-6\" 5'",
       .completions = {{.position = 2, .words = {"mid"}}},
       .isKnownInChains = true,
       .parse = parseOpening},
      {.word = "openings",
       .usage = "openings",
       .summary = "the schedule of doors, windows and openings",
       .example = "openings",
       .parse = parseOpenings},
      {.word = "room",
       .usage = "room <x> <y> <name>",
       .summary = "name the room around a place",
       .example = "room 12 8'6 Living Room",
       .isKnownInChains = true,
       .parse = parseRoom},
      {.word = "divide",
       .usage = "divide <x1> <y1> <x2> <y2>",
       .summary = "part an open plan for rooms alone",
       .example = "divide 12 0 12 14'",
       .isKnownInChains = true,
       .chainRefusal = "divide cannot be used in a chain.",
       .parse = parseDivide},
      {.word = "note",
       .usage = "note <x> <y> [to <x> <y>] <text>",
       .summary = "write a note on the plan, with a leader to a place; \\n begins another line",
       .example = "note 30 20 to 24 14 Beam above",
       .isKnownInChains = true,
       .parse = parseNote},
      {.word = "sheet",
       .usage = "sheet scale [<scale>]",
       .summary = "the scale at which texts and dimensions are as large as they should be",
       .example = "sheet scale 1/4",
       .completions = {{.words = {"scale"}}},
       .isKnownInChains = true,
       .chainRefusal = "sheet cannot be used in a chain.",
       .parse = parseSheet},
      {.word = "rooms",
       .usage = "rooms",
       .summary = "the rooms between the walls: size, area, perimeter, total and gross area",
       .example = "rooms",
       .parse = parseRooms},
      {.word = "dim",
       .usage = "dim <x1> <y1> <x2> <y2> [<offset>] [aligned|horizontal|vertical] | dim auto on|off",
       .summary = "a dimension between two points, its line to the left of them; auto: the strings "
                  "around the plan",
       .example = "dim 0 0 42' 0 -3'",
       .completions = {{.words = {"auto"}},
                       {.position = 2, .words = {"off", "on"}, .onlyAfter = "auto"},
                       {.position = 5, .words = {"aligned", "horizontal", "vertical"}},
                       {.position = 6, .words = {"aligned", "horizontal", "vertical"}}},
       .isKnownInChains = true,
       .parse = parseDimension},
      {.word = "takeoff",
       .usage = "takeoff",
       .summary = "what the plan is made of: walls by system, openings by width, shapes by kind",
       .example = "takeoff",
       .parse = parseTakeoff},
      {.word = "system",
       .usage = "system <name> <thickness> [<height>] | system add|rename|delete|inches …",
       .summary =
           "change the wall systems: add <name> <thickness> [<height>] [notes…], rename <name> to <new "
           "name>, delete <name> [to <name>], inches [yes]",
       .example = "system W2-INT 4-1/2\" 8'",
       .completions = {{.words = {"add", "delete", "inches", "rename"}, .names = Names::wallSystems},
                       {.position = 2, .names = Names::wallSystems, .onlyAfter = "delete"},
                       {.position = 2, .names = Names::wallSystems, .onlyAfter = "rename"},
                       {.position = 2, .words = {"yes"}, .onlyAfter = "inches"},
                       {.position = 4, .names = Names::wallSystems, .onlyAfter = "to"}},
       .parse = parseSystem},
      {.word = "look",
       .usage = "look [clean|fill|weights on|off]…",
       .summary = "how the plan looks: clean walls, filled walls, line weights",
       .example = "look clean on fill on",
       .completions = {{.words = {"clean", "fill", "weights"}}, {.position = 2, .words = {"off", "on"}}},
       .isKnownInChains = true,
       .chainRefusal = "look cannot be used in a chain.",
       .parse = parseLook},
      {.word = "compare",
       .usage = "compare <name>",
       .summary = "what differs from a branch, a checkpoint or a document",
       .example = "compare main",
       .completions = {{.names = Names::drawings}},
       .parse = parseCompare},
      {.word = "merge",
       .usage = "merge <name> [ours|theirs|both]",
       .summary = "take over what was drawn there; conflicts by ours, theirs or both",
       .example = "merge option-a ours",
       .completions = {{.names = Names::drawings}, {.position = 2, .words = {"both", "ours", "theirs"}}},
       .parse = parseMerge},
      {.word = "kept",
       .usage = "kept [restore <n>]",
       .summary = "list drawings kept before they were replaced, or bring one back as an edit",
       .example = "kept",
       .completions = {{.words = {"restore"}}},
       .parse = parseKept},
      {.word = "more",
       .usage = "more",
       .summary = "list the commands that help does not tell",
       .example = "more",
       .parse = parseMore},
  };
}

bool has(const std::vector<std::string_view>& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

std::span<const Command> commandTable() {
  static const std::vector<Command> table = makeTable();
  return table;
}

const Command* findCommand(std::string_view word) {
  for (const Command& command : commandTable()) {
    if (command.word == word || has(command.spellings, word)) return &command;
  }
  return nullptr;
}

const Command* findChainCommand(std::string_view word) {
  for (const Command& command : commandTable()) {
    if (!command.isKnownInChains) continue;
    if (command.word == word || has(command.spellings, word) || has(command.aliases, word)) return &command;
  }
  return nullptr;
}

ParseState parseStateOf(const Sketch& sketch) {
  return {&sketch, sketch.entities(), std::nullopt, sketch.drawing->activeWallSystemSpecID};
}

std::variant<Action, Reply> parseCommand(const Command& command, const Words& words, const ParseState& state,
                                         Place place) {
  ParseResult result = command.parse(words, state, place);
  if (auto* action = std::get_if<Action>(&result)) return std::move(*action);
  if (auto* reply = std::get_if<Reply>(&result)) return std::move(*reply);
  std::string_view usage = std::get<WrongUse>(result).usage;
  if (usage.empty() && place == Place::chain) usage = command.chainUsage;
  if (usage.empty()) usage = command.usage;
  return Reply::error("Usage: " + std::string(usage));
}

Reply run(const Action& action, const CommandContext& context) {
  return std::visit([&](const auto& deed) { return run(deed, context); }, action);
}

}  // namespace ostrelon::CommandInterpreter
