#include "app/update_summary.h"

#include <algorithm>

namespace ostrelon {

UpdateSummary updateSummary(const AppUpdateAvailability& availability, std::size_t lines) {
  UpdateSummary summary;
  summary.fullNotesURL = availability.latestRelease.releaseNotesURL;
  std::vector<AppUpdateChangeGroup> groups = changeGroups(availability);
  std::reverse(groups.begin(), groups.end());
  for (AppUpdateChangeGroup& group : groups) {
    // A version is shown with one of its changes at least, if it has any.
    const std::size_t least = group.changes.empty() ? 1 : 2;
    if (lines < least) {
      summary.omittedChanges += group.changes.size();
      lines = 0;
      continue;
    }
    const std::size_t shown = std::min(group.changes.size(), lines - 1);
    summary.omittedChanges += group.changes.size() - shown;
    group.changes.resize(shown);
    lines -= 1 + shown;
    summary.groups.push_back(std::move(group));
  }
  return summary;
}

}  // namespace ostrelon
