// The program without its windows: the long-lived objects, and what happens at each event of its
// life. The window, the automation host and the tests each make one of these over their own host.
//
//   Application app(host, defaults, options);
//   app.mainViewAppeared();   // once, when the main window first shows
//   …
//   app.willTerminate();      // a normal end; a killed process never gets here
#pragma once

#include "core/sketch_view_model.h"
#include "platform/host.h"
#include "platform/user_defaults.h"

namespace ostrelon {

/// What the start of the process decides.
struct ApplicationOptions {
  /// Resets the projects folder at the start and shows neither the first-run sheet nor the recovery
  /// offer.
  bool isUITesting = false;
};

class Application {
 public:
  /// `host` and `defaults` must outlive the object.
  Application(Host host, UserDefaults& defaults, ApplicationOptions options = {});

  SketchViewModel& sketch() { return sketch_; }
  const SketchViewModel& sketch() const { return sketch_; }
  UserDefaults& defaults() { return defaults_; }
  const Host& host() const { return host_; }

  // --- Life

  /// The main window shows for the first time. From here until `willTerminate` the session counts as
  /// one that has not ended cleanly.
  void mainViewAppeared();
  /// The program is about to end by the user's wish.
  void willTerminate();

 private:
  Host host_;
  UserDefaults& defaults_;
  ApplicationOptions options_;
  SketchViewModel sketch_;
};

}  // namespace ostrelon
