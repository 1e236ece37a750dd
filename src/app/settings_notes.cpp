#include "app/settings_notes.h"

namespace ostrelon {

void tellSettingsNotes(JsonUserDefaults& defaults, SketchViewModel& sketch) {
  for (const std::string& note : defaults.takeNotes()) sketch.appendConsoleLine(note, false, true);
}

void keepTellingSettingsNotes(JsonUserDefaults& defaults, SketchViewModel& sketch) {
  tellSettingsNotes(defaults, sketch);
  // A setting may be written in the middle of an operation, which observers have not heard of yet.
  defaults.whenNoted([&defaults, &sketch] {
    sketch.host().scheduler.soon([&defaults, &sketch] { tellSettingsNotes(defaults, sketch); });
  });
}

}  // namespace ostrelon
