#include "signing_key.h"

#include <fcntl.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "platform/user_error.h"
#include "updates/base64.h"

namespace ostrelon {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string quoted(const std::filesystem::path& path) { return "\"" + path.string() + "\""; }

std::string reasonOfErrno() { return std::generic_category().message(errno); }

bool isOnP256(const EVP_PKEY* key) {
  std::array<char, 64> group{};
  std::size_t size = 0;
  return EVP_PKEY_is_a(key, "EC") == 1 &&
         EVP_PKEY_get_group_name(key, group.data(), group.size(), &size) == 1 &&
         std::string_view(group.data(), size) == "prime256v1";
}

}  // namespace

SigningKey SigningKey::generate() {
  EVP_PKEY* key = EVP_EC_gen("P-256");
  if (key == nullptr) throw UserError("No key could be made.");
  return SigningKey(key);
}

SigningKey SigningKey::read(const std::filesystem::path& pem) {
  const File file(std::fopen(pem.c_str(), "rb"), std::fclose);
  if (!file)
    throw UserError("The private key " + quoted(pem) + " could not be read: " + reasonOfErrno() + ".");
  EVP_PKEY* read = PEM_read_PrivateKey(file.get(), nullptr, nullptr, nullptr);
  if (read == nullptr) throw UserError(quoted(pem) + " holds no private key, or its password was wrong.");
  SigningKey key(read);
  if (!isOnP256(read)) throw UserError("The private key " + quoted(pem) + " is not on the curve P-256.");
  return key;
}

void SigningKey::write(const std::filesystem::path& pem) const {
  const int descriptor = ::open(pem.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  File file(descriptor < 0 ? nullptr : ::fdopen(descriptor, "wb"), std::fclose);
  if (!file)
    throw UserError("The private key " + quoted(pem) + " could not be written: " + reasonOfErrno() + ".");
  const bool isWritten =
      PEM_write_PKCS8PrivateKey(file.get(), key_.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1;
  if (std::fclose(file.release()) != 0 || !isWritten) {
    ::unlink(pem.c_str());
    throw UserError("The private key " + quoted(pem) + " could not be written.");
  }
}

std::string SigningKey::publicKey() const {
  EVP_PKEY_set_utf8_string_param(key_.get(), OSSL_PKEY_PARAM_EC_POINT_CONVERSION_FORMAT,
                                 OSSL_PKEY_EC_POINT_CONVERSION_FORMAT_UNCOMPRESSED);
  std::string point(65, '\0');
  std::size_t size = 0;
  if (EVP_PKEY_get_octet_string_param(key_.get(), OSSL_PKEY_PARAM_PUB_KEY,
                                      reinterpret_cast<unsigned char*>(point.data()), point.size(),
                                      &size) != 1 ||
      size != point.size()) {
    throw UserError("The public key could not be written out.");
  }
  return encodeBase64(point);
}

std::string SigningKey::sign(std::string_view text) const {
  const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  std::string signature(80, '\0');  // 72 bytes at most for this curve
  std::size_t size = signature.size();
  if (!context || EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key_.get()) != 1 ||
      EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &size, bytes,
                     text.size()) != 1) {
    throw UserError("The release could not be signed.");
  }
  signature.resize(size);
  return encodeBase64(signature);
}

}  // namespace ostrelon
