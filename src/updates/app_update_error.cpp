#include "updates/app_update_error.h"

#include <utility>

namespace ostrelon {

AppUpdateError AppUpdateError::invalidCurrentVersion(const std::string& version) {
  return {Kind::invalidCurrentVersion, "Installed version " + version + " cannot be compared."};
}

AppUpdateError AppUpdateError::invalidManifestFormat(const std::string& reason) {
  return {Kind::invalidManifestFormat, "Update metadata is invalid: " + reason};
}

AppUpdateError AppUpdateError::networkFailure(const std::string& reason) {
  return {Kind::networkFailure, "Could not reach the update server: " + reason};
}

AppUpdateError AppUpdateError::invalidChecksum(std::string expected, std::string actual) {
  AppUpdateError error(Kind::invalidChecksum, "Downloaded update failed checksum verification.");
  error.expected_ = std::move(expected);
  error.actual_ = std::move(actual);
  return error;
}

AppUpdateError AppUpdateError::feedNotConfigured() {
  return {Kind::feedNotConfigured,
          "Update feed is not configured. Set OstrelonUpdateFeedURL in the Release build settings before "
          "distributing Ostrelon."};
}

AppUpdateError AppUpdateError::signingKeyNotConfigured() {
  return {Kind::signingKeyNotConfigured,
          "Update signing key is not configured. Set OSTRELON_UPDATE_SIGNING_PUBLIC_KEY_X963 in the Release "
          "build settings before distributing Ostrelon."};
}

AppUpdateError AppUpdateError::invalidManifestResponse() {
  return {Kind::invalidManifestResponse, "Update metadata could not be read."};
}

AppUpdateError AppUpdateError::invalidSignature() {
  return {Kind::invalidSignature, "Downloaded update failed signature verification."};
}

AppUpdateError AppUpdateError::unsupportedSignature() {
  return {Kind::unsupportedSignature, "Update signature format is not supported."};
}

AppUpdateError AppUpdateError::installerOpenFailed() {
  return {Kind::installerOpenFailed, "The verified installer could not be opened."};
}

}  // namespace ostrelon
