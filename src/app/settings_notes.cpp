#include "app/settings_notes.h"

namespace ostrelon {

void tellSettingsNotes(JsonUserDefaults& defaults, Workspace& workspace) {
  for (const std::string& note : defaults.takeNotes()) workspace.messages.append(note, false, true);
}

void keepTellingSettingsNotes(JsonUserDefaults& defaults, Workspace& workspace) {
  tellSettingsNotes(defaults, workspace);
  // A setting may be written in the middle of an operation, of which observers have not been notified yet.
  defaults.whenNoted([&defaults, &workspace] {
    workspace.host().scheduler.soon([&defaults, &workspace] { tellSettingsNotes(defaults, workspace); });
  });
}

}  // namespace ostrelon
