// Starting the automation interface from the options of the program.
#pragma once

#include "app/command_line.h"

namespace ostrelon {

/// Serves standard input on standard output until the input ends. Gives the exit status: 2, with a
/// sentence on standard error, for options that cannot be understood.
int serveAutomation(const CommandLine& line);

}  // namespace ostrelon
