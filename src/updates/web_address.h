// Web addresses, as far as updates need them: are they well formed, are they safe, what do they name.
#pragma once

#include <string>
#include <string_view>

namespace ostrelon {

/// An absolute address by RFC 3986: a scheme, a colon, and only the characters that an address may
/// hold, "%" with two hexadecimal digits after it.
bool isWebAddress(std::string_view text);
/// A web address whose scheme is https in any case, and which names a host.
bool isSecureWebAddress(std::string_view text);

/// The name of the file at an address, made safe to create in a folder: the last part of its path
/// with "%" sequences resolved, without path separators and control characters, at most 200 bytes,
/// and never "", "." or ".."; those give `kDefaultInstallerName`.
std::string installerFileName(std::string_view address);
inline constexpr std::string_view kDefaultInstallerName = "OstrelonUpdate.pkg";

}  // namespace ostrelon
