// The align buttons: the operation and its report.
#pragma once

#include "app/workspace.h"
#include "core/entity_edits.h"

namespace ostrelon {

/// Aligns the selection and reports through the console.
void alignSelectionAndReport(Workspace& workspace, AlignmentAxis axis);

}  // namespace ostrelon
