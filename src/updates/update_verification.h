// Is this installer the one that its publisher released? Its SHA-256 must be the one in the feed, and
// the feed's entry must be signed: ECDSA on the curve P-256 over SHA-256 (FIPS 186-5), the signature
// in DER (RFC 3279, section 2.2.3), the key as a 65-byte uncompressed point (ANSI X9.63, section
// 4.3.6). Both come from OpenSSL.
#pragma once

#include <string>
#include <string_view>

#include "platform/held_file.h"
#include "updates/update_feed.h"

namespace ostrelon {

/// A key or a signature that is not in the form above.
class SignatureFormatError : public UserError {
 public:
  using UserError::UserError;
};

/// The text under a release's signature: its version, where the installer comes from and its hash.
std::string signedPayload(const AppUpdateRelease& release);

/// SHA-256 of the content, as 64 lower-case hexadecimal digits. Throws `FileError`.
std::string sha256OfFile(const HeldFile& file);

/// Throws unless the file is the release's installer and the release is signed with the key, a base64
/// text: `FileError`, then `AppUpdateError` invalidChecksum, unsupportedSignature (not base64),
/// `SignatureFormatError`, or invalidSignature. The file is read once, in pieces.
void verifyInstaller(const AppUpdateRelease& release, const HeldFile& file, std::string_view publicKey);
void verifyInstaller(const AppUpdateRelease& release, const FilePath& file, std::string_view publicKey);

}  // namespace ostrelon
