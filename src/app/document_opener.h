// Opens documents for the program. A large one is read and decoded away from the main thread, with a
// toast where that takes long; the document that is open stays usable meanwhile, and what is changed in
// it is asked about before it goes.
#pragma once

#include <memory>
#include <string>

#include "app/close_question.h"
#include "app/workspace.h"
#include "documents/app_settings.h"
#include "platform/scheduler.h"

namespace ostrelon {

class DocumentOpener {
 public:
  /// The referenced objects must outlive this one. Without `inBackground` every opening has ended when
  /// its call returns.
  DocumentOpener(Workspace& workspace, AppSettings& settings, CloseQuestion& question, bool inBackground)
      : workspace_(workspace), settings_(settings), question_(question), inBackground_(inBackground) {}

  /// Opens the document and reports it in the console as `openDocument` does. Unsaved changes were asked
  /// about before; only those made from now on are asked about again.
  void open(const FilePath& url);
  /// Gives up an opening that is under way, and reports that: another command takes its place.
  void giveUp();

 private:
  struct Opening;

  void openInBackground(const FilePath& url);
  void finish(const std::shared_ptr<Opening>& opening);
  void clearToast();

  Workspace& workspace_;
  AppSettings& settings_;
  CloseQuestion& question_;
  bool inBackground_;
  std::shared_ptr<Opening> opening_;  // the one under way
  ScheduledTask task_;
  ScheduledTask toastTask_;
};

}  // namespace ostrelon
