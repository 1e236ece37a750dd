// Keys and signatures made by the `openssl` command, so that verification is held
// against another program than itself.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "support/temporary_folder.h"
#include "updates/base64.h"
#include "updates/update_feed.h"
#include "updates/update_verification.h"

namespace ostrelon::testing {

/// Runs a shell command that must succeed, and gives what it printed.
inline std::string run(const std::string& command) {
  std::FILE* pipe = ::popen(command.c_str(), "r");
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
    output.append(buffer.data(), count);
  }
  EXPECT_EQ(::pclose(pipe), 0) << command << "\n" << output;
  return output;
}

/// A publisher with a key pair on one of OpenSSL's curves.
class Publisher {
 public:
  explicit Publisher(const std::string& curve = "prime256v1") {
    run("openssl ecparam -name " + curve + " -genkey -noout -out " + keyFile().string());
    const std::string der = run("openssl ec -in " + keyFile().string() +
                                " -pubout -conv_form uncompressed -outform DER 2>/dev/null");
    const std::size_t size = curve == "secp384r1" ? 97 : 65;
    publicKey_ = encodeBase64(std::string_view(der).substr(der.size() - size));
  }

  /// The X9.63 form in base64.
  const std::string& publicKey() const { return publicKey_; }

  /// A base64 DER signature over the text.
  std::string sign(std::string_view payload) const {
    writeBytes(folder_ / "payload", payload);
    return encodeBase64(
        run("openssl dgst -sha256 -sign " + keyFile().string() + " " + (folder_ / "payload").string()));
  }

  /// A release of the installer's bytes, hashed and signed by the openssl command.
  AppUpdateRelease release(const std::string& version, std::string_view installer) const {
    writeBytes(folder_ / "installer", installer);
    const std::string hash = run("openssl dgst -sha256 -r " + (folder_ / "installer").string()).substr(0, 64);
    const std::string url = "https://updates.example/Ostrelon-" + version + ".deb";
    AppUpdateRelease release{version, {}, {}, url, hash, {}, {}, {}};
    // Spelt out, so that the signed text is pinned here and not taken from the code under test.
    release.signature =
        sign("Ostrelon update\nversion:" + version + "\ndownloadURL:" + url + "\nsha256:" + hash);
    return release;
  }

 private:
  std::filesystem::path keyFile() const { return folder_ / "key.pem"; }

  TemporaryFolder folder_;
  std::string publicKey_;
};

}  // namespace ostrelon::testing
