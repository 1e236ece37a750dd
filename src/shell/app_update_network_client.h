// The update client of the windowed program: plain GET requests over HTTPS with Qt Network.
//
// Certificates are always verified, redirections are followed to https alone, neither cookies nor
// credentials are sent or kept, and both the size and the time of an answer are bounded. The
// system's proxy is used.
#pragma once

#include <QNetworkAccessManager>
#include <QSslConfiguration>
#include <chrono>
#include <cstdint>
#include <string>

#include "updates/app_update_client.h"
#include "updates/installer_writer.h"

namespace ostrelon {

struct UpdateNetworkLimits {
  std::size_t manifestBytes = kLargestManifest;
  std::uint64_t installerBytes = kLargestInstaller;
  /// A server from which nothing comes for so long has failed.
  std::chrono::milliseconds silence = std::chrono::seconds(30);
  /// The longest that the whole of an answer may take.
  std::chrono::milliseconds manifestTime = std::chrono::minutes(2);
  std::chrono::milliseconds installerTime = std::chrono::hours(6);
};

class AppUpdateNetworkClient final : public AppUpdateClient {
 public:
  /// Installers are written below `temporaryFolder`. `tls` says which authorities are trusted.
  explicit AppUpdateNetworkClient(FilePath temporaryFolder,
                                  const QSslConfiguration& tls = QSslConfiguration::defaultConfiguration(),
                                  UpdateNetworkLimits limits = {});

  void fetchManifest(const std::string& url, ManifestHandler completion) override;
  void downloadInstaller(const std::string& url, ProgressHandler progress,
                         InstallerHandler completion) override;

 private:
  QNetworkReply* get(const std::string& url);

  FilePath temporaryFolder_;
  QSslConfiguration tls_;
  UpdateNetworkLimits limits_;
  QNetworkAccessManager network_;
  QObject transfers_;  // the parent of those under way, which end with it
};

}  // namespace ostrelon
