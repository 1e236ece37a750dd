// All keys on one page, made from the tables that the key handler and the menus use.
#pragma once

#include <string>
#include <vector>

namespace ostrelon {

struct ShortcutRow {
  std::string keys;   ///< in the desktop's notation
  std::string title;  ///< what they do
  std::string when;   ///< when; empty for always
};

struct ShortcutGroup {
  std::string title;  ///< "Drawing Board", or that of a menu
  std::vector<ShortcutRow> rows;
};

/// The keys of the drawing board, then those of the menus from left to right.
std::vector<ShortcutGroup> shortcutGroups();

/// The same as a page in Markdown, a table a group.
std::string shortcutPage();

}  // namespace ostrelon
