#include "shell/picker.h"

#include <QAbstractItemView>
#include <QPainter>

#include "shell/fonts.h"
#include "shell/icons.h"

namespace ostrelon {

Picker::Picker(Theme& theme, QWidget* parent) : QComboBox(parent), theme_(theme) {
  setFont(fontOf(TextStyle::small));
  setFixedHeight(28);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  view()->setFont(fontOf(TextStyle::body));
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Picker::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBox(painter, rect(), 6, underMouse() && isEnabled() ? theme_.muted() : theme_.card(), theme_.border());
  const QColor words = isEnabled() ? theme_.foreground() : theme_.mutedForeground();
  const QRect inner = rect().adjusted(9, 0, -26, 0);
  painter.setFont(font());
  painter.setPen(words);
  painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft,
                   fontMetrics().elidedText(currentText(), Qt::ElideRight, inner.width()));
  paintIcon(painter, Icon::chevronDown, QRectF(width() - 22, 0, 14, height()), 14, theme_.mutedForeground());
}

}  // namespace ostrelon
