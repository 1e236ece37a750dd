#include "updates/update_configuration.h"

#include <utility>

#include "platform/unicode.h"
#include "updates/web_address.h"

namespace ostrelon {

UpdateConfiguration updateConfiguration(std::string version, std::string_view build, std::string_view feedURL,
                                        std::string_view signingPublicKey) {
  UpdateConfiguration configuration;
  configuration.currentDisplayVersion = version;
  if (!build.empty() && build != version) {
    configuration.currentDisplayVersion += " (" + std::string(build) + ")";
  }
  configuration.currentVersion = std::move(version);
  if (const auto feed = trimmed(feedURL); isSecureWebAddress(feed)) configuration.feedURL = std::string(feed);
  if (const auto key = trimmed(signingPublicKey); !key.empty()) {
    configuration.signingPublicKey = std::string(key);
  }
  return configuration;
}

}  // namespace ostrelon
