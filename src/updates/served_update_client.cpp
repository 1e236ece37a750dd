#include "updates/served_update_client.h"

#include <utility>

#include "updates/app_update_error.h"
#include "updates/installer_writer.h"

namespace ostrelon {
namespace {

const std::string& orNetworkFailure(const std::optional<std::string>& served) {
  if (!served) throw AppUpdateError::networkFailure("There is no connection.");
  return *served;
}

}  // namespace

ServedUpdateClient::ServedUpdateClient(Scheduler& scheduler, FilePath temporaryFolder)
    : scheduler_(scheduler), temporaryFolder_(std::move(temporaryFolder)) {}

void ServedUpdateClient::serve(std::optional<std::string> manifest, std::optional<std::string> installer) {
  served_->manifest = std::move(manifest);
  served_->installer = std::move(installer);
}

void ServedUpdateClient::fetchManifest(const std::string&, ManifestHandler completion) {
  scheduler_.soon([weak = std::weak_ptr(served_), completion = std::move(completion)] {
    if (const auto served = weak.lock()) {
      completion(outcomeOf([&] { return decodeManifest(orNetworkFailure(served->manifest)); }));
    }
  });
}

void ServedUpdateClient::downloadInstaller(const std::string& url, ProgressHandler progress,
                                           InstallerHandler completion) {
  scheduler_.soon([weak = std::weak_ptr(served_), folder = temporaryFolder_, url,
                   progress = std::move(progress), completion = std::move(completion)] {
    if (const auto served = weak.lock()) {
      completion(outcomeOf([&] {
        const std::string& bytes = orNetworkFailure(served->installer);
        InstallerWriter writer(url, folder, bytes.size(), progress);
        writer.append(bytes);
        return writer.finish();
      }));
    }
  });
}

}  // namespace ostrelon
