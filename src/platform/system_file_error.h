// What the system's error numbers mean, in sentences that name the file.
#pragma once

#include <string>

#include "platform/file_system.h"

namespace ostrelon {

enum class FileAttempt { reading, writing, listing, makingFolder, removing };

/// "read “Plan.ostrel”": what follows "Could not " in a sentence.
std::string attemptText(FileAttempt attempt, const FilePath& path);
/// A sentence for an `errno` that an attempt ended with.
FileError systemError(int number, FileAttempt attempt, const FilePath& path);

}  // namespace ostrelon
