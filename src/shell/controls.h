// The controls that the windows share, painted from the theme.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "shell/fonts.h"
#include "shell/icons.h"
#include "shell/theme.h"

class QHelpEvent;

namespace ostrelon {

/// A word or a line in the type scale, in the colour of its rank.
class TextLabel : public QLabel {
 public:
  enum class Rank { primary, secondary };

  TextLabel(Theme& theme, TextStyle style, Rank rank, const QString& text = {}, QWidget* parent = nullptr);
  void setRank(Rank rank);
  /// Cuts a line that does not fit with an ellipsis; the tooltip then shows all of it.
  void setElision(Qt::TextElideMode mode);
  int heightForWidth(int width) const override;
  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void applyColor();

  QString shownText() const;

  Theme& theme_;
  TextStyle style_;
  Rank rank_;
  Qt::TextElideMode elision_ = Qt::ElideNone;
};

/// A button. Its identifier is its object name.
class Button : public QPushButton {
 public:
  enum class Kind {
    plain,      ///< no fill and no border until the pointer is over it
    outlined,   ///< a card with a border
    primary,    ///< filled
    dangerous,  ///< outlined in the colour of destruction
  };

  Button(Theme& theme, Kind kind, const QString& text, QWidget* parent = nullptr);

  void setKind(Kind kind);
  void setIconDrawing(Icon icon, int size = 16);
  /// A key shown after the title, in the desktop's notation; the tooltip names it too.
  void setKeyHint(const QString& hint);
  void setKeyHintVisible(bool visible);
  void setTextStyle(TextStyle style);
  void setRadius(int radius);
  void setPaddings(int horizontal, int height);
  /// Paints the title underlined, as a link.
  void setUnderlined(bool underlined);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool isFilled() const;

  Theme& theme_;
  Kind kind_;
  Icon icon_ = Icon::none;
  int iconSize_ = 16;
  TextStyle textStyle_ = TextStyle::control;
  QString keyHint_;
  bool keyHintVisible_ = true;
  bool isUnderlined_ = false;
  int radius_ = 6;
  int horizontalPadding_ = 12;
  int height_ = 28;
};

/// A switch of 30 by 18. Its title, if any, is to its left.
class Switch : public QCheckBox {
 public:
  Switch(Theme& theme, const QString& title, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool hitButton(const QPoint& position) const override { return rect().contains(position); }

 private:
  Theme& theme_;
};

/// A field of one line: 28 high, digits in mono where `isNumeric`. A tooltip shows a text that is longer.
class Field : public QLineEdit {
 public:
  Field(Theme& theme, bool isNumeric, QWidget* parent = nullptr);
  /// A letter in front of the text, in secondary colour: "x".
  void setPrefix(const QString& prefix);
  /// The placeholder is painted in italic in secondary colour.
  void setItalicPlaceholder(const QString& placeholder);
  /// A few words at the right end of the empty field, where there is space beside the placeholder.
  void setHint(const QString& hint);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// False for a key that would change nothing here: it is left to the menus.
  bool hasUseFor(const QKeyEvent& key) const;

  Theme& theme_;
  QString prefix_;
  QString placeholder_;
  QString hint_;
};

/// A hairline of one pixel.
class Hairline : public QWidget {
 public:
  Hairline(Theme& theme, Qt::Orientation orientation, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
};

/// A panel of flat paper: `card`, with a hairline at the edges that it draws itself.
class Panel : public QWidget {
 public:
  Panel(Theme& theme, Qt::Edges lines, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
  Theme& theme() { return theme_; }

 private:
  Theme& theme_;
  Qt::Edges lines_;
};

/// Return presses the control that has the focus: Space belongs to the drawing board.
bool isPressingKey(const QKeyEvent& event);

/// The text, or as much of it as fits into `width` px, with an ellipsis.
QString elided(const QString& text, const QFont& font, Qt::TextElideMode mode, int width);

/// Shows a tooltip where the pointer asks for one; an empty text takes a shown one away.
void showToolTip(const QHelpEvent& event, const QString& text, QWidget* widget);

/// "Save (Ctrl+S)".
QString toolTipWithKey(const QString& text, std::string_view shortcut);

}  // namespace ostrelon
