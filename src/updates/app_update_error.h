// Why a check for updates or an update failed. The text is what the settings window shows.
#pragma once

#include <string>

#include "platform/user_error.h"

namespace ostrelon {

class AppUpdateError : public UserError {
 public:
  enum class Kind {
    invalidCurrentVersion,
    invalidManifestFormat,
    networkFailure,
    invalidChecksum,
    feedNotConfigured,
    signingKeyNotConfigured,
    invalidManifestResponse,
    invalidSignature,
    unsupportedSignature,
    installerOpenFailed,
  };

  static AppUpdateError invalidCurrentVersion(const std::string& version);
  /// `reason` ends the sentence "Update metadata is invalid: ", and so does it for the next one.
  static AppUpdateError invalidManifestFormat(const std::string& reason);
  static AppUpdateError networkFailure(const std::string& reason);
  /// Both as lower-case hexadecimal.
  static AppUpdateError invalidChecksum(std::string expected, std::string actual);
  static AppUpdateError feedNotConfigured();
  static AppUpdateError signingKeyNotConfigured();
  static AppUpdateError invalidManifestResponse();
  static AppUpdateError invalidSignature();
  static AppUpdateError unsupportedSignature();
  static AppUpdateError installerOpenFailed();

  Kind kind() const { return kind_; }
  /// The two checksums of `invalidChecksum`; empty for the other kinds.
  const std::string& expected() const { return expected_; }
  const std::string& actual() const { return actual_; }

 private:
  AppUpdateError(Kind kind, const std::string& text) : UserError(text), kind_(kind) {}

  Kind kind_;
  std::string expected_;
  std::string actual_;
};

}  // namespace ostrelon
