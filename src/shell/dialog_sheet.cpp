#include "shell/dialog_sheet.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/accessibility.h"

namespace ostrelon {
namespace {

constexpr int kCardRadius = 14;
/// What has the focus after a sheet when nothing else had it before.
constexpr const char* kConsoleInput = "console.commandInput";

}  // namespace

DialogSheet::DialogSheet(Theme& theme, QWidget& window, int width, int padding)
    : QWidget(&window),
      theme_(theme),
      window_(window),
      card_(new QWidget(this)),
      content_(new QVBoxLayout),
      buttons_(new QHBoxLayout) {
  setAccessibleRole(*this, QAccessible::Dialog);
  setFocusPolicy(Qt::StrongFocus);
  setProperty("noFocusHalo", true);
  auto* column = new QVBoxLayout(card_);
  column->setContentsMargins(padding, padding, padding, padding);
  column->setSpacing(0);
  column->addLayout(content_);
  content_->setSpacing(0);
  column->addSpacing(24);
  column->addLayout(buttons_);
  buttons_->setSpacing(8);
  buttons_->addStretch();
  card_->setFixedWidth(width);
  window.installEventFilter(this);
  connect(&theme, &Theme::changed, this, [this] { update(); });
  hide();
}

// Deleted while it is open it gives the window back all the same, unless the window is what goes: it has
// released its children by then.
DialogSheet::~DialogSheet() {
  if (window_.children().contains(this)) hide();
}

void DialogSheet::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (event->spontaneous()) return;
  if (auto* menus = window_.findChild<QMenuBar*>(); menus != nullptr && inFrontOf(window_) == nullptr) {
    menus->setEnabled(true);
  }
  QWidget* back = focusBefore_;
  if (back == nullptr || back->isHidden()) back = window_.findChild<QWidget*>(kConsoleInput);
  if (back != nullptr) back->setFocus(Qt::OtherFocusReason);
}

// Of a window that is not in front it is what will have the focus once it is.
QWidget* DialogSheet::focusInWindow() const {
  QWidget* focus = QApplication::focusWidget();
  if (focus == nullptr || focus->window() != window_.window()) focus = window_.focusWidget();
  // A menu that was opened by its key gives the focus up by itself.
  return qobject_cast<QMenuBar*>(focus) == nullptr ? focus : nullptr;
}

DialogSheet* DialogSheet::inFrontOf(const QWidget& window) {
  const auto sheets = window.findChildren<DialogSheet*>(Qt::FindDirectChildrenOnly);
  const auto shown = std::find_if(sheets.rbegin(), sheets.rend(),
                                  [](const DialogSheet* sheet) { return !sheet->isHidden(); });
  return shown == sheets.rend() ? nullptr : *shown;
}

Button* DialogSheet::addButton(const QString& title, Button::Kind kind, const QString& identifier,
                               Order order) {
  auto* button = new Button(theme_, kind, title, card_);
  button->setObjectName(identifier);
  button->setPaddings(14, buttonHeight_);
  if (order == Order::fromLeft) {
    buttons_->addWidget(button);
  } else {
    // After the button at the left and the stretch.
    int position = 0;
    while (position < buttons_->count() && buttons_->itemAt(position)->spacerItem() == nullptr) ++position;
    buttons_->insertWidget(position + 1, button);
  }
  tabOrder_.append(button);
  return button;
}

Button* DialogSheet::addLeftButton(const QString& title, Button::Kind kind, const QString& identifier) {
  auto* button = new Button(theme_, kind, title, card_);
  button->setObjectName(identifier);
  button->setPaddings(14, buttonHeight_);
  buttons_->insertWidget(0, button);
  tabOrder_.append(button);
  return button;
}

void DialogSheet::open() {
  focusBefore_ = focusInWindow();
  // Keys of menu commands wait too.
  if (auto* menus = window_.findChild<QMenuBar*>()) menus->setEnabled(false);
  place();
  show();
  raise();
  QWidget* first = firstFocus_ != nullptr ? firstFocus_ : this;
  first->setFocus(Qt::OtherFocusReason);
}

void DialogSheet::place() {
  setGeometry(window_.rect());
  card_->layout()->activate();
  const int height = card_->layout()->hasHeightForWidth() ? card_->layout()->heightForWidth(card_->width())
                                                          : card_->sizeHint().height();
  card_->setGeometry((width() - card_->width()) / 2, std::max(16, (this->height() - height) / 2),
                     card_->width(), height);
  // The shadow reaches beyond the card, where it was before too.
  update();
}

void DialogSheet::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), theme_.scrim());
  paintShadow(painter, card_->geometry(), theme_, 3, kCardRadius);
  paintBox(painter, card_->geometry(), kCardRadius, theme_.card(), theme_.border());
}

void DialogSheet::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  place();
}

void DialogSheet::mousePressEvent(QMouseEvent* event) { event->accept(); }

void DialogSheet::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    if (cancelButton_ != nullptr) cancelButton_->click();
  } else if (isPressingKey(*event) && defaultButton_ != nullptr) {
    defaultButton_->click();
  }
  event->accept();
}

bool DialogSheet::focusNextPrevChild(bool next) {
  if (tabOrder_.isEmpty()) return true;
  const qsizetype count = tabOrder_.size();
  qsizetype at = tabOrder_.indexOf(QApplication::focusWidget());
  if (at < 0) at = next ? count - 1 : 0;
  for (qsizetype step = 0; step < count; ++step) {
    at = (at + (next ? 1 : count - 1)) % count;
    if (!tabOrder_[at]->isVisibleTo(this) || !tabOrder_[at]->isEnabled()) continue;
    tabOrder_[at]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    break;
  }
  return true;
}

bool DialogSheet::eventFilter(QObject* object, QEvent* event) {
  if (object == &window_ && event->type() == QEvent::Resize && !isHidden()) place();
  return QWidget::eventFilter(object, event);
}

}  // namespace ostrelon
