// The small cards that lie over the canvas: words and icons in a row, with hairlines between groups.
// They let the pointer through.
#pragma once

#include <QLabel>
#include <vector>

#include "shell/fonts.h"
#include "shell/icons.h"
#include "shell/theme.h"

namespace ostrelon {

/// One piece of a badge.
struct BadgePart {
  enum class Ink { foreground, secondary, active, fillText };

  Icon icon = Icon::none;  ///< in front of the words
  QString words;
  Ink ink = Ink::foreground;
  Ink iconInk = Ink::secondary;
  TextStyle style = TextStyle::badge;
  bool hasLineBefore = false;  ///< a hairline sets it off from the part before
  bool elides = false;         ///< gives way before the others when not all of them fit
  friend bool operator==(const BadgePart&, const BadgePart&) = default;
};

/// A label, so that a screen reader reads its words.
class Badge : public QLabel {
 public:
  Badge(Theme& theme, const QString& identifier, QWidget* parent);

  void setParts(std::vector<BadgePart> parts);
  /// Filled to stand out, as a label with accent colouring.
  void setFilled(bool filled);
  void setMinimumBadgeWidth(int width) { minimumWidth_ = width; }
  QSize sizeHint() const override;
  /// Whether some of the words are shown with an ellipsis.
  bool isCut() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  Theme& theme() { return theme_; }

 private:
  /// How wide the words of each part are in the width that there is, px.
  std::vector<int> wordWidths() const;
  int widthOf(const BadgePart& part) const;
  QColor ink(BadgePart::Ink ink) const;

  Theme& theme_;
  std::vector<BadgePart> parts_;
  bool isFilled_ = false;
  int minimumWidth_ = 0;
};

/// A card over the canvas that holds buttons.
class BadgeBox : public QWidget {
 public:
  BadgeBox(Theme& theme, int radius, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  Theme& theme_;
  int radius_;
};

}  // namespace ostrelon
