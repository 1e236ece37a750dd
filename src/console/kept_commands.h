// The command on the drawings that were kept before something took their place: `kept`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseKept(const Words& words, const ParseState& state, Place place);

Reply run(const ListKept& list, const CommandContext& context);
Reply run(const RestoreKept& restore, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
