// Whether the desktop is light or dark, and when it changes: asked of the desktop portal over D-Bus.
#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <functional>
#include <optional>

#include "documents/app_settings.h"

namespace ostrelon {

class ColorSchemeWatcher final : public QObject {
  Q_OBJECT

 public:
  /// `changed` is called with what the desktop says now and each time it changes. Where there is no portal,
  /// the lightness of the palette that Qt came up with decides; it is read before the program sets its own
  /// colours.
  explicit ColorSchemeWatcher(std::function<void(ColorScheme)> changed,
                              QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

 private Q_SLOTS:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  std::function<void(ColorScheme)> changed_;
  ColorScheme fallback_;
};

}  // namespace ostrelon
