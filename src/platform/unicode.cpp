#include "platform/unicode.h"

#include <unicode/brkiter.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace ostrelon {
namespace {

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

bool isWhiteSpace(UChar32 scalar) { return scalar >= 0 && u_isUWhiteSpace(scalar); }

icu::UnicodeString wide(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto size = static_cast<std::int32_t>(text.size());
  std::int32_t start = 0;
  while (start < size) {
    std::int32_t next = start;
    UChar32 scalar = 0;
    U8_NEXT(bytes, next, size, scalar);
    if (!isWhiteSpace(scalar)) break;
    start = next;
  }
  std::int32_t end = size;
  while (end > start) {
    std::int32_t previous = end;
    UChar32 scalar = 0;
    U8_PREV(bytes, start, previous, scalar);
    if (!isWhiteSpace(scalar)) break;
    end = previous;
  }
  return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

std::vector<std::string> splitAtWhiteSpace(std::string_view text) {
  std::vector<std::string> pieces;
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto size = static_cast<std::int32_t>(text.size());
  std::int32_t start = 0;
  std::int32_t position = 0;
  const auto take = [&](std::int32_t end) {
    if (end > start) {
      pieces.emplace_back(
          text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
    }
  };
  while (position < size) {
    const std::int32_t here = position;
    UChar32 scalar = 0;
    U8_NEXT(bytes, position, size, scalar);
    if (isWhiteSpace(scalar)) {
      take(here);
      start = position;
    }
  }
  take(size);
  return pieces;
}

std::string lowerCased(std::string_view text) {
  std::string result;
  if (isAscii(text)) {
    result.assign(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char byte) {
      return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
    });
    return result;
  }
  wide(text).toLower(icu::Locale::getRoot()).toUTF8String(result);
  return result;
}

std::size_t characterCount(std::string_view text) {
  // A carriage return with its line feed is one character, so only text without one is counted by bytes.
  if (isAscii(text) && text.find('\r') == std::string_view::npos) return text.size();
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> iterator(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  const icu::UnicodeString whole = wide(text);
  if (U_FAILURE(status)) return static_cast<std::size_t>(whole.countChar32());
  iterator->setText(whole);
  std::size_t count = 0;
  while (iterator->next() != icu::BreakIterator::DONE) ++count;
  return count;
}

int compareForPeople(std::string_view a, std::string_view b) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Collator> collator(
      icu::Collator::createInstance(icu::Locale::getRoot(), status));
  if (U_SUCCESS(status)) {
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    collator->setStrength(icu::Collator::SECONDARY);
    const auto order = collator->compare(wide(a), wide(b), status);
    if (U_SUCCESS(status) && order != UCOL_EQUAL) return order == UCOL_LESS ? -1 : 1;
  }
  return a.compare(b);
}

}  // namespace ostrelon
