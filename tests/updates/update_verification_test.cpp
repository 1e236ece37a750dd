#include "updates/update_verification.h"

#include <gtest/gtest.h>

#include "updates/app_update_error.h"
#include "updates/update_test_support.h"

namespace ostrelon {
namespace {

using testing::Publisher;
using testing::TemporaryFolder;
using testing::writeBytes;

class UpdateVerification : public ::testing::Test {
 protected:
  /// The text of the failure, or "verified".
  std::string outcome(const AppUpdateRelease& release, const std::string& key) const {
    try {
      verifyInstaller(release, file_, key);
    } catch (const std::exception& error) {
      return error.what();
    }
    return "verified";
  }

  TemporaryFolder folder_;
  std::filesystem::path file_ = folder_ / "installer";
  // More than one piece of reading, and not a whole number of them.
  std::string installer_ = std::string(700'001, 'x') + "end";
  Publisher publisher_;
  AppUpdateRelease release_ = publisher_.release("1.2.0", installer_);

  void SetUp() override { writeBytes(file_, installer_); }
};

constexpr const char* kWrongSignature = "Downloaded update failed signature verification.";
constexpr const char* kNotBase64 = "Update signature format is not supported.";
constexpr const char* kNotAKey = "The update signing key is not a P-256 public key.";
constexpr const char* kNotASignature = "The update signature is not a DER-encoded ECDSA signature.";

TEST_F(UpdateVerification, AcceptsWhatTheOpensslCommandSigned) {
  EXPECT_EQ(outcome(release_, publisher_.publicKey()), "verified");
  for (char& c : release_.sha256) c = static_cast<char>(std::toupper(c));
  EXPECT_EQ(outcome(release_, publisher_.publicKey()), "verified");  // signed in lower case
}

TEST_F(UpdateVerification, FieldsOutsideTheSignatureMayChange) {
  release_.build = "9";
  release_.changes = {"Other"};
  release_.releaseNotesURL = "https://example.org";
  EXPECT_EQ(outcome(release_, publisher_.publicKey()), "verified");
}

TEST_F(UpdateVerification, FieldsUnderTheSignatureMayNot) {
  AppUpdateRelease altered = release_;
  altered.version = "1.2.1";
  EXPECT_EQ(outcome(altered, publisher_.publicKey()), kWrongSignature);
  altered = release_;
  altered.downloadURL += "x";
  EXPECT_EQ(outcome(altered, publisher_.publicKey()), kWrongSignature);
  // Another installer with its own correct hash.
  altered = publisher_.release("1.2.0", "malware");
  altered.signature = release_.signature;
  writeBytes(file_, "malware");
  EXPECT_EQ(outcome(altered, publisher_.publicKey()), kWrongSignature);
}

TEST_F(UpdateVerification, AnotherKeyDoesNotVerify) {
  EXPECT_EQ(outcome(release_, Publisher().publicKey()), kWrongSignature);
}

TEST_F(UpdateVerification, TheChecksumComesBeforeTheSignature) {
  writeBytes(file_, installer_ + "!");
  release_.signature = "not base64";
  try {
    verifyInstaller(release_, file_, "nor this");
    FAIL();
  } catch (const AppUpdateError& error) {
    EXPECT_EQ(error.kind(), AppUpdateError::Kind::invalidChecksum);
    EXPECT_STREQ(error.what(), "Downloaded update failed checksum verification.");
    EXPECT_EQ(error.expected(), release_.sha256);
    EXPECT_EQ(error.actual().size(), 64U);
  }
}

TEST_F(UpdateVerification, AFileThatCannotBeReadIsToldFirst) {
  std::filesystem::remove(file_);
  EXPECT_EQ(outcome(release_, "x"), "The file “installer” does not exist.");
  EXPECT_THROW(verifyInstaller(release_, folder_.path(), "x"), FileError);
}

TEST_F(UpdateVerification, Base64IsStrict) {
  const std::string key = publisher_.publicKey();
  EXPECT_EQ(outcome(release_, key + "\n"), kNotBase64);
  EXPECT_EQ(outcome(release_, key.substr(0, key.size() - 1)), kNotBase64);  // without its padding
  EXPECT_EQ(outcome(release_, "===="), kNotBase64);
  release_.signature.insert(4, " ");
  EXPECT_EQ(outcome(release_, key), kNotBase64);
  release_.signature = "c2ln\nc2k=\n  ";
  EXPECT_EQ(outcome(release_, key), kNotBase64);
}

TEST_F(UpdateVerification, KeysOfAnotherFormOrCurveAreRefused) {
  EXPECT_EQ(outcome(release_, Publisher("secp384r1").publicKey()), kNotAKey);
  EXPECT_EQ(outcome(release_, Publisher("secp256k1").publicKey()), kNotAKey);  // 65 bytes, yet not on P-256
  EXPECT_EQ(outcome(release_, ""), kNotAKey);
  std::string point = *decodeBase64(publisher_.publicKey());
  EXPECT_EQ(outcome(release_, encodeBase64(point + "x")), kNotAKey);
  const std::string compressed = "\x02" + point.substr(1, 32);
  EXPECT_EQ(outcome(release_, encodeBase64(compressed)), kNotAKey);
  point[0] = 6;  // the hybrid form
  EXPECT_EQ(outcome(release_, encodeBase64(point)), kNotAKey);
}

TEST_F(UpdateVerification, SignaturesOfAnotherFormAreRefused) {
  const std::string der = *decodeBase64(release_.signature);
  const auto outcomeOf = [&](const std::string& bytes) {
    release_.signature = encodeBase64(bytes);
    return outcome(release_, publisher_.publicKey());
  };
  EXPECT_EQ(outcomeOf(""), kNotASignature);
  EXPECT_EQ(outcomeOf(std::string(64, 'r')), kNotASignature);           // r and s side by side
  EXPECT_EQ(outcomeOf(der + '\0'), kNotASignature);                     // something after it
  EXPECT_EQ(outcomeOf(der.substr(0, der.size() - 1)), kNotASignature);  // cut
  EXPECT_EQ(outcomeOf("\x30\x81" + der.substr(1)), kNotASignature);     // a longer form of its length
  EXPECT_EQ(outcomeOf(std::string("\x30\x06\x02\x01\xff\x02\x01\x01", 8)), kNotASignature);   // r = -1
  EXPECT_EQ(outcomeOf(std::string("\x30\x06\x02\x01\x00\x02\x01\x00", 8)), kWrongSignature);  // r = s = 0
  // A well-formed signature of a larger curve has numbers that are too long.
  release_.signature = Publisher("secp384r1").sign(signedPayload(release_));
  EXPECT_EQ(outcome(release_, publisher_.publicKey()), kNotASignature);
}

TEST(Base64, RoundTripsEveryLength) {
  std::string bytes;
  for (int length = 0; length < 300; ++length) {
    EXPECT_EQ(decodeBase64(encodeBase64(bytes)), bytes);
    bytes.push_back(static_cast<char>(length * 37));
  }
  EXPECT_EQ(encodeBase64("light wo"), "bGlnaHQgd28=");
  // Past the piece in which OpenSSL is fed.
  const std::string large(std::size_t{13} << 20, 'q');
  EXPECT_EQ(decodeBase64(encodeBase64(large)), large);
}

}  // namespace
}  // namespace ostrelon
