// The reader of journals: whatever its frames hold, it reads them or says that it cannot, and what it replays
// is a drawing. The input is read as a journal, and as the contents of frames that check out, each behind its
// length in 32 bits.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "documents/content_hash.h"
#include "documents/journal.h"
#include "require.h"

namespace {

using namespace ostrelon;

constexpr std::uint64_t kMostEntities = 1'000'000;

template <class T>
void put(std::string& bytes, T value) {
  char raw[sizeof(T)];
  std::memcpy(raw, &value, sizeof(T));
  bytes.append(raw, sizeof(T));
}

std::string framed(std::string_view content, std::uint32_t number) {
  std::string place;
  put(place, static_cast<std::uint32_t>(content.size()));
  std::string head = place;
  put(place, number);
  put(head, static_cast<std::uint32_t>(contentHash(place)));
  put(head, contentHash(content));
  return head.append(content);
}

void check(std::string_view bytes) {
  auto journal = readJournal(bytes);
  if (!journal || journal->base.entityCount > kMostEntities) return;
  const std::uint64_t changes = journal->changes();
  auto base = snapshotState(journal->base);
  const bool hasBase = base.has_value();
  JournalReplay replayed =
      replayJournal(journal->entries, hasBase ? std::move(*base) : placeholderState(journal->base));
  if (!hasBase) dropPlaceholders(replayed.state);
  // What came of it is a base that reads back.
  const JournalBase snapshot = journalSnapshot(replayed.state, journal->base);
  const auto again = readJournal(journalStart(snapshot));
  require(again.has_value() && again->end == JournalContent::End::whole, "a snapshot reads back");
  require(journalStart(again->base) == journalStart(snapshot), "a snapshot keeps all");
  settleOnFile(*journal, [](const FilePath&) { return std::uint64_t{0}; });
  require(journal->changes() <= changes, "what a file holds is left out");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  check(bytes);
  std::string frames;
  for (std::uint32_t number = 0; bytes.size() >= 4; ++number) {
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data(), 4);
    bytes.remove_prefix(4);
    const std::string_view content = bytes.substr(0, length);
    bytes.remove_prefix(content.size());
    frames += framed(content, number);
  }
  for (const char* firstLine : {"OSTRELON JOURNAL 1\n", "OSTRELON JOURNAL 2\n"}) check(firstLine + frames);
  return 0;
}
