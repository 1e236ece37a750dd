// The forms of DXF that are written. R12 is read by every program of the field; 2000 keeps long names and
// says its unit.
#pragma once

namespace ostrelon {

enum class DxfVersion { r12, r2000 };

/// By what the layers are named.
enum class DxfLayering {
  bySystem,  ///< walls after their systems; everything else on "0"
  byKind     ///< A-WALL-<system>, A-LINE, A-LINE-CIRC, …
};

enum class DxfExportUnit { feet, inches, millimeters };

struct DxfForm {
  DxfForm() = default;
  // A version alone is the usual form of it.
  DxfForm(DxfVersion is) : version(is) {}  // NOLINT(google-explicit-constructor)
  DxfVersion version = DxfVersion::r2000;
  DxfLayering layering = DxfLayering::bySystem;
  DxfExportUnit unit = DxfExportUnit::feet;
};

}  // namespace ostrelon
