// The beginning of a file, for lists of many files of which little is wanted.
#pragma once

#include <cstddef>
#include <string>

#include "platform/file_system.h"

namespace ostrelon {

/// Up to `bytes` of the file, fewer only at its end. On a disk no more than that is read; of a file system
/// that is none, the whole file. Throws `FileError` where that cannot be read.
std::string readBeginning(FileSystem& files, const FilePath& path, std::size_t bytes);

}  // namespace ostrelon
