// What must hold for every input of a fuzzer. A fuzzer stops at the first that does not.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace ostrelon {

inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace ostrelon
