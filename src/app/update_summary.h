// What the settings window shows of an available update.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "updates/update_feed.h"

namespace ostrelon {

struct UpdateSummary {
  /// The newest version first, cut to what fits.
  std::vector<AppUpdateChangeGroup> groups;
  std::size_t omittedChanges = 0;           ///< changes that did not fit
  std::optional<std::string> fullNotesURL;  ///< of the latest release
};

/// `lines`: how many lines may be shown, the versions' own included.
UpdateSummary updateSummary(const AppUpdateAvailability& availability, std::size_t lines);

}  // namespace ostrelon
