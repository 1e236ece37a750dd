// The palette in force, as the windows use it: colours by role, the base style, and the signal to all widgets
// that it has changed.
#pragma once

#include <QColor>
#include <QObject>

#include "core/theme_palette.h"

class QPainter;
class QWidget;

namespace ostrelon {

QColor qtColor(Color color, double opacity = 1);

class Theme : public QObject {
  Q_OBJECT

 public:
  explicit Theme(QObject* parent = nullptr);

  const ThemePalette& palette() const { return palette_; }
  /// Applies the palette to the whole application.
  void setPalette(const ThemePalette& palette);

  QColor background() const { return qtColor(palette_.background); }
  QColor foreground() const { return qtColor(palette_.foreground); }
  QColor card() const { return qtColor(palette_.card); }
  QColor muted() const { return qtColor(palette_.muted); }
  QColor mutedForeground() const { return qtColor(palette_.mutedForeground); }
  QColor border() const { return qtColor(palette_.border); }
  QColor accent() const { return qtColor(palette_.accent); }
  QColor destructive() const { return qtColor(palette_.destructive); }
  QColor active() const { return qtColor(palette_.active); }
  QColor green() const { return qtColor(kThemeGreen); }

  /// What stands out by being filled, and the words on it.
  QColor fill() const { return qtColor(filledPair(palette_).first); }
  QColor fillText() const { return qtColor(filledPair(palette_).second); }
  /// Secondary words on a card.
  QColor secondaryOnCard() const { return qtColor(secondaryText(palette_, palette_.card)); }
  /// A colour laid over a card at an opacity.
  QColor overCard(const QColor& color, double opacity) const;
  bool isDark() const { return relativeLuminance(palette_.background) < 0.5; }

  QColor shadow(int elevation) const;
  QColor scrim() const;

 Q_SIGNALS:
  void changed();

 private:
  ThemePalette palette_ = lightPalette();
};

/// Sets the base style and the interface font. Once, before the first widget.
void installBaseStyle(Theme& theme);

// --- Painting that widgets share

/// A box with a one-pixel border drawn inside it on pixel centres.
void paintBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& border);
/// The frame and the arrow of a combo box.
void paintComboBox(QPainter& painter, const QRect& box, const Theme& theme, bool isEnabled, bool isHovered);
/// The place of the words of a combo box.
QRect comboBoxWords(const QRect& box);
/// A soft shadow around `box`, painted as a nine-patch that is made once. `elevation`: 2 menus and
/// toasts, 3 sheets.
void paintShadow(QPainter& painter, const QRectF& box, const Theme& theme, int elevation, double radius);
/// How far a shadow reaches beyond its box on each side, px.
int shadowReach(int elevation);

/// 0 when the desktop switches animation off.
int animationMilliseconds(int milliseconds);

}  // namespace ostrelon
