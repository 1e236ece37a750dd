#include "app/shortcut_page.h"

#include <fmt/format.h>

#include "app/key_handling.h"
#include "app/menu.h"
#include "app/shortcut_text.h"
#include "interaction/key_routing.h"

namespace ostrelon {

std::vector<ShortcutGroup> shortcutGroups() {
  std::vector<ShortcutGroup> groups{{"Drawing Board", {}}};
  for (const KeyBinding& binding : keyBindings()) {
    groups.front().rows.push_back(
        {desktopNotation(binding.keys), std::string(binding.title), std::string(binding.when)});
  }
  groups.push_back({"Doors, Windows and Openings", {}});
  for (const PlanItemKey& key : planItemKeys()) {
    groups.back().rows.push_back({desktopNotation(key.keys), std::string(key.title), {}});
  }
  groups.push_back({"While Comparing", {}});
  for (const ComparisonKey& key : comparisonKeys()) {
    groups.back().rows.push_back({desktopNotation(key.keys), std::string(key.title), {}});
  }
  groups.push_back({"While Merging",
                    {{"Up, Down", "The next or the previous row of the list", ""},
                     {"Left, Right", "Choose ours, theirs or both for the conflict", ""},
                     {"Return", "Show the row in the drawing", ""},
                     {"Escape", "Cancel the merge, last of all", ""}}});
  for (const std::string_view menu : menuTitles()) {
    ShortcutGroup group{std::string(menu), {}};
    for (const MenuCommand& command : menuCommands()) {
      if (command.menu != menu || command.shortcut.empty()) continue;
      group.rows.push_back({desktopNotation(command.shortcut), std::string(command.title), {}});
    }
    if (!group.rows.empty()) groups.push_back(std::move(group));
  }
  return groups;
}

std::string shortcutPage() {
  std::string page = "# Keyboard Shortcuts\n";
  for (const ShortcutGroup& group : shortcutGroups()) {
    page += fmt::format("\n## {}\n\n| Keys | What they do |\n|---|---|\n", group.title);
    for (const ShortcutRow& row : group.rows) {
      page += fmt::format("| `{}` | {}{}{} |\n", row.keys, row.title, row.when.empty() ? "" : ", ", row.when);
    }
  }
  return page +
         "\nThe keys of the drawing board work unless a field is being typed in. An empty command line "
         "leaves "
         "them to the drawing board.\n";
}

}  // namespace ostrelon
