#include "shell/settings_controls.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "shell/qt_text.h"

namespace ostrelon {
namespace {

// A small board: panel, grid, walls, and a line being drawn.
void paintBoard(QPainter& painter, const QRectF& board, const ThemePalette& palette) {
  painter.fillRect(board, qtColor(palette.background));
  painter.setPen(QPen(qtColor(palette.border), 1));
  for (double x = board.left() + 42.5; x < board.right(); x += 16) {
    painter.drawLine(QPointF(x, board.top()), QPointF(x, board.bottom()));
  }
  for (double y = board.top() + 9.5; y < board.bottom(); y += 16) {
    painter.drawLine(QPointF(board.left() + 28, y), QPointF(board.right(), y));
  }
  const QRectF panel(board.left(), board.top(), 28, board.height());
  painter.fillRect(panel, qtColor(palette.card));
  painter.setPen(Qt::NoPen);
  painter.setBrush(qtColor(filledPair(palette).first));
  painter.drawRoundedRect(QRectF(panel.left() + 5, panel.top() + 15, 18, 6), 2, 2);
  painter.setBrush(qtColor(palette.mutedForeground));
  for (const auto& [y, width] : {std::pair{27.0, 12.0}, std::pair{35.0, 15.0}, std::pair{43.0, 11.0}}) {
    painter.drawRect(QRectF(panel.left() + 6, panel.top() + y, width, 2));
  }
  painter.setBrush(Qt::NoBrush);
  QPen wall(qtColor(palette.foreground), 2.5);
  wall.setJoinStyle(Qt::MiterJoin);
  wall.setCapStyle(Qt::FlatCap);
  painter.setPen(wall);
  const double left = board.left() + 42;
  const double top = board.top() + 24;
  QPainterPath walls(QPointF(left + 30, top + 34));
  walls.lineTo(left, top + 34);
  walls.lineTo(left, top);
  walls.lineTo(left + 56, top);
  walls.lineTo(left + 56, top + 34);
  walls.lineTo(left + 46, top + 34);
  painter.drawPath(walls);
  const QColor active = qtColor(palette.active);
  painter.setPen(QPen(active, 2.5));
  painter.drawLine(QPointF(left, top + 17), QPointF(left + 28, top + 17));
  painter.setPen(Qt::NoPen);
  painter.setBrush(active);
  for (const double x : {left, left + 28}) painter.drawEllipse(QPointF(x, top + 17), 2.6, 2.6);
}

}  // namespace

// --- The theme cards

ThemeCard::ThemeCard(Theme& theme, AppearanceMode mode, QWidget* parent)
    : QRadioButton(qtText(displayName(mode)), parent), theme_(theme), mode_(mode) {
  setObjectName("settings.theme." + qtText(rawValue(mode)));
  setFocusPolicy(Qt::TabFocus);
  setProperty("focusRadius", 10);
  setFixedSize(sizeHint());
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void ThemeCard::keyPressEvent(QKeyEvent* event) {
  if (isPressingKey(*event)) {
    click();
    return;
  }
  QRadioButton::keyPressEvent(event);
}

void ThemeCard::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF board(4, 5, 112, 72);
  QPainterPath outline;
  outline.addRoundedRect(board, 6, 6);
  painter.save();
  painter.setClipPath(outline);
  switch (mode_) {
    case AppearanceMode::system:
      paintBoard(painter, board, lightPalette());
      painter.setClipRect(QRectF(board.center().x(), board.top(), board.width() / 2, board.height()),
                          Qt::IntersectClip);
      paintBoard(painter, board, darkPalette());
      break;
    case AppearanceMode::light:
      paintBoard(painter, board, lightPalette());
      break;
    case AppearanceMode::dark:
      paintBoard(painter, board, darkPalette());
      break;
    case AppearanceMode::tansy:
      paintBoard(painter, board, tansyPalette());
      break;
  }
  painter.restore();
  paintBox(painter, board, 6, QColor(), theme_.border());
  if (isChecked()) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme_.foreground(), 2));
    painter.drawRoundedRect(board.adjusted(-3, -4, 3, 4).adjusted(0, 0, 0, 0), 9, 9);
  }
  const QFont font = fontOf(isChecked() ? TextStyle::bodyStrong : TextStyle::body);
  painter.setFont(font);
  painter.setPen(theme_.foreground());
  const int words = QFontMetrics(font).horizontalAdvance(text());
  const int mark = isChecked() ? 14 + 4 : 0;
  int x = static_cast<int>(board.center().x()) - (words + mark) / 2;
  const int y = static_cast<int>(board.bottom()) + 8;
  if (isChecked()) {
    paintIcon(painter, Icon::check, QRectF(x, y, 14, 20), 14, theme_.foreground());
    x += mark;
  }
  painter.drawText(QRect(x, y, words + 4, 20), Qt::AlignVCenter | Qt::AlignLeft, text());
}

// --- The stepper

Stepper::Stepper(Theme& theme, int least, int most, const QString& suffix, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      minus_(new Button(theme, Button::Kind::plain, {}, this)),
      field_(new QSpinBox(this)),
      plus_(new Button(theme, Button::Kind::plain, {}, this)) {
  setFixedSize(31 + 65 + 32, 28);
  field_->setRange(least, most);
  field_->setSuffix(suffix);
  field_->setKeyboardTracking(false);
  field_->setButtonSymbols(QAbstractSpinBox::NoButtons);
  field_->setFrame(false);
  field_->setAlignment(Qt::AlignCenter);
  field_->setFont(fontOf(TextStyle::mono));
  field_->setStyleSheet(QStringLiteral("QSpinBox { background: transparent; border: none; }"));
  field_->setGeometry(32, 1, 64, 26);
  struct StepButton {
    Button* button;
    Icon icon;
    const char* name;
    int x;
    int step;
  };
  for (const StepButton& row :
       {StepButton{minus_, Icon::minus, "Less", 1, -1}, StepButton{plus_, Icon::plus, "More", 97, 1}}) {
    row.button->setIconDrawing(row.icon, 16);
    row.button->setAccessibleName(row.name);
    row.button->setRadius(5);
    row.button->setGeometry(row.x, 1, 30, 26);
    row.button->setAutoRepeat(true);
    connect(row.button, &QPushButton::clicked, this, [this, step = row.step] { stepBy(step); });
  }
  connect(field_, &QSpinBox::valueChanged, this, &Stepper::changed);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Stepper::setValue(int value) {
  const QSignalBlocker quiet(field_);
  field_->setValue(value);
}

void Stepper::stepBy(int steps) { field_->stepBy(steps); }

void Stepper::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBox(painter, rect(), 6, theme_.card(), theme_.border());
  painter.fillRect(QRect(31, 0, 1, height()), theme_.border());
  painter.fillRect(QRect(96, 0, 1, height()), theme_.border());
}

// --- Boxes

SettingsBox::SettingsBox(Theme& theme, bool isFolderField, QWidget* parent)
    : QWidget(parent), theme_(theme), isFolderField_(isFolderField) {
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void SettingsBox::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (isFolderField_) {
    paintBox(painter, rect(), 6, theme_.card(), theme_.border());
    paintIcon(painter, Icon::folder, QRectF(9, 0, 16, height()), 16, theme_.mutedForeground());
  } else {
    paintBox(painter, rect(), 8, theme_.background(), theme_.border());
  }
}

ProgressLine::ProgressLine(Theme& theme, QWidget* parent) : QProgressBar(parent), theme_(theme) {
  setTextVisible(false);
  setRange(0, 1000);
  setFixedHeight(4);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void ProgressLine::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBox(painter, rect(), 2, theme_.border(), QColor());
  const double part = static_cast<double>(value()) / std::max(1, maximum());
  if (part > 0)
    paintBox(painter, QRectF(0, 0, std::max(4.0, width() * part), height()), 2, theme_.accent(), QColor());
}

}  // namespace ostrelon
