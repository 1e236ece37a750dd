#include "shell/picker.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>

#include "shell/controls.h"

namespace ostrelon {

Picker::Picker(Theme& theme, QWidget* parent) : QComboBox(parent), theme_(theme) {
  setFont(fontOf(TextStyle::small));
  setFixedHeight(28);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  view()->setFont(fontOf(TextStyle::body));
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

QString Picker::shownText() const {
  return elided(currentText(), font(), Qt::ElideRight, comboBoxWords(rect()).width());
}

bool Picker::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
    const bool isCut = shownText() != currentText();
    showToolTip(*static_cast<QHelpEvent*>(event), isCut ? currentText() : QString(), this);
    return true;
  }
  return QComboBox::event(event);
}

void Picker::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintComboBox(painter, rect(), theme_, isEnabled(), underMouse());
  painter.setFont(font());
  painter.setPen(isEnabled() ? theme_.foreground() : theme_.mutedForeground());
  painter.drawText(comboBoxWords(rect()), Qt::AlignVCenter | Qt::AlignLeft, shownText());
}

}  // namespace ostrelon
