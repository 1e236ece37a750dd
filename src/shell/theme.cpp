#include "shell/theme.h"

#include <QApplication>
#include <QBitmap>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmapCache>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <cmath>

#include "shell/accessibility.h"
#include "shell/fonts.h"
#include "shell/icons.h"
#include "shell/qt_text.h"
#include "shell/style_sheet.h"

namespace ostrelon {
namespace {

constexpr int kControlHeight = 28;
constexpr int kMenuItemHeight = 28;
constexpr int kMenuItemPadding = 10;
constexpr int kMenuMinimumWidth = 200;
constexpr int kMenuCheckWidth = 24;
constexpr int kPopupRadius = 10;
constexpr int kMenuPadding = 4;
constexpr int kSubmenuGap = 3;
constexpr int kHaloWidth = 3;
constexpr const char* kHasShadow = "hasPopupShadow";

// The shadow of a popup. It is painted into the window below it, so that it needs no compositor, and the
// popup stays as large as it looks.
class PopupShadow final : public QObject {
 public:
  PopupShadow(Theme& theme, QWidget& popup) : QObject(&popup), theme_(theme), popup_(popup) {}
  ~PopupShadow() override { delete shadow_; }

  bool eventFilter(QObject* /*object*/, QEvent* event) override {
    switch (event->type()) {
      case QEvent::Show:
      case QEvent::Move:
      case QEvent::Resize:
        if (popup_.isVisible()) place();
        break;
      case QEvent::Hide:
        delete shadow_;
        break;
      default:
        break;
    }
    return false;
  }

 private:
  class Painted final : public QWidget {
   public:
    Painted(Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
      setAttribute(Qt::WA_TransparentForMouseEvents);
    }

   protected:
    void paintEvent(QPaintEvent* /*event*/) override {
      const int reach = shadowReach(2);
      QPainter painter(this);
      paintShadow(painter, QRectF(rect()).adjusted(reach, reach, -reach, -reach), theme_, 2, kPopupRadius);
    }

   private:
    Theme& theme_;
  };

  void place() {
    QWidget* window = popup_.parentWidget();
    while (window != nullptr && (!window->isWindow() || window->windowType() == Qt::Popup))
      window = window->parentWidget();
    if (window == nullptr) return;
    if (shadow_ == nullptr) shadow_ = new Painted(theme_, window);
    const int reach = shadowReach(2);
    const QRect box(window->mapFromGlobal(popup_.mapToGlobal(QPoint(0, 0))), popup_.size());
    shadow_->setGeometry(box.adjusted(-reach, -reach, reach, reach));
    shadow_->raise();
    shadow_->show();
  }

  Theme& theme_;
  QWidget& popup_;
  QPointer<QWidget> shadow_;
};

// Fusion with menus of its own, and without focus rectangles: the halo shows the focus.
class BaseStyle final : public QProxyStyle {
 public:
  explicit BaseStyle(Theme& theme) : QProxyStyle(QStyleFactory::create("Fusion")), theme_(theme) {}

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    switch (metric) {
      case PM_FocusFrameHMargin:
      case PM_FocusFrameVMargin:
        return kHaloWidth + 1;
      case PM_MenuPanelWidth:
        return 0;
      case PM_MenuHMargin:
      case PM_MenuVMargin:
        return kMenuPadding;
      case PM_SubMenuOverlap:
        return kMenuPadding + kSubmenuGap;  // counted from the end of the row
      case PM_ButtonShiftHorizontal:
      case PM_ButtonShiftVertical:
        return 0;
      default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
  }

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override {
    switch (hint) {
      case SH_FocusFrame_AboveWidget:
        return 1;
      case SH_FocusFrame_Mask:
      case SH_EtchDisabledText:
      case SH_DitherDisabledText:
      case SH_Menu_FlashTriggeredItem:
      case SH_UnderlineShortcut:
      case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
      default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
  }

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    if (element == PE_FrameFocusRect) return;
    if (element == PE_PanelMenu) {
      painter->save();
      // What the mask leaves of the corners has the colour of the outline.
      if (widget != nullptr && !widget->mask().isEmpty()) painter->fillRect(option->rect, theme_.border());
      painter->setRenderHint(QPainter::Antialiasing);
      paintBox(*painter, option->rect, kPopupRadius, theme_.card(), theme_.border());
      painter->restore();
      return;
    }
    if (element == PE_FrameMenu) return;
    QProxyStyle::drawPrimitive(element, option, painter, widget);
  }

  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    if (element == CE_MenuItem) {
      if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
        paintMenuItem(*item, *painter);
        return;
      }
    }
    if (element == CE_MenuEmptyArea) return;
    QProxyStyle::drawControl(element, option, painter, widget);
  }

  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                         const QWidget* widget) const override {
    if (type == CT_ComboBox) {
      const int sides = option->rect.width() - comboBoxWords(option->rect).width();
      return {size.width() + sides + 4, std::max(size.height(), kControlHeight)};
    }
    if (type == CT_MenuItem) {
      const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
      if (item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator) return {8, 9};
      if (item != nullptr) {
        const QStringList parts = item->text.split('\t');
        int width = QFontMetrics(fontOf(TextStyle::body)).horizontalAdvance(parts.front());
        if (parts.size() > 1) {
          width += 32 + QFontMetrics(fontOf(TextStyle::caption)).horizontalAdvance(parts.back());
        }
        width += 2 * kMenuItemPadding + kMenuCheckWidth;
        return {std::max(width, kMenuMinimumWidth - 8), kMenuItemHeight};
      }
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
  }

  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override {
    if (control == CC_ComboBox && part == SC_ComboBoxEditField) return comboBoxWords(option->rect);
    if (control == CC_ComboBox && part == SC_ComboBoxArrow)
      return option->rect.adjusted(option->rect.width() - 26, 0, 0, 0);
    return QProxyStyle::subControlRect(control, option, part, widget);
  }

  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    if (control != CC_ComboBox) {
      QProxyStyle::drawComplexControl(control, option, painter, widget);
      return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintComboBox(*painter, option->rect, theme_, (option->state & State_Enabled) != 0,
                  (option->state & State_MouseOver) != 0);
    painter->restore();
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    auto* popup = qobject_cast<QWidget*>(object);
    switch (popup != nullptr ? event->type() : QEvent::None) {
      case QEvent::Resize:
        roundCorners(*popup);
        break;
      case QEvent::Paint:
        if (qobject_cast<QMenu*>(popup) == nullptr) {
          QPainter painter(popup);
          QStyleOption whole;
          whole.initFrom(popup);
          drawPrimitive(PE_PanelMenu, &whole, &painter, popup);
          return true;
        }
        break;
      default:
        break;
    }
    return QProxyStyle::eventFilter(object, event);
  }

  void polish(QWidget* widget) override {
    QProxyStyle::polish(widget);
    // Names come out of files. No label, tooltip or message box may take one for markup, which could
    // load pictures or pass for words of the program.
    if (auto* label = qobject_cast<QLabel*>(widget); label && label->textFormat() == Qt::AutoText) {
      label->setTextFormat(Qt::PlainText);
    }
    // Menus and the lists of combo boxes look alike: with the program's corners and shadow, not the
    // desktop's.
    if (qobject_cast<QMenu*>(widget) != nullptr || widget->inherits("QComboBoxPrivateContainer")) {
      widget->setWindowFlag(Qt::FramelessWindowHint);
      widget->setWindowFlag(Qt::NoDropShadowWindowHint);
      widget->setAttribute(Qt::WA_TranslucentBackground);
      widget->installEventFilter(this);
      if (!widget->property(kHasShadow).toBool()) {
        widget->setProperty(kHasShadow, true);
        widget->installEventFilter(new PopupShadow(theme_, *widget));
      }
    }
  }

 private:
  // Without a compositor, what lies outside the rounded corners would be black.
  static void roundCorners(QWidget& popup) {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return;
    QBitmap mask(popup.size());
    mask.clear();
    QPainter painter(&mask);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::color1);
    painter.drawRoundedRect(popup.rect().adjusted(0, 0, -1, -1), kPopupRadius - 1, kPopupRadius - 1);
    painter.end();
    popup.setMask(mask);
  }

  void paintMenuItem(const QStyleOptionMenuItem& item, QPainter& painter) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect box = item.rect;
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
      painter.fillRect(QRect(box.left() + 6, box.center().y(), box.width() - 12, 1), theme_.border());
      painter.restore();
      return;
    }
    const bool isEnabled = (item.state & State_Enabled) != 0;
    const bool isHovered = isEnabled && (item.state & State_Selected) != 0;
    if (isHovered) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(theme_.muted());
      painter.drawRoundedRect(box, 6, 6);
    }
    const QRect words = box.adjusted(kMenuItemPadding, 0, -kMenuItemPadding, 0);
    const QStringList parts = item.text.split('\t');
    painter.setFont(fontOf(TextStyle::body));
    painter.setPen(isEnabled ? theme_.foreground() : theme_.mutedForeground());
    painter.drawText(words, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextHideMnemonic, parts.front());
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
      paintIcon(painter, Icon::chevronRight, QRectF(words.right() - 14, box.top(), 14, box.height()), 14,
                isEnabled ? theme_.foreground() : theme_.mutedForeground());
    } else if (item.checked) {
      paintIcon(painter, Icon::check, QRectF(words.right() - 16, box.top(), 16, box.height()), 16,
                theme_.active());
    } else if (parts.size() > 1) {
      painter.setFont(fontOf(TextStyle::caption));
      const QColor hint = isHovered ? theme_.foreground() : theme_.secondaryOnCard();
      painter.setPen(isEnabled ? hint : theme_.mutedForeground());
      painter.drawText(words, Qt::AlignVCenter | Qt::AlignRight, parts.back());
    }
    painter.restore();
  }

  Theme& theme_;
};

// An outline with a halo around what has the keyboard focus.
class FocusHalo final : public QFocusFrame {
 public:
  explicit FocusHalo(Theme& theme) : theme_(theme) {}

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    if (widget() == nullptr) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QVariant asked = widget()->property("focusRadius");
    const double radius = asked.isValid() ? asked.toDouble() : 6;
    const QRectF box =
        QRectF(rect()).adjusted(kHaloWidth + 1, kHaloWidth + 1, -kHaloWidth - 1, -kHaloWidth - 1);
    QColor halo = theme_.active();
    halo.setAlphaF(0.24F);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(halo, kHaloWidth));
    const double out = kHaloWidth / 2.0;
    painter.drawRoundedRect(box.adjusted(-out, -out, out, out), radius + out, radius + out);
    painter.setPen(QPen(theme_.foreground(), 1));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
  }

 private:
  Theme& theme_;
};

// Moves the halo: to fields always, to other controls when the focus came by the keyboard.
class FocusWatcher final : public QObject {
 public:
  FocusWatcher(Theme& theme, QObject* parent) : QObject(parent), theme_(theme) {
    // Qt hides the frame when the style changes under it.
    QObject::connect(&theme, &Theme::changed, this, [this] {
      if (!halo_ || halo_->widget() == nullptr) return;
      halo_->setVisible(halo_->widget()->isVisible());
      halo_->raise();
      halo_->update();
    });
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) {
      auto* widget = qobject_cast<QWidget*>(object);
      const auto reason = static_cast<QFocusEvent*>(event)->reason();
      const bool byKeyboard = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                              reason == Qt::ShortcutFocusReason;
      if (widget != nullptr)
        show(byKeyboard || qobject_cast<QLineEdit*>(widget) != nullptr ? widget : nullptr);
    } else if (event->type() == QEvent::FocusOut && halo_ && halo_->widget() == object) {
      show(nullptr);
    }
    return QObject::eventFilter(object, event);
  }

 private:
  void show(QWidget* widget) {
    if (widget != nullptr && (widget->isWindow() || widget->property("noFocusHalo").toBool()))
      widget = nullptr;
    // The halo belongs to the window that it was shown in last, and ends with it.
    if (!halo_) {
      if (widget == nullptr) return;
      halo_ = new FocusHalo(theme_);
    }
    halo_->setWidget(widget);
    halo_->setVisible(widget != nullptr);
  }

  Theme& theme_;
  QPointer<FocusHalo> halo_;
};

}  // namespace

QColor qtColor(Color color, double opacity) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(opacity));
}

Theme::Theme(QObject* parent) : QObject(parent) {}

void Theme::setPalette(const ThemePalette& palette) {
  palette_ = palette;
  QPalette roles;
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    const QColor text = group == QPalette::Disabled ? mutedForeground() : foreground();
    roles.setColor(group, QPalette::Window, card());
    roles.setColor(group, QPalette::Base, card());
    roles.setColor(group, QPalette::AlternateBase, muted());
    roles.setColor(group, QPalette::Button, card());
    roles.setColor(group, QPalette::WindowText, text);
    roles.setColor(group, QPalette::Text, text);
    roles.setColor(group, QPalette::ButtonText, text);
    roles.setColor(group, QPalette::BrightText, text);
    roles.setColor(group, QPalette::PlaceholderText, secondaryOnCard());
    roles.setColor(group, QPalette::Highlight, fill());
    roles.setColor(group, QPalette::HighlightedText, fillText());
    roles.setColor(group, QPalette::ToolTipBase, card());
    roles.setColor(group, QPalette::ToolTipText, foreground());
    roles.setColor(group, QPalette::Link, text);
    roles.setColor(group, QPalette::LinkVisited, text);
    roles.setColor(group, QPalette::Light, card());
    roles.setColor(group, QPalette::Midlight, muted());
    roles.setColor(group, QPalette::Mid, border());
    roles.setColor(group, QPalette::Dark, border());
    roles.setColor(group, QPalette::Shadow, border());
  }
  QApplication::setPalette(roles);
  if (auto* application = qobject_cast<QApplication*>(QCoreApplication::instance())) {
    application->setStyleSheet(qtText(styleSheetText(palette)));
  }
  Q_EMIT changed();
}

QColor Theme::overCard(const QColor& color, double opacity) const {
  return qtColor(blended({color.redF(), color.greenF(), color.blueF()}, opacity, palette_.card));
}

QColor Theme::shadow(int elevation) const {
  if (isDark()) return QColor::fromRgbF(0, 0, 0, elevation >= 3 ? 0.65F : 0.55F);
  return qtColor(palette_.foreground, elevation >= 3 ? 0.16 : 0.10);
}

QColor Theme::scrim() const {
  return isDark() ? qtColor(palette_.background, 0.64) : qtColor(palette_.foreground, 0.24);
}

void installBaseStyle(Theme& theme) {
  installAccessibility();
  QApplication::setStyle(new BaseStyle(theme));
  QApplication::setFont(fontOf(TextStyle::body));
  auto* watcher = new FocusWatcher(theme, &theme);
  QCoreApplication::instance()->installEventFilter(watcher);
}

void paintBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& border) {
  painter.setPen(border.isValid() ? QPen(border, 1) : QPen(Qt::NoPen));
  painter.setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
  const double inset = border.isValid() ? 0.5 : 0;
  painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

QRect comboBoxWords(const QRect& box) { return box.adjusted(9, 0, -26, 0); }

void paintComboBox(QPainter& painter, const QRect& box, const Theme& theme, bool isEnabled, bool isHovered) {
  paintBox(painter, box, 6, isHovered && isEnabled ? theme.muted() : theme.card(), theme.border());
  paintIcon(painter, Icon::chevronDown, QRectF(box.right() + 1 - 22, box.top(), 14, box.height()), 14,
            theme.mutedForeground());
}

namespace {

struct ShadowShape {
  int offset;
  int blur;
};
ShadowShape shadowShape(int elevation) { return elevation >= 3 ? ShadowShape{16, 48} : ShadowShape{8, 24}; }

// The shadow of the smallest box that has all four corners whole. The blur is the sum of many faint
// rounded boxes, which falls off like one and needs no filter.
QPixmap shadowPatch(const QColor& color, int elevation, int radius, qreal ratio) {
  const auto [offset, blur] = shadowShape(elevation);
  const int reach = shadowReach(elevation);
  const int side = 2 * (reach + blur + radius);
  QPixmap patch(static_cast<int>(side * ratio), static_cast<int>(side * ratio));
  patch.setDevicePixelRatio(ratio);
  patch.fill(Qt::transparent);
  QPainter painter(&patch);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const int steps = blur;
  double coveredBefore = 0;
  for (int i = 0; i < steps; ++i) {
    const double spread = blur / 2.0 - blur * (i + 0.5) / steps;
    const double t = (i + 1.0) / steps;
    const double covered = color.alphaF() * t * t * (3 - 2 * t);
    const double layer = (covered - coveredBefore) / std::max(1e-6, 1 - coveredBefore);
    coveredBefore = covered;
    QColor faint = color;
    faint.setAlphaF(static_cast<float>(layer));
    painter.setBrush(faint);
    const QRectF box = QRectF(reach, reach, side - 2 * reach, side - 2 * reach)
                           .adjusted(-spread, -spread + offset, spread, spread + offset);
    const double round = std::max(0.0, radius + spread);
    painter.drawRoundedRect(box, round, round);
  }
  return patch;
}

}  // namespace

int shadowReach(int elevation) {
  const auto [offset, blur] = shadowShape(elevation);
  return blur / 2 + offset;
}

void paintShadow(QPainter& painter, const QRectF& box, const Theme& theme, int elevation, double radius) {
  const qreal ratio = painter.device()->devicePixelRatioF();
  const QColor color = theme.shadow(elevation);
  const QString key = QStringLiteral("ostrelon-shadow-%1-%2-%3-%4")
                          .arg(elevation)
                          .arg(radius)
                          .arg(color.name(QColor::HexArgb))
                          .arg(ratio);
  QPixmap patch;
  if (!QPixmapCache::find(key, &patch)) {
    patch = shadowPatch(color, elevation, static_cast<int>(radius), ratio);
    QPixmapCache::insert(key, patch);
  }
  const double reach = shadowReach(elevation);
  const double side = patch.width() / ratio;
  const QRectF target = box.adjusted(-reach, -reach, reach, reach);
  const double corner = std::min({side / 2 - 1, target.width() / 2, target.height() / 2});
  const double from[] = {0, corner, side - corner, side};
  const double toX[] = {target.left(), target.left() + corner, target.right() - corner, target.right()};
  const double toY[] = {target.top(), target.top() + corner, target.bottom() - corner, target.bottom()};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      const QRectF destination(QPointF(toX[column], toY[row]), QPointF(toX[column + 1], toY[row + 1]));
      if (destination.isEmpty()) continue;
      const QRectF source(QPointF(from[column], from[row]) * ratio,
                          QPointF(from[column + 1], from[row + 1]) * ratio);
      painter.drawPixmap(destination, patch, source);
    }
  }
}

int animationMilliseconds(int milliseconds) {
  return QApplication::isEffectEnabled(Qt::UI_General) ? milliseconds : 0;
}

}  // namespace ostrelon
