#include "shell/controls.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>

#include "app/shortcut_text.h"
#include "shell/qt_text.h"

namespace ostrelon {

QString elided(const QString& text, const QFont& font, Qt::TextElideMode mode, int width) {
  const QFontMetrics metrics(font);
  // Widths are rounded one by one, so that a text may seem too wide by a pixel.
  return metrics.horizontalAdvance(text) <= width + 1 ? text
                                                      : metrics.elidedText(text, mode, std::max(0, width));
}

void showToolTip(const QHelpEvent& event, const QString& text, QWidget* widget) {
  QToolTip::showText(event.globalPos(), text, widget);
}

// --- TextLabel

TextLabel::TextLabel(Theme& theme, TextStyle style, Rank rank, const QString& text, QWidget* parent)
    : QLabel(text, parent), theme_(theme), style_(style), rank_(rank) {
  setFont(fontOf(style));
  setTextFormat(Qt::PlainText);
  setMinimumHeight(lineHeightOf(style));
  connect(&theme, &Theme::changed, this, [this] { applyColor(); });
  applyColor();
}

void TextLabel::setRank(Rank rank) {
  rank_ = rank;
  applyColor();
}

namespace {

// Lays words out in lines of the type scale's height; `each` is called with a line and its top.
template <class Each>
int layOutLines(const QString& text, const QFont& font, int width, int lineHeight, Each&& each) {
  QTextLayout layout(text, font);
  QTextOption option;
  option.setWrapMode(QTextOption::WordWrap);
  layout.setTextOption(option);
  layout.beginLayout();
  int height = 0;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    each(line, height + (lineHeight - line.height()) / 2);
    height += lineHeight;
  }
  layout.endLayout();
  return height;
}

}  // namespace

int TextLabel::heightForWidth(int width) const {
  if (!wordWrap()) return QLabel::heightForWidth(width);
  return std::max(lineHeightOf(style_),
                  layOutLines(text(), font(), width, lineHeightOf(style_), [](QTextLine&, double) {}));
}

void TextLabel::setElision(Qt::TextElideMode mode) {
  elision_ = mode;
  updateGeometry();
  update();
}

QSize TextLabel::minimumSizeHint() const {
  const QSize whole = QLabel::minimumSizeHint();
  return elision_ == Qt::ElideNone ? whole : QSize(0, whole.height());
}

QString TextLabel::shownText() const {
  return elision_ == Qt::ElideNone ? text() : elided(text(), font(), elision_, contentsRect().width());
}

bool TextLabel::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && elision_ != Qt::ElideNone && toolTip().isEmpty()) {
    showToolTip(*static_cast<QHelpEvent*>(event), shownText() != text() ? text() : QString(), this);
    return true;
  }
  return QLabel::event(event);
}

void TextLabel::paintEvent(QPaintEvent* event) {
  if (!wordWrap()) {
    const QString shown = shownText();
    if (shown == text()) {
      QLabel::paintEvent(event);
      return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown);
    return;
  }
  // Qt sets lines as tight as the font allows; here they have the height of the type scale.
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  const bool isCentred = alignment().testFlag(Qt::AlignHCenter);
  layOutLines(text(), font(), width(), lineHeightOf(style_), [&](QTextLine& line, double top) {
    const double left = isCentred ? (width() - line.naturalTextWidth()) / 2 : 0;
    line.draw(&painter, QPointF(left, top));
  });
}

void TextLabel::applyColor() {
  QPalette colors = palette();
  colors.setColor(QPalette::WindowText,
                  rank_ == Rank::primary ? theme_.foreground() : theme_.secondaryOnCard());
  setPalette(colors);
}

// --- Button

Button::Button(Theme& theme, Kind kind, const QString& text, QWidget* parent)
    : QPushButton(text, parent), theme_(theme), kind_(kind) {
  setFocusPolicy(Qt::TabFocus);
  setAutoDefault(false);
  setCursor(Qt::ArrowCursor);
  setAttribute(Qt::WA_Hover);
  setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
  if (kind == Kind::plain) horizontalPadding_ = 8;
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Button::setKind(Kind kind) {
  if (kind_ == kind) return;
  kind_ = kind;
  update();
}

void Button::setIconDrawing(Icon icon, int size) {
  icon_ = icon;
  iconSize_ = size;
  updateGeometry();
  update();
}

void Button::setKeyHint(const QString& hint) {
  keyHint_ = hint;
  updateGeometry();
}

void Button::setKeyHintVisible(bool visible) {
  if (keyHintVisible_ == visible) return;
  keyHintVisible_ = visible;
  updateGeometry();
  update();
}

void Button::setTextStyle(TextStyle style) {
  textStyle_ = style;
  updateGeometry();
}

void Button::setRadius(int radius) {
  radius_ = radius;
  setProperty("focusRadius", radius);
}

void Button::setPaddings(int horizontal, int height) {
  horizontalPadding_ = horizontal;
  height_ = height;
  updateGeometry();
}

void Button::setUnderlined(bool underlined) { isUnderlined_ = underlined; }

QSize Button::sizeHint() const {
  int width = 2 * horizontalPadding_;
  if (!text().isEmpty()) width += QFontMetrics(fontOf(textStyle_)).horizontalAdvance(text());
  if (icon_ != Icon::none) width += iconSize_ + (text().isEmpty() ? 0 : 8);
  if (keyHintVisible_ && !keyHint_.isEmpty()) {
    width += 8 + QFontMetrics(fontOf(TextStyle::caption)).horizontalAdvance(keyHint_);
  }
  return {width, height_};
}

bool Button::isFilled() const { return kind_ == Kind::primary && isEnabled(); }

void Button::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isHovered = isEnabled() && underMouse();
  const bool isPressed = isEnabled() && isDown();

  QColor fill;
  QColor line;
  QColor words = isEnabled() ? theme_.foreground() : theme_.mutedForeground();
  QColor drawing = isEnabled() ? (text().isEmpty() ? theme_.mutedForeground() : theme_.foreground())
                               : theme_.mutedForeground();
  if (isHovered && text().isEmpty()) drawing = theme_.foreground();
  switch (kind_) {
    case Kind::plain:
      if (isPressed) {
        fill = theme_.border();
      } else if (isHovered || isChecked()) {
        fill = theme_.muted();
      }
      break;
    case Kind::outlined:
      line = theme_.border();
      fill = isPressed ? theme_.border() : isHovered ? theme_.muted() : theme_.card();
      if (!isEnabled()) fill = QColor();
      if (text().isEmpty() && isEnabled()) drawing = theme_.foreground();
      break;
    case Kind::primary:
      fill = isPressed   ? theme_.overCard(theme_.fill(), 0.76)
             : isHovered ? theme_.overCard(theme_.fill(), 0.88)
                         : theme_.fill();
      if (!isEnabled()) fill = theme_.muted();
      words = isEnabled() ? theme_.fillText() : theme_.mutedForeground();
      drawing = words;
      break;
    case Kind::dangerous:
      line = isEnabled() ? theme_.destructive() : theme_.border();
      fill = isPressed   ? theme_.overCard(theme_.destructive(), 0.16)
             : isHovered ? theme_.overCard(theme_.destructive(), 0.08)
                         : theme_.card();
      drawing = isEnabled() ? theme_.destructive() : theme_.mutedForeground();
      break;
  }
  if (fill.isValid() || line.isValid()) paintBox(painter, rect(), radius_, fill, line);

  // Icon, title and key are centred as one group.
  QFont font = fontOf(textStyle_);
  font.setUnderline(isUnderlined_);
  const QFontMetrics metrics(font);
  const QFont hintFont = fontOf(TextStyle::caption);
  const bool showsHint = keyHintVisible_ && !keyHint_.isEmpty();
  const int hintWidth = showsHint ? 8 + QFontMetrics(hintFont).horizontalAdvance(keyHint_) : 0;
  const int iconWidth = icon_ == Icon::none ? 0 : iconSize_ + (text().isEmpty() ? 0 : 8);
  const int room = width() - 2 * std::min(horizontalPadding_, 8) - hintWidth - iconWidth;
  // Widths are rounded one by one, so that a title may seem too wide by a pixel.
  const int wholeWidth = metrics.horizontalAdvance(text());
  const QString title =
      wholeWidth <= room + 2 ? text() : metrics.elidedText(text(), Qt::ElideRight, std::max(0, room));
  const int titleWidth = title.isEmpty() ? 0 : metrics.horizontalAdvance(title);
  int x = (width() - iconWidth - titleWidth - hintWidth) / 2;
  if (icon_ != Icon::none) {
    paintIcon(painter, icon_, QRectF(x, 0, iconSize_, height()), iconSize_, drawing);
    x += iconWidth;
  }
  painter.setFont(font);
  painter.setPen(words);
  painter.drawText(QRect(x, 0, titleWidth + 4, height()), Qt::AlignVCenter | Qt::AlignLeft, title);
  x += titleWidth;
  if (showsHint) {
    painter.setFont(hintFont);
    const bool onCard = !isHovered && !isPressed && !isFilled();
    painter.setPen(isEnabled() ? (onCard ? theme_.secondaryOnCard() : words) : theme_.mutedForeground());
    painter.drawText(QRect(x + 8, 0, hintWidth, height()), Qt::AlignVCenter | Qt::AlignLeft, keyHint_);
  }
}

void Button::enterEvent(QEnterEvent* event) {
  QPushButton::enterEvent(event);
  update();
}

void Button::leaveEvent(QEvent* event) {
  QPushButton::leaveEvent(event);
  update();
}

void Button::keyPressEvent(QKeyEvent* event) {
  if (isPressingKey(*event)) {
    click();
    return;
  }
  QPushButton::keyPressEvent(event);
}

bool isPressingKey(const QKeyEvent& event) {
  return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
         (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

// --- Switch

namespace {
constexpr int kSwitchWidth = 30;
constexpr int kSwitchHeight = 18;
constexpr int kSwitchGap = 8;
}  // namespace

Switch::Switch(Theme& theme, const QString& title, QWidget* parent)
    : QCheckBox(title, parent), theme_(theme) {
  setFocusPolicy(Qt::TabFocus);
  setProperty("focusRadius", 9);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

QSize Switch::sizeHint() const {
  const int titleWidth =
      text().isEmpty() ? 0 : QFontMetrics(fontOf(TextStyle::control)).horizontalAdvance(text()) + kSwitchGap;
  return {titleWidth + kSwitchWidth, 20};
}

void Switch::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(fontOf(TextStyle::control));
  painter.setPen(isEnabled() ? theme_.foreground() : theme_.mutedForeground());
  painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft, text());
  const QRectF track(width() - kSwitchWidth, (height() - kSwitchHeight) / 2.0, kSwitchWidth, kSwitchHeight);
  // `border` hardly differs from `card` in any theme: an off-switch has an outline that does.
  const bool isOff = !isChecked();
  QColor color = isOff ? theme_.border() : theme_.accent();
  if (!isEnabled()) color = theme_.muted();
  const QColor outline = isOff && isEnabled() ? theme_.mutedForeground() : QColor();
  paintBox(painter, track, 9, color, outline);
  const double knob = 14;
  const double x = isOff ? track.left() + 2 : track.right() - knob - 2;
  paintBox(painter, QRectF(x, track.top() + 2, knob, knob), 7, theme_.card(), outline);
}

void Switch::keyPressEvent(QKeyEvent* event) {
  if (isPressingKey(*event)) {
    click();
    return;
  }
  QCheckBox::keyPressEvent(event);
}

// --- Field

// The least distance between the placeholder of a field and its hint.
constexpr int kHintGap = 24;

Field::Field(Theme& theme, bool isNumeric, QWidget* parent) : QLineEdit(parent), theme_(theme) {
  setFont(fontOf(isNumeric ? TextStyle::mono : TextStyle::small));
  setFixedHeight(28);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Field::setPrefix(const QString& prefix) {
  prefix_ = prefix;
  setTextMargins(fontMetrics().horizontalAdvance(prefix) + 6, 0, 0, 0);
}

void Field::setItalicPlaceholder(const QString& placeholder) {
  placeholder_ = placeholder;
  setAccessibleDescription(placeholder);
}

void Field::setHint(const QString& hint) {
  hint_ = hint;
  setAccessibleDescription(placeholder_ + QStringLiteral(". ") + hint);
}

bool Field::hasUseFor(const QKeyEvent& key) const {
  if (!(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) return true;
  if (key.matches(QKeySequence::Paste)) return !QGuiApplication::clipboard()->text().isEmpty();
  if (key.matches(QKeySequence::Cut) || key.matches(QKeySequence::Copy)) return hasSelectedText();
  if (key.matches(QKeySequence::Undo)) return isUndoAvailable();
  if (key.matches(QKeySequence::Redo)) return isRedoAvailable();
  if (key.matches(QKeySequence::MoveToEndOfLine)) return cursorPosition() < text().size();
  return !text().isEmpty();
}

bool Field::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && !hasUseFor(*static_cast<QKeyEvent*>(event))) {
    event->ignore();
    return true;
  }
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
    constexpr int kSides = 2 * 11;  // border, padding and the distance that Qt keeps by itself
    const int room = width() - kSides - textMargins().left() - textMargins().right();
    const bool isCut = fontMetrics().horizontalAdvance(text()) > room;
    showToolTip(*static_cast<QHelpEvent*>(event), isCut ? text() : QString(), this);
    return true;
  }
  return QLineEdit::event(event);
}

void Field::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  QPainter painter(this);
  painter.setPen(theme_.secondaryOnCard());
  if (!prefix_.isEmpty()) {
    painter.setFont(font());
    painter.drawText(rect().adjusted(9, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, prefix_);
  }
  if (text().isEmpty() && !placeholder_.isEmpty()) {
    QFont italic = font();
    italic.setItalic(true);
    painter.setFont(italic);
    const QRect box = rect().adjusted(11 + textMargins().left(), 0, -8, 0);
    painter.drawText(box, Qt::AlignVCenter | Qt::AlignLeft, placeholder_);
    const QFont plain = fontOf(TextStyle::small);
    const int taken = painter.fontMetrics().horizontalAdvance(placeholder_) +
                      QFontMetrics(plain).horizontalAdvance(hint_) + kHintGap;
    if (!hint_.isEmpty() && taken <= box.width()) {
      painter.setFont(plain);
      painter.drawText(box, Qt::AlignVCenter | Qt::AlignRight, hint_);
    }
  }
}

// --- Lines and panels

Hairline::Hairline(Theme& theme, Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent), theme_(theme) {
  if (orientation == Qt::Horizontal) {
    setFixedHeight(1);
  } else {
    setFixedWidth(1);
  }
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Hairline::paintEvent(QPaintEvent* /*event*/) { QPainter(this).fillRect(rect(), theme_.border()); }

Panel::Panel(Theme& theme, Qt::Edges lines, QWidget* parent) : QWidget(parent), theme_(theme), lines_(lines) {
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Panel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), theme_.card());
  const QColor line = theme_.border();
  if (lines_ & Qt::LeftEdge) painter.fillRect(0, 0, 1, height(), line);
  if (lines_ & Qt::RightEdge) painter.fillRect(width() - 1, 0, 1, height(), line);
  if (lines_ & Qt::TopEdge) painter.fillRect(0, 0, width(), 1, line);
  if (lines_ & Qt::BottomEdge) painter.fillRect(0, height() - 1, width(), 1, line);
}

QString toolTipWithKey(const QString& text, std::string_view shortcut) {
  if (shortcut.empty()) return text;
  return QStringLiteral("%1 (%2)").arg(text, qtText(desktopNotation(shortcut)));
}

}  // namespace ostrelon
