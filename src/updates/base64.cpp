#include "updates/base64.h"

#include <openssl/evp.h>

#include <algorithm>

namespace ostrelon {
namespace {

// OpenSSL counts in int; pieces of this many characters, a multiple of both 3 and 4, keep far below.
constexpr std::size_t kPiece = std::size_t{3} * 4 * 1024 * 1024;

bool isInAlphabet(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
}

const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

std::optional<std::string> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::size_t padding = 0;
  while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') ++padding;
  // OpenSSL's own decoder would overlook white space, so the letters are looked at here.
  const std::string_view letters = text.substr(0, text.size() - padding);
  if (!std::all_of(letters.begin(), letters.end(), isInAlphabet)) return std::nullopt;

  std::string bytes(text.size() / 4 * 3, '\0');
  for (std::size_t at = 0; at < text.size(); at += kPiece) {
    const std::string_view piece = text.substr(at, kPiece);
    auto* target = reinterpret_cast<unsigned char*>(bytes.data() + at / 4 * 3);
    if (EVP_DecodeBlock(target, bytesOf(piece), static_cast<int>(piece.size())) < 0) return std::nullopt;
  }
  bytes.resize(bytes.size() - padding);
  return bytes;
}

std::string encodeBase64(std::string_view bytes) {
  // One more byte for the zero that OpenSSL puts at the end.
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
    const std::string_view piece = bytes.substr(at, kPiece);
    auto* target = reinterpret_cast<unsigned char*>(text.data() + at / 3 * 4);
    EVP_EncodeBlock(target, bytesOf(piece), static_cast<int>(piece.size()));
  }
  text.pop_back();
  return text;
}

}  // namespace ostrelon
