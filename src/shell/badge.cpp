#include "shell/badge.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "shell/controls.h"

namespace ostrelon {
namespace {

constexpr int kBadgeHeight = 28;
constexpr int kBadgePadding = 10;
constexpr int kBadgeIcon = 16;
constexpr int kBadgeGap = 8;
constexpr double kBadgeOpacity = 0.96;
// What a cut part keeps at least, so that an ellipsis has something before it.
constexpr int kLeastWords = 28;

QColor badgeFill(const Theme& theme) {
  QColor fill = theme.card();
  fill.setAlphaF(static_cast<float>(kBadgeOpacity));
  return fill;
}

int wordsWidth(const BadgePart& part) {
  return QFontMetrics(fontOf(part.style)).horizontalAdvance(part.words);
}

}  // namespace

Badge::Badge(Theme& theme, const QString& identifier, QWidget* parent) : QLabel(parent), theme_(theme) {
  setObjectName(identifier);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Badge::setParts(std::vector<BadgePart> parts) {
  if (parts == parts_) return;
  parts_ = std::move(parts);
  QStringList words;
  for (const BadgePart& part : parts_) words.append(part.words);
  setText(words.join(' '));
  setAccessibleName(text());
  updateGeometry();
  update();
}

void Badge::setFilled(bool filled) {
  if (isFilled_ == filled) return;
  isFilled_ = filled;
  update();
}

int Badge::widthOf(const BadgePart& part) const {
  int width = wordsWidth(part);
  if (part.icon != Icon::none) width += kBadgeIcon + (part.words.isEmpty() ? 0 : kBadgeGap);
  return width;
}

QSize Badge::sizeHint() const {
  int width = 2 * kBadgePadding;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    width += widthOf(parts_[i]);
    if (i > 0) width += parts_[i].hasLineBefore ? 2 * kBadgeGap + 5 : kBadgeGap - 2;
  }
  return {std::max(width, minimumWidth_), kBadgeHeight};
}

std::vector<int> Badge::wordWidths() const {
  std::vector<int> widths;
  for (const BadgePart& part : parts_) widths.push_back(wordsWidth(part));
  int missing = std::max(0, sizeHint().width() - width());
  // First the parts that are meant to, then the others from the last on.
  for (const bool elides : {true, false}) {
    for (std::size_t i = parts_.size(); i-- > 0;) {
      if (parts_[i].elides != elides) continue;
      const int given = std::clamp(widths[i] - kLeastWords, 0, missing);
      widths[i] -= given;
      missing -= given;
    }
  }
  return widths;
}

bool Badge::isCut() const { return width() < sizeHint().width(); }

QColor Badge::ink(BadgePart::Ink which) const {
  if (isFilled_) return theme_.fillText();
  switch (which) {
    case BadgePart::Ink::foreground:
      return theme_.foreground();
    case BadgePart::Ink::secondary:
      return theme_.secondaryOnCard();
    case BadgePart::Ink::active:
      return theme_.active();
    case BadgePart::Ink::fillText:
      return theme_.fillText();
  }
  return theme_.foreground();
}

void Badge::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (isFilled_) {
    paintBox(painter, rect(), 6, theme_.fill(), QColor());
  } else {
    paintBox(painter, rect(), 6, badgeFill(theme_), theme_.border());
  }
  const std::vector<int> widths = wordWidths();
  int x = kBadgePadding;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const BadgePart& part = parts_[i];
    if (i > 0) {
      if (part.hasLineBefore) {
        x += kBadgeGap + 2;
        painter.fillRect(QRect(x, (height() - 12) / 2, 1, 12), theme_.border());
        x += kBadgeGap + 3;
      } else {
        x += kBadgeGap - 2;
      }
    }
    if (part.icon != Icon::none) {
      const QColor drawing = part.iconInk == BadgePart::Ink::secondary && !isFilled_
                                 ? theme_.mutedForeground()
                                 : ink(part.iconInk);
      paintIcon(painter, part.icon, QRectF(x, 0, kBadgeIcon, height()), kBadgeIcon, drawing);
      x += kBadgeIcon + (part.words.isEmpty() ? 0 : kBadgeGap);
    }
    painter.setFont(fontOf(part.style));
    painter.setPen(ink(part.ink));
    painter.drawText(QRect(x, 0, widths[i] + 2, height()), Qt::AlignVCenter | Qt::AlignLeft,
                     elided(part.words, painter.font(), Qt::ElideRight, widths[i]));
    x += widths[i];
  }
}

BadgeBox::BadgeBox(Theme& theme, int radius, QWidget* parent)
    : QWidget(parent), theme_(theme), radius_(radius) {
  connect(&theme, &Theme::changed, this, [this] { update(); });
  setCursor(Qt::ArrowCursor);
}

void BadgeBox::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBox(painter, rect(), radius_, badgeFill(theme_), theme_.border());
}

// A press between the buttons is no press on the canvas.
void BadgeBox::mousePressEvent(QMouseEvent* event) { event->accept(); }

}  // namespace ostrelon
