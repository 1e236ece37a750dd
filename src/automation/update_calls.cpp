// Calls of versions, the feed, verification and the update manager.
#include "automation/call_binding.h"
#include "updates/update_verification.h"

namespace ostrelon {

void addUpdateCalls(CallTable& table) {
  table["parseVersion"] = functionCall(parseVersion);
  table["compareVersions"] = sessionCall([](AutomationSession&, const AppVersion& a, const AppVersion& b) {
    return a < b ? -1 : b < a ? 1 : 0;
  });
  table["<"] =
      sessionCall([](AutomationSession&, const AppVersion& a, const AppVersion& b) { return a < b; });
  table["<="] =
      sessionCall([](AutomationSession&, const AppVersion& a, const AppVersion& b) { return a <= b; });
  table[">"] =
      sessionCall([](AutomationSession&, const AppVersion& a, const AppVersion& b) { return a > b; });
  table[">="] =
      sessionCall([](AutomationSession&, const AppVersion& a, const AppVersion& b) { return a >= b; });

  table["evaluateManifest"] = sessionCall(
      [](AutomationSession&, const AppUpdateManifest& manifest, const std::string& currentVersion) {
        return evaluateManifest(manifest, currentVersion);
      });
  // Without an argument, those of the update that is available.
  table["changeGroups"] = sessionCall(
      [](AutomationSession& session, const std::optional<AppUpdateAvailability>& availability) -> Json {
        const auto& shown = availability ? availability : *session.application.updates().availableUpdate;
        return shown ? toJson(changeGroups(*shown)) : Json();
      });
  table["signedPayload"] = functionCall(signedPayload);
  table["decodeManifest"] = functionCall(decodeManifest);
  table["encodeManifest"] = functionCall(encodeManifest);
  table["sha256OfFile"] = sessionCall(
      [](AutomationSession&, const FilePath& file) { return sha256OfFile(HeldFile::open(file)); });
  table["verifyInstaller"] =
      sessionCall([](AutomationSession&, const AppUpdateRelease& release, const FilePath& file,
                     const std::string& publicKey) { verifyInstaller(release, file, publicKey); });

  table["statusText"] =
      sessionCall([](AutomationSession& session) { return session.application.updates().statusText(); });
  table["startAutomaticChecks"] =
      sessionCall([](AutomationSession& session) { session.application.updates().startAutomaticChecks(); });
  table["checkIfDue"] =
      sessionCall([](AutomationSession& session) { session.application.updates().checkIfDue(); });
  table["checkForUpdates"] = sessionCall([](AutomationSession& session, std::optional<bool> userInitiated) {
    session.application.updates().checkForUpdates(userInitiated.value_or(true));
  });
  table["postponeUpdate"] =
      sessionCall([](AutomationSession& session) { session.application.updates().postponeUpdate(); });
  table["downloadAndInstall"] =
      sessionCall([](AutomationSession& session) { session.application.updates().downloadAndInstall(); });
}

}  // namespace ostrelon
