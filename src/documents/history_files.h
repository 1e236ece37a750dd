// The JSON files of the history store: pure functions from bytes to values and back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "documents/document_history_state.h"

namespace ostrelon {

struct DocumentBranchTimeline {
  std::string branchID;
  std::vector<DocumentCheckpoint> checkpoints;  ///< oldest first
  friend bool operator==(const DocumentBranchTimeline&, const DocumentBranchTimeline&) = default;
};

/// Whether the text can only be the name of one file or folder: not empty, ".", or "..", and without
/// separators.
bool isPlainName(std::string_view text);

/// Both throw `DocumentFormatError`, also for identifiers and file names that are not plain.
DocumentHistoryMetadata decodeHistoryMetadata(std::string_view bytes);
DocumentBranchTimeline decodeBranchTimeline(std::string_view bytes);

/// Pretty printed, keys sorted, dates in UTC cut to whole seconds.
std::string encodeHistoryMetadata(const DocumentHistoryMetadata& metadata);
std::string encodeBranchTimeline(const DocumentBranchTimeline& timeline);

}  // namespace ostrelon
