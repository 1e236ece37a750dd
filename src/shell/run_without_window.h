// Starts that open no window: console lines from files, then files from the drawing.
#pragma once

#include "app/command_line.h"

namespace ostrelon {

/// Opens, runs, saves and exports as the command line asks. The transcript goes to standard output, a failure
/// to standard error in one sentence. Settings are neither read nor written. The exit status is 0, 1 when a
/// console line was answered with an error, and 2 for a file that cannot be read or written.
int runWithoutWindow(const CommandLine& line);

/// Compares, merges or describes files of drawings. The exit status is that of the work, and 2 for a file
/// that cannot be read or written.
int runOnFiles(const CommandLine& line);

}  // namespace ostrelon
