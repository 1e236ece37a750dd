// An update client without a network: it answers from what it was given, on the main thread's next
// turn. Automation drives whole updates through it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/scheduler.h"
#include "updates/app_update_client.h"

namespace ostrelon {

class ServedUpdateClient final : public AppUpdateClient {
 public:
  /// Installers are written below `temporaryFolder`. The scheduler must outlive the object.
  ServedUpdateClient(Scheduler& scheduler, FilePath temporaryFolder);

  /// The manifest's text and the installer's bytes that are answered from now on, requests that wait
  /// already included. Absent: a network failure.
  void serve(std::optional<std::string> manifest, std::optional<std::string> installer);

  void fetchManifest(const std::string& url, ManifestHandler completion) override;
  void downloadInstaller(const std::string& url, ProgressHandler progress,
                         InstallerHandler completion) override;

 private:
  struct Served {
    std::optional<std::string> manifest;
    std::optional<std::string> installer;
  };

  Scheduler& scheduler_;
  FilePath temporaryFolder_;
  // Waiting requests hold it weakly: those that outlive the client are dropped.
  std::shared_ptr<Served> served_ = std::make_shared<Served>();
};

}  // namespace ostrelon
