#include "shell/style_sheet.h"

#include <fmt/format.h>

#include <cmath>

namespace ostrelon {
namespace {

// Names in braces stand for colours of the palette; doubled braces are braces.
constexpr const char* kTemplate = R"(
QToolTip {{ background: {card}; color: {foreground}; border: 1px solid {border}; padding: 3px 6px; }}

QLineEdit {{
  background: {card}; color: {foreground}; border: 1px solid {border}; border-radius: 6px;
  padding: 0 8px; selection-background-color: {fill}; selection-color: {fillText};
}}
QLineEdit[invalid="true"] {{ border-color: {destructive}; }}
QLineEdit:disabled {{ color: {mutedForeground}; }}

QComboBox QAbstractItemView {{
  background: transparent; color: {foreground}; border: none; outline: none; padding: 0 4px;
  selection-background-color: {muted}; selection-color: {foreground};
}}
QComboBox QAbstractItemView::item {{ min-height: 28px; padding: 0 6px; border-radius: 6px; }}

QMenuBar {{ background: transparent; border: none; padding: 0; spacing: 0; }}
QMenuBar::item {{
  background: transparent; color: {foreground}; padding: 6px 10px; border-radius: 6px;
}}
QMenuBar::item:selected {{ background: {muted}; }}
QMenuBar::item:pressed {{ background: {border}; }}

QScrollBar:vertical {{ background: transparent; width: 8px; margin: 0; border: none; }}
QScrollBar::handle:vertical {{ background: {border}; min-height: 24px; border-radius: 2px; margin: 2px; }}
QScrollBar::handle:vertical:hover {{ background: {mutedForeground}; }}
QScrollBar:horizontal {{ background: transparent; height: 8px; margin: 0; border: none; }}
QScrollBar::handle:horizontal {{ background: {border}; min-width: 24px; border-radius: 2px; margin: 2px; }}
QScrollBar::add-line, QScrollBar::sub-line {{ width: 0; height: 0; }}
QScrollBar::add-page, QScrollBar::sub-page {{ background: transparent; }}

QAbstractScrollArea {{ background: transparent; border: none; }}

QHeaderView {{ background: {card}; border: none; }}
QHeaderView::section {{
  background: {card}; color: {foreground}; border: none; border-bottom: 1px solid {border}; padding: 4px 8px;
}}
)";

}  // namespace

std::string hexText(Color color) {
  const auto byte = [](double component) { return static_cast<int>(std::lround(component * 255)); };
  return fmt::format("#{:02x}{:02x}{:02x}", byte(color.red), byte(color.green), byte(color.blue));
}

std::string styleSheetText(const ThemePalette& palette) {
  const auto [fill, fillText] = filledPair(palette);
  return fmt::format(fmt::runtime(kTemplate), fmt::arg("card", hexText(palette.card)),
                     fmt::arg("foreground", hexText(palette.foreground)),
                     fmt::arg("muted", hexText(palette.muted)),
                     fmt::arg("destructive", hexText(palette.destructive)),
                     fmt::arg("mutedForeground", hexText(palette.mutedForeground)),
                     fmt::arg("border", hexText(palette.border)), fmt::arg("fill", hexText(fill)),
                     fmt::arg("fillText", hexText(fillText)));
}

}  // namespace ostrelon
