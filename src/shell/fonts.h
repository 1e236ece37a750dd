// The type scale of the windows: Inter for words, JetBrains Mono for numbers that change while one
// looks at them and for the console. Pixel sizes are whole at 1x.
#pragma once

#include <QFont>

namespace ostrelon {

enum class TextStyle {
  heading,      ///< 11/16, 600, spaced: TOOLS, CONSOLE
  caption,      ///< 11/16: hints and notes
  tag,          ///< 11/16, 600
  small,        ///< 12/18: rows, field labels
  badge,        ///< 12/18, 500
  smallStrong,  ///< 12/18, 600
  body,         ///< 13/20
  control,      ///< 13/20, 500: buttons
  bodyStrong,   ///< 13/20, 600
  title,        ///< 15/22, 600
  wordmark,     ///< 15/22, 600, drawn for display
  display,      ///< 20/28, 600
  mono,         ///< 12/18
  measurement,  ///< mono, 500
};

QFont fontOf(TextStyle style);
/// The height of one line, px at 1x.
int lineHeightOf(TextStyle style);

}  // namespace ostrelon
