// The request that takes in a drawing of another program, and its answer.
#pragma once

#include "automation/automation_session.h"

namespace ostrelon {

/// `path`, and optionally `toFeet`, `unit`, `layers`, `toOrigin`, `salvage`. The answer counts what came in
/// and what was left out:
///
///   {"entities":12,"counts":{"line":12},"unit":"millimeters","unitSource":"declared","moved":[0,0],
///    "bounds":{"minX":…},"layers":[{"name":"0","objects":12,"isHidden":false,"isTaken":true}],
///    "leftOut":[{"reason":"unknownKind","kind":"TEXT","count":2}],"lostPlaces":0,"losses":[]}
Json importRequest(AutomationSession& session, const Json& request);

}  // namespace ostrelon
