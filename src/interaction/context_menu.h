// The menu of a secondary click on an entity or an item of the plan, as values: the window shows it, the
// automation interface lists its titles.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/messages.h"
#include "core/sketch.h"

namespace ostrelon {

struct ContextMenuItem;

/// What choosing an item does.
enum class ContextMenuCommand {
  inspect,
  duplicateSelection,
  deleteSelection,
  duplicatePlanItem,
  flipPlanItem,
  deletePlanItem,
};
/// Gives this wall system to every selected wall, and reports it in the console.
struct AssignWallSystemChoice {
  UUID wallSystemID;
  friend bool operator==(const AssignWallSystemChoice&, const AssignWallSystemChoice&) = default;
};
struct ContextMenuSeparator {};
using ContextMenuSubmenu = std::vector<ContextMenuItem>;

struct ContextMenuItem {
  std::string title;          ///< empty for a separator
  std::string_view shortcut;  ///< "⌘I"; empty: none
  std::variant<ContextMenuSeparator, ContextMenuCommand, AssignWallSystemChoice, ContextMenuSubmenu> content;

  bool isSeparator() const { return std::holds_alternative<ContextMenuSeparator>(content); }
};

using ContextMenu = std::vector<ContextMenuItem>;

/// The menu for the selected item of the plan, else for the primary selected entity; absent when there is
/// none.
std::optional<ContextMenu> selectionContextMenu(const Sketch& sketch);

/// Does what the item stands for. A separator and a submenu do nothing.
void runContextMenuItem(const ContextMenuItem& item, Sketch& sketch, Messages& messages);

/// The titles in order, "-" for a separator.
std::vector<std::string> contextMenuTitles(const ContextMenu& menu);

}  // namespace ostrelon
