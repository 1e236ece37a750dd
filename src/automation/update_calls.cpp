// Calls of versions, the feed, verification and the update manager.
#include "automation/call_binding.h"
#include "updates/update_verification.h"

namespace ostrelon {

void addUpdateCalls(CallTable& table) {
  table["parseVersion"] = call(parseVersion);
  table["compareVersions"] = call([](const AppVersion& a, const AppVersion& b) {
    return a < b ? -1 : b < a ? 1 : 0;
  });
  table["<"] = call([](const AppVersion& a, const AppVersion& b) { return a < b; });
  table["<="] = call([](const AppVersion& a, const AppVersion& b) { return a <= b; });
  table[">"] = call([](const AppVersion& a, const AppVersion& b) { return a > b; });
  table[">="] = call([](const AppVersion& a, const AppVersion& b) { return a >= b; });

  table["evaluateManifest"] = call([](const AppUpdateManifest& manifest, const std::string& currentVersion) {
    return evaluateManifest(manifest, currentVersion);
  });
  // Without an argument, those of the update that is available.
  table["changeGroups"] =
      call([](AutomationSession& session, const std::optional<AppUpdateAvailability>& availability) -> Json {
        const auto& shown = availability ? availability : *session.application.updates().availableUpdate;
        return shown ? toJson(changeGroups(*shown)) : Json();
      });
  table["signedPayload"] = call(signedPayload);
  table["decodeManifest"] = call(decodeManifest);
  table["encodeManifest"] = call(encodeManifest);
  table["sha256OfFile"] = call([](const FilePath& file) { return sha256OfFile(HeldFile::open(file)); });
  table["verifyInstaller"] =
      call([](const AppUpdateRelease& release, const FilePath& file, const std::string& publicKey) {
        verifyInstaller(release, file, publicKey);
      });

  table["statusText"] =
      call([](AutomationSession& session) { return session.application.updates().statusText(); });
  table["startAutomaticChecks"] =
      call([](AutomationSession& session) { session.application.updates().startAutomaticChecks(); });
  table["checkIfDue"] = call([](AutomationSession& session) { session.application.updates().checkIfDue(); });
  table["checkForUpdates"] = call([](AutomationSession& session, std::optional<bool> userInitiated) {
    session.application.updates().checkForUpdates(userInitiated.value_or(true));
  });
  table["postponeUpdate"] =
      call([](AutomationSession& session) { session.application.updates().postponeUpdate(); });
  table["downloadAndInstall"] =
      call([](AutomationSession& session) { session.application.updates().downloadAndInstall(); });
}

}  // namespace ostrelon
