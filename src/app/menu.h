// The menu bar as data: titles, keys, enabling, actions and submenus, in order. The window builds
// its menus from this table, automation runs its rows by title, and a page of shortcuts can print it.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ostrelon {

class Application;

/// One row of a submenu, as it is at this moment.
struct MenuChoice {
  std::string title;
  bool isEnabled = true;
  bool isChecked = false;  ///< the current choice
  std::function<void(Application&)> run;
};

/// One row of a menu.
struct MenuCommand {
  std::string_view menu;
  std::string_view title;                                      ///< empty: a separator
  std::string_view shortcut = {};                              ///< "⇧⌘S"; empty: none
  void (*run)(Application&) = nullptr;                         ///< null: a submenu or a separator
  bool (*isEnabled)(const Application&) = nullptr;             ///< null: always
  std::vector<MenuChoice> (*choices)(Application&) = nullptr;  ///< rows of the submenu
  bool (*isOn)(const Application&) = nullptr;  ///< of a row that is a switch; null: it is none
};

/// The menus from left to right.
std::span<const std::string_view> menuTitles();
/// All rows, menu by menu in order.
std::span<const MenuCommand> menuCommands();

bool isEnabled(const MenuCommand& command, const Application& application);

/// Runs the row of this path: "File/Save", "View/Appearance/Dark". Gives nothing when it ran, else
/// a sentence that says why not.
std::optional<std::string> runMenuCommand(Application& application, std::string_view path);

}  // namespace ostrelon
