// Notes about the settings file, reported in the console.
#pragma once

#include "app/workspace.h"
#include "platform/json_user_defaults.h"

namespace ostrelon {

/// Writes the waiting notes to the console.
void tellSettingsNotes(JsonUserDefaults& defaults, Workspace& workspace);
/// The same, and again soon after every new one. The arguments must outlive the tasks of the scheduler.
void keepTellingSettingsNotes(JsonUserDefaults& defaults, Workspace& workspace);

}  // namespace ostrelon
