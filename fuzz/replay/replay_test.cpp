// Runs a fuzzer's check on every file of its corpus, so that what fuzzing once found stays fixed on
// machines that do not fuzz. Built once for each fuzzer.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void check(const std::string& bytes) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

TEST(FuzzCorpus, EveryInputPasses) {
  check({});
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(OSTRELON_FUZZ_CORPUS)) {
    SCOPED_TRACE(entry.path().string());
    std::ifstream file(entry.path(), std::ios::binary);
    check({std::istreambuf_iterator<char>(file), {}});
    ++count;
  }
  EXPECT_GT(count, 0U) << "there is no corpus in " << OSTRELON_FUZZ_CORPUS;
}

}  // namespace
