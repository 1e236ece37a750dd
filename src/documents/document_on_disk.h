// What was last read from or written to the file of the document, kept to notice that another program has
// written it since.
#pragma once

#include <cstdint>

#include "platform/file_system.h"

namespace ostrelon {

struct DocumentOnDisk {
  FilePath path;  ///< standardised
  FileInfo info;
  std::uint64_t contentHash = 0;
  friend bool operator==(const DocumentOnDisk&, const DocumentOnDisk&) = default;
};

}  // namespace ostrelon
