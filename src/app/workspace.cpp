#include "app/workspace.h"

namespace ostrelon {

Workspace::Workspace(Host host)
    : host_(host),
      messages(tracker_, host.scheduler),
      sketch(tracker_),
      board(tracker_, sketch, messages, host.scheduler),
      document(tracker_, sketch, messages, *this, host),
      console(tracker_, commands()) {}

}  // namespace ostrelon
