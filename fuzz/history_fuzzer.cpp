// The readers of the history's files: names that they accept stay within the store, and what they
// accept can be written and read again.
#include <cstdint>
#include <string_view>

#include "documents/document_history.h"
#include "documents/history_files.h"
#include "documents/sketch_document_io.h"
#include "memory_files.h"
#include "require.h"

namespace {

using namespace ostrelon;

// Dates are written with four digits of the year; what an offset pushed beyond is left out of account.
bool isWrittenInFourDigits(Date date) {
  const double seconds = secondsSince1970(date);
  return seconds > -62'167'219'200 && seconds < 253'402'300'799;
}

void checkMetadata(std::string_view text) {
  DocumentHistoryMetadata metadata;
  try {
    metadata = decodeHistoryMetadata(text);
  } catch (const DocumentFormatError&) {
    return;
  }
  require(isPlainName(metadata.currentBranchID), "the current branch is a plain name");
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    require(isPlainName(branch.id), "branches have plain names");
    if (!isWrittenInFourDigits(branch.createdAt)) return;
  }
  const std::string written = encodeHistoryMetadata(metadata);
  require(encodeHistoryMetadata(decodeHistoryMetadata(written)) == written, "writing keeps all");
}

void checkTimeline(std::string_view text) {
  DocumentBranchTimeline timeline;
  try {
    timeline = decodeBranchTimeline(text);
  } catch (const DocumentFormatError&) {
    return;
  }
  for (const DocumentCheckpoint& checkpoint : timeline.checkpoints) {
    require(isPlainName(checkpoint.fileName), "snapshots have plain names");
    const FilePath path = checkpointURL("/home/plan.ostrel", "main", checkpoint.fileName);
    require(path.lexically_normal().parent_path() == "/home/.ostrel-history/branches/main/checkpoints",
            "snapshots lie in their branch");
    if (!isWrittenInFourDigits(checkpoint.createdAt)) return;
  }
  const std::string written = encodeBranchTimeline(timeline);
  require(encodeBranchTimeline(decodeBranchTimeline(written)) == written, "writing keeps all");
}

// The store with this text as either of its files.
void checkStore(std::string_view text) {
  MemoryFiles files;
  const FilePath url = "/home/plan.ostrel";
  ensureDocumentHistory(files, url);
  for (const char* file : {"branches/main/timeline.json", "meta.json"}) {
    files.contents["/home/.ostrel-history/" + std::string(file)] = text;
    try {
      createCheckpoint(files, url, "message", Date(), SketchDocumentV2());
    } catch (const UserError&) {
      continue;
    }
  }
  for (const auto& [path, bytes] : files.contents) {
    require(path.lexically_normal().string().starts_with("/home/.ostrel-history/"),
            "nothing is written elsewhere");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  checkMetadata(text);
  checkTimeline(text);
  checkStore(text);
  return 0;
}
