#include "documents/content_hash.h"

#include <xxhash.h>

#include <new>

namespace ostrelon {

ContentHash::ContentHash() : state_(XXH3_createState()) {
  if (!state_) throw std::bad_alloc();
  XXH3_64bits_reset(state_.get());
}

void ContentHash::Release::operator()(XXH3_state_s* state) const { XXH3_freeState(state); }

void ContentHash::add(std::string_view bytes) {
  XXH3_64bits_update(state_.get(), bytes.data(), bytes.size());
}

std::uint64_t ContentHash::value() const { return XXH3_64bits_digest(state_.get()); }

std::uint64_t contentHash(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

}  // namespace ostrelon
