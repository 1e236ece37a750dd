// The help text of the console, row by row.
#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {
namespace {

constexpr std::string_view kHelpRows =
    "line [<x1> <y1> <x2> <y2>]     draw a line or activate line tool\n"
    "l [<x1> <y1> <x2> <y2>]        alias for line\n"
    "trim <n> <edge> <x> <y>           trim entity; point x y on portion to remove\n"
    "tr [<n> <edge> <x> <y>]           alias for trim (no args → Trim tool)\n"
    "move <dx> <dy>                 move selected line by delta\n"
    "m <dx> <dy>                    alias for move\n"
    "extend [<line>] <boundary>      extend line to line/wall boundary\n"
    "ex [<line>] <boundary>          alias for extend\n"
    "zoom [in|out|fit|reset]         zoom view (default: in)\n"
    "z [in|out|fit|reset]            alias for zoom; canvas Z in, Shift+Z out\n"
    "wall <x1> <y1> <x2> <y2>       draw a wall (active system)\n"
    "wall <x1> <y1> <x2> <y2> <sys> draw wall with named system\n"
    "circle <cx> <cy> <r>           draw a circle\n"
    "rect <x> <y> <w> <h>           draw a rectangle\n"
    "poly [<x1> <y1> <x2> <y2> ...] draw a polygon (≥3 vertices) or activate polygon tool\n"
    "pl [<x1> <y1> ...]             alias for poly\n"
    "select [<n>…]                  select entities or activate select tool\n"
    "s [<n>]                          alias for select\n"
    "copy | co | cp                 copy selected entities to clipboard\n"
    "paste                          paste clipboard entities\n"
    "assign <system>                set wall system on selected wall\n"
    "length <value>                 set selected length/diameter\n"
    "nudge <dx> <dy>                move selected entity by delta\n"
    "center h|v                     align selected entities to shared centerline (≥2 selected)\n"
    "convert line|wall [system]     convert selected line/wall\n"
    "type line|wall [system]        alias for convert\n"
    "spec list                      list wall system specs\n"
    "spec use <name>                set active system for new walls\n"
    "spec show [name]               show system details\n"
    "checkpoint [message]           save a named document checkpoint\n"
    "history                        list document branches and checkpoints\n"
    "branch list                    list branches\n"
    "branch create <name> [cp-id]   create branch from checkpoint/current head\n"
    "branch switch <name>           switch active branch\n"
    "clear                          remove all entities\n"
    "cmd; cmd                       run chained immediate commands all-or-nothing\n"
    "                               chains reject empty segments, help, clear, and tool-only line/wall    "
    "while drawing: <length> [angle] line/wall numeric input    help                           show this "
    "message\n"
    "\n"
    "aliases:\n";

}  // namespace

std::string helpText() { return std::string(kHelpRows) + aliasHelpText(); }

}  // namespace ostrelon::CommandInterpreter
