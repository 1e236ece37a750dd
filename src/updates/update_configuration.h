// What the build says about itself and where its updates come from.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ostrelon {

struct UpdateConfiguration {
  std::string currentVersion;                   ///< compared with the feed
  std::string currentDisplayVersion;            ///< shown to the user: "1.2.0 (57)"
  std::optional<std::string> feedURL;           ///< https
  std::optional<std::string> signingPublicKey;  ///< base64 of a P-256 point in X9.63 form
};

/// Makes it from the texts of the build. White space around the feed's address and the key is dropped;
/// a feed that is not an https address counts as none, and so does an empty key. The build number is
/// shown when it is there and differs from the version.
UpdateConfiguration updateConfiguration(std::string version, std::string_view build, std::string_view feedURL,
                                        std::string_view signingPublicKey);

}  // namespace ostrelon
