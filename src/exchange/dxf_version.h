// The two forms of DXF that are written: R12, which every program of the field reads, and 2000, which
// keeps long names and says that its unit is the foot.
#pragma once

namespace ostrelon {

enum class DxfVersion { r12, r2000 };

}  // namespace ostrelon
