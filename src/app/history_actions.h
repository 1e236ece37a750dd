// What can be done with a row of the history. Each reports its outcome in the console and by a toast.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/history_rows.h"

namespace ostrelon {

class Application;

/// What a row offers.
struct HistoryActions {
  bool newBranch = false;     ///< it is a checkpoint
  bool switchBranch = false;  ///< it lies on another branch than the current one
  bool deletion = false;      ///< it is a kept drawing
  friend bool operator==(const HistoryActions&, const HistoryActions&) = default;
};
HistoryActions historyActions(const HistoryGroup& group, const HistoryRow& row);

/// What was drawn then takes the place of what is drawn now, as one undo step; see `restoreDrawing`. Nothing
/// happens where the drawing is like that already.
void restoreFromHistory(Application& application, const HistoryRow& row, const Drawing& drawing);
/// Shows what differs from it in the open drawing.
void compareFromHistory(Application& application, const HistoryRow& row, const Drawing& drawing);
/// What was drawn then becomes a new document, once unsaved changes of the open one have been asked about.
void openFromHistory(Application& application, const HistoryRow& row, OpenedDocument document);
/// Asks for a name, and begins a branch with the row's checkpoint.
void branchFromHistory(Application& application, const HistoryRow& row);
/// Switches to the row's branch as the menu does.
void switchFromHistory(Application& application, const HistoryRow& row);
/// Asks, and deletes a kept drawing; `deleted` is called when that has been tried.
void deleteFromHistory(Application& application, const HistoryRow& row, std::function<void()> deleted);

}  // namespace ostrelon
