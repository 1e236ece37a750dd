// A 64-bit fingerprint (XXH3) of bytes that come in pieces. It distinguishes contents that differ by
// accident; it is no protection against one who wants to deceive. Journals store its values: another hash
// in its place is another version of theirs.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

struct XXH3_state_s;

namespace ostrelon {

class ContentHash {
 public:
  /// Throws `std::bad_alloc` when there is no memory for its state.
  ContentHash();

  /// The division into pieces makes no difference.
  void add(std::string_view bytes);
  /// Of all bytes so far; more may be added.
  std::uint64_t value() const;

 private:
  struct Release {
    void operator()(XXH3_state_s* state) const;
  };
  std::unique_ptr<XXH3_state_s, Release> state_;
};

std::uint64_t contentHash(std::string_view bytes);

}  // namespace ostrelon
