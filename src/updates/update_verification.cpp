#include "updates/update_verification.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/ecdsa.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

#include <array>
#include <memory>
#include <vector>

#include "platform/unicode.h"
#include "updates/app_update_error.h"
#include "updates/base64.h"

namespace ostrelon {
namespace {

template <auto function>
struct FreeWith {
  template <class T>
  void operator()(T* object) const {
    function(object);
  }
};
using DigestContext = std::unique_ptr<EVP_MD_CTX, FreeWith<EVP_MD_CTX_free>>;
using Key = std::unique_ptr<EVP_PKEY, FreeWith<EVP_PKEY_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, FreeWith<EVP_PKEY_CTX_free>>;
using Signature = std::unique_ptr<ECDSA_SIG, FreeWith<ECDSA_SIG_free>>;

/// Keeps OpenSSL's error queue from growing: the errors thrown here report the failures.
struct ErrorQueueCleaner {
  ErrorQueueCleaner() = default;
  ErrorQueueCleaner(const ErrorQueueCleaner&) = delete;
  ErrorQueueCleaner& operator=(const ErrorQueueCleaner&) = delete;
  ~ErrorQueueCleaner() { ERR_clear_error(); }
};

const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

std::string hexadecimal(const std::vector<unsigned char>& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

/// The public key of a 65-byte uncompressed point on P-256.
Key readPublicKey(std::string point) {
  constexpr std::size_t kPointSize = 65;
  constexpr char kUncompressed = 4;
  std::string group = "prime256v1";
  const std::array parameters = {
      OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, group.data(), 0),
      OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()),
      OSSL_PARAM_construct_end(),
  };
  auto settable = parameters;
  const KeyContext reading(EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr));
  EVP_PKEY* read = nullptr;
  const bool isRead = point.size() == kPointSize && point.front() == kUncompressed && reading &&
                      EVP_PKEY_fromdata_init(reading.get()) == 1 &&
                      EVP_PKEY_fromdata(reading.get(), &read, EVP_PKEY_PUBLIC_KEY, settable.data()) == 1;
  Key key(read);
  // Reading refuses a point that is not on the curve.
  if (!isRead || !key) throw SignatureFormatError("The update signing key is not a P-256 public key.");
  return key;
}

/// Refuses what is not exactly one DER-encoded pair of numbers of at most 256 bits.
void checkSignatureForm(std::string_view der) {
  const unsigned char* position = bytesOf(der);
  const Signature signature(d2i_ECDSA_SIG(nullptr, &position, static_cast<long>(der.size())));
  unsigned char* encoded = nullptr;
  const int size = signature ? i2d_ECDSA_SIG(signature.get(), &encoded) : -1;
  const std::unique_ptr<unsigned char, void (*)(unsigned char*)> owner(
      encoded, [](unsigned char* bytes) { OPENSSL_free(bytes); });
  // Writing it again shows whether it was in the one form that DER allows, with nothing after it.
  const bool isExact =
      size >= 0 && der == std::string_view(reinterpret_cast<char*>(encoded), static_cast<std::size_t>(size));
  const auto fits = [](const BIGNUM* number) {
    return !BN_is_negative(number) && BN_num_bits(number) <= 256;
  };
  if (!isExact || !fits(ECDSA_SIG_get0_r(signature.get())) || !fits(ECDSA_SIG_get0_s(signature.get()))) {
    throw SignatureFormatError("The update signature is not a DER-encoded ECDSA signature.");
  }
}

bool isSigned(std::string_view payload, std::string_view signature, const Key& key) {
  const DigestContext context(EVP_MD_CTX_new());
  return context && EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
         EVP_DigestVerify(context.get(), bytesOf(signature), signature.size(), bytesOf(payload),
                          payload.size()) == 1;
}

}  // namespace

std::string signedPayload(const AppUpdateRelease& release) {
  return "Ostrelon update\nversion:" + release.version + "\ndownloadURL:" + release.downloadURL +
         "\nsha256:" + lowerCased(release.sha256);
}

std::string sha256OfFile(const HeldFile& file) {
  const DigestContext context(EVP_MD_CTX_new());
  if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
    throw UserError("SHA-256 is not available on this system.");
  }
  file.read([&](std::string_view piece) { EVP_DigestUpdate(context.get(), piece.data(), piece.size()); });
  std::vector<unsigned char> digest(EVP_MAX_MD_SIZE);
  unsigned int size = 0;
  EVP_DigestFinal_ex(context.get(), digest.data(), &size);
  digest.resize(size);
  return hexadecimal(digest);
}

void verifyInstaller(const AppUpdateRelease& release, const HeldFile& file, std::string_view publicKey) {
  const ErrorQueueCleaner cleaner;
  const std::string expected = lowerCased(release.sha256);
  std::string actual = sha256OfFile(file);
  if (actual != expected) throw AppUpdateError::invalidChecksum(expected, std::move(actual));

  auto keyBytes = decodeBase64(publicKey);
  const auto signature = decodeBase64(release.signature);
  if (!keyBytes || !signature) throw AppUpdateError::unsupportedSignature();

  const std::string payload = signedPayload(release);
  const Key key = readPublicKey(std::move(*keyBytes));
  checkSignatureForm(*signature);
  if (!isSigned(payload, *signature, key)) throw AppUpdateError::invalidSignature();
}

void verifyInstaller(const AppUpdateRelease& release, const FilePath& file, std::string_view publicKey) {
  verifyInstaller(release, HeldFile::open(file), publicKey);
}

}  // namespace ostrelon
