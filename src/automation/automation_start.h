// Starting the automation interface from the options of the program.
#pragma once

#include "app/command_line.h"
#include "app/drawing_exchange.h"

namespace ostrelon {

/// Serves standard input on standard output until the input ends. Gives the exit status: 2, with a
/// sentence on standard error, for options that cannot be understood.
/// `makePicture` draws what is exported; empty: only DXF can be.
int serveAutomation(const CommandLine& line, PictureMaker makePicture = {});

}  // namespace ostrelon
