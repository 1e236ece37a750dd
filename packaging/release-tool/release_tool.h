// Signs a release and writes it into the release feed. What is written is read back and verified with
// the very code that the application uses, before it takes the old feed's place.
// Failures are thrown as `UserError`.
#pragma once

#include <filesystem>
#include <string>

#include "signing_key.h"
#include "updates/update_feed.h"

namespace ostrelon {

/// Signs the release of an installer and adds it to a manifest, which is made if it is not there. A
/// release with the same version text is replaced; all other content stays, keys that this program
/// does not know included. `release` needs its version, its address and its changes; hash and
/// signature are made here. Gives the release as it was written.
AppUpdateRelease addRelease(const std::filesystem::path& manifest, const std::filesystem::path& installer,
                            AppUpdateRelease release, const SigningKey& key);

/// Throws unless the manifest has this version, signed with the public key, and the installer is its.
void checkRelease(const std::filesystem::path& manifest, const std::filesystem::path& installer,
                  const std::string& version, const std::string& publicKey);

}  // namespace ostrelon
