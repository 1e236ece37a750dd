// Comparing, merging and describing document files without a window, for version control and scripts. Paths
// are those of the shell: relative to the current folder, and with any extension, since git hands out copies
// of files under names of its own.
//
//   ostrelon --compare OLD NEW [--export FILE]        ostrelon --describe FILE
//   ostrelon --merge BASE OURS THEIRS --save OUT [--prefer ours|theirs|both]
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "app/command_line.h"
#include "app/difference_export.h"
#include "core/drawing.h"
#include "platform/file_system.h"

namespace ostrelon {

using PrintLine = std::function<void(std::string_view line)>;

/// Prints every difference, the counts first. The exit status: 0 for equal drawings, 1 for different ones.
/// Throws `UserError`. "/dev/null" is an empty drawing.
/// Each file of `--export` is written as well, before anything is printed.
int compareFiles(const CommandLine& line, FileSystem& files, const PrintLine& print,
                 const PagePictureMaker& makePicture = {});

/// Writes what comes of ours and theirs: our document with the merged drawing, and ours as its last undo
/// step. An empty file or "/dev/null" as the base stands for none. The exit status: 0 where it is written, 1
/// for conflicts that nothing was said about; these are printed, and nothing is written. Throws `UserError`.
int mergeFiles(const CommandLine& line, FileSystem& files, const PrintLine& print);

/// A drawing as lines of text: its wall systems, then an entity a line, in their order. Numbers are those of
/// a file, so that a drawing and its file read the same.
///
///   wall-system 5D7A… "W2-INT" thickness 4.5 height 96 notes "2×4 stud wall"
///   line 8E11… 0 0 120.5 0
///   wall 03C2… 0 0 96 0 "W2-INT"
void describeDrawing(const Drawing& drawing, const PrintLine& print);
int describeFile(const CommandLine& line, FileSystem& files, const PrintLine& print);

}  // namespace ostrelon
