#include "platform/file_beginning.h"

#include <fstream>

namespace ostrelon {

std::string readBeginning(FileSystem& files, const FilePath& path, std::size_t bytes) {
  const auto info = files.info(path);
  if (info && info->isRegularFile && info->size > bytes) {
    std::string beginning(bytes, '\0');
    std::ifstream file(path, std::ios::binary);
    if (file.read(beginning.data(), static_cast<std::streamsize>(bytes))) return beginning;
  }
  return files.readFile(path).substr(0, bytes);
}

}  // namespace ostrelon
