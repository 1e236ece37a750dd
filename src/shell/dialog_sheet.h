// A question over the main window: a card in the middle of a scrim. The card takes the focus and the
// keys; what lies under the scrim waits.
#pragma once

#include <QPointer>
#include <QWidget>

#include "shell/controls.h"

class QHBoxLayout;
class QVBoxLayout;

namespace ostrelon {

class DialogSheet : public QWidget {
  Q_OBJECT

 public:
  /// Covers `window`. `width` and `padding`: of the card, px.
  DialogSheet(Theme& theme, QWidget& window, int width, int padding);
  ~DialogSheet() override;
  DialogSheet(const DialogSheet&) = delete;
  DialogSheet& operator=(const DialogSheet&) = delete;

  QVBoxLayout& content() { return *content_; }
  /// Where a button joins the row at the foot: after the others, or before them.
  enum class Order { fromLeft, fromRight };
  Button* addButton(const QString& title, Button::Kind kind, const QString& identifier,
                    Order order = Order::fromLeft);
  /// A button alone at the left of the row.
  Button* addLeftButton(const QString& title, Button::Kind kind, const QString& identifier);
  void setButtonHeight(int height) { buttonHeight_ = height; }
  /// What Return presses and what has the focus first; Escape presses the other, or nothing.
  void setDefaultButton(Button* button) { defaultButton_ = button; }
  void setCancelButton(Button* button) { cancelButton_ = button; }
  void setFirstFocus(QWidget* widget) { firstFocus_ = widget; }
  /// A field or another control that Tab reaches before the buttons.
  void addToTabOrder(QWidget* widget) { tabOrder_.append(widget); }
  void open();

  /// The sheet in front of this window's content, if any.
  static DialogSheet* inFrontOf(const QWidget& window);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool eventFilter(QObject* object, QEvent* event) override;
  /// Gives the card the height of its content, in the middle of the window.
  void place();

 private:
  QWidget* focusInWindow() const;

  Theme& theme_;
  QWidget& window_;
  QWidget* card_;
  QVBoxLayout* content_;
  QHBoxLayout* buttons_;
  QWidgetList tabOrder_;
  Button* defaultButton_ = nullptr;
  Button* cancelButton_ = nullptr;
  QWidget* firstFocus_ = nullptr;
  QPointer<QWidget> focusBefore_;
  int buttonHeight_ = 32;
};

}  // namespace ostrelon
