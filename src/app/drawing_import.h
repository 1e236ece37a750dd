// A drawing of another program that is about to be added, while it is still asked how: the import sheet shows
// what comes of each choice.
#pragma once

#include <optional>
#include <string>

#include "exchange/dxf_import.h"
#include "platform/file_system.h"

namespace ostrelon {

class Application;
class Sketch;

class DrawingImport {
 public:
  /// Reads the file; of a damaged one what can be read. Throws `UserError` where that is nothing.
  DrawingImport(FileSystem& files, const FilePath& path);

  const std::string& name() const { return name_; }
  const DxfFile& file() const { return file_; }
  /// What is wrong with the file, as a whole sentence; absent for one that is whole.
  const std::optional<std::string>& damage() const { return damage_; }

  /// What would be added. Of a large file it is worked out by `sketch`'s runner. Throws `DxfError` where that
  /// is too much.
  PreparedDxf prepared(const Sketch& sketch, const DxfImportOptions& options) const;
  /// "12000 × 8000 millimeters, 39'4" × 26'3"": the extent in the unit of the file and in feet.
  static std::string extentText(const PreparedDxf& prepared);

 private:
  std::string name_;
  DxfFile file_;
  std::optional<std::string> damage_;
};

/// Adds it, and reports that in the console and in a toast, as it does a failure.
void addImport(Application& application, const DrawingImport& import, const DxfImportOptions& options);

}  // namespace ostrelon
