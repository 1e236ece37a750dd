// What the logic asks of its host, in one place.
#pragma once

namespace ostrelon {

class Scheduler;
class Dialogs;
class FileSystem;

/// References to the host's services. The owner keeps them alive as long as the program runs.
struct Host {
  Scheduler& scheduler;
  Dialogs& dialogs;
  FileSystem& files;
};

}  // namespace ostrelon
