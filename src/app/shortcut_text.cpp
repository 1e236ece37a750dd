#include "app/shortcut_text.h"

#include <array>

namespace ostrelon {
namespace {

struct ModifierSign {
  std::string_view sign;
  std::string_view words;
};

// In the order in which this desktop writes them.
constexpr std::array kModifierSigns{
    ModifierSign{"⌃", "Meta+"},
    ModifierSign{"⌘", "Ctrl+"},
    ModifierSign{"⌥", "Alt+"},
    ModifierSign{"⇧", "Shift+"},
};

}  // namespace

std::string desktopNotation(std::string_view text) {
#ifdef __APPLE__
  return std::string(text);
#else
  std::string result;
  while (!text.empty()) {
    std::array<bool, kModifierSigns.size()> held{};
    for (std::size_t i = 0; i < kModifierSigns.size();) {
      if (text.starts_with(kModifierSigns[i].sign)) {
        held[i] = true;
        text.remove_prefix(kModifierSigns[i].sign.size());
        i = 0;
      } else {
        ++i;
      }
    }
    for (std::size_t i = 0; i < kModifierSigns.size(); ++i) {
      if (held[i]) result += kModifierSigns[i].words;
    }
    if (text.empty()) break;
    result += text.front();
    text.remove_prefix(1);
  }
  return result;
#endif
}

}  // namespace ostrelon
