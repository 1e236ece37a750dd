#include "updates/web_address.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <optional>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::size_t kLongestName = 200;  // file systems allow 255 bytes; space for what others add

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::optional<int> hexadecimalDigit(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return std::nullopt;
}

/// The byte that "%" at `at` stands for.
std::optional<char> percentByte(std::string_view text, std::size_t at) {
  if (at + 2 >= text.size()) return std::nullopt;
  const auto high = hexadecimalDigit(text[at + 1]);
  const auto low = hexadecimalDigit(text[at + 2]);
  if (!high || !low) return std::nullopt;
  return static_cast<char>(*high * 16 + *low);
}

bool isAddressCharacter(char c) {
  constexpr std::string_view kOthers = "-._~:/?#[]@!$&'()*+,;=%";
  return isLetter(c) || isDigit(c) || kOthers.find(c) != std::string_view::npos;
}

std::string_view schemeOf(std::string_view address) { return address.substr(0, address.find(':')); }

bool namesHost(std::string_view address) {
  const std::string_view rest = address.substr(schemeOf(address).size());
  constexpr std::string_view kStart = "://";
  if (rest.substr(0, kStart.size()) != kStart) return false;
  std::string_view host = rest.substr(kStart.size());
  host = host.substr(0, host.find_first_of("/?#"));
  const std::size_t user = host.rfind('@');
  if (user != std::string_view::npos) host.remove_prefix(user + 1);
  return !host.empty() && host.front() != ':';
}

std::string withoutPercentSequences(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = text[i] == '%' ? percentByte(text, i) : std::nullopt;
    result.push_back(byte.value_or(text[i]));
    if (byte) i += 2;
  }
  return result;
}

/// What is not UTF-8 becomes U+FFFD, so that every part of the system spells the name alike.
std::string validText(std::string_view bytes) {
  std::string result;
  icu::UnicodeString::fromUTF8(icu::StringPiece(bytes.data(), static_cast<std::int32_t>(bytes.size())))
      .toUTF8String(result);
  return result;
}

/// Cuts a name to the longest length, keeping its ending (".deb") and whole characters.
std::string cutToLength(std::string name) {
  if (name.size() <= kLongestName) return name;
  const std::size_t dot = name.rfind('.');
  std::string ending = dot == std::string::npos ? std::string() : name.substr(dot);
  if (ending.size() > 20) ending.clear();
  std::size_t end = kLongestName - ending.size();
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
  name.resize(end);
  return name + ending;
}

}  // namespace

bool isWebAddress(std::string_view text) {
  const std::string_view scheme = schemeOf(text);
  if (scheme.empty() || scheme.size() + 1 >= text.size() || !isLetter(scheme.front())) return false;
  const auto mayNameScheme = [](char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  };
  if (!std::all_of(scheme.begin(), scheme.end(), mayNameScheme)) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isAddressCharacter(text[i])) return false;
    if (text[i] == '%' && !percentByte(text, i)) return false;
  }
  return true;
}

bool isSecureWebAddress(std::string_view text) {
  return isWebAddress(text) && namesHost(text) && lowerCased(schemeOf(text)) == "https";
}

std::string installerFileName(std::string_view address) {
  std::string_view path = address;
  if (const std::size_t host = path.find("://"); host != std::string_view::npos) {
    path.remove_prefix(host + 3);
    path = path.substr(0, path.find_first_of("?#"));
    const std::size_t slash = path.find('/');
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash);
  }
  while (!path.empty() && path.back() == '/') path.remove_suffix(1);
  path.remove_prefix(std::min(path.size(), path.rfind('/') + 1));  // npos + 1 is 0

  std::string name = validText(withoutPercentSequences(path));
  // A separator that was written as "%2F" must not lead out of the folder.
  if (const std::size_t last = name.find_last_of("/\\"); last != std::string::npos) name.erase(0, last + 1);
  std::erase_if(name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  name = cutToLength(std::string(trimmed(name)));
  if (name.empty() || name == "." || name == "..") return std::string(kDefaultInstallerName);
  return name;
}

}  // namespace ostrelon
