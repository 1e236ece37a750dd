// The publisher's private key, an ECDSA key on the curve P-256 in a PEM file, and what is done with it.
// Failures are thrown as `UserError`.
#pragma once

#include <openssl/evp.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace ostrelon {

class SigningKey {
 public:
  /// A fresh key.
  static SigningKey generate();
  /// Reads a PEM file. OpenSSL asks on the terminal for the password of an encrypted one.
  static SigningKey read(const std::filesystem::path& pem);

  /// Writes an unencrypted PEM file that only the user may read. A file that is there stays as it is,
  /// and that is a failure.
  void write(const std::filesystem::path& pem) const;
  /// Base64 of the 65-byte point in X9.63 form: what the build is given.
  std::string publicKey() const;
  /// Base64 of the DER signature over SHA-256 of the text.
  std::string sign(std::string_view text) const;

 private:
  explicit SigningKey(EVP_PKEY* key) : key_(key, EVP_PKEY_free) {}

  std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)> key_;
};

}  // namespace ostrelon
