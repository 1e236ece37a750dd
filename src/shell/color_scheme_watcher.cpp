#include "shell/color_scheme_watcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QPalette>

namespace ostrelon {
namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kGroup = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");

// The portal's numbers: 0 no preference, 1 dark, 2 light. Its reply wraps the number once or twice.
std::optional<ColorScheme> schemeOf(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  switch (value.toUInt()) {
    case 1:
      return ColorScheme::dark;
    case 2:
      return ColorScheme::light;
    default:
      return std::nullopt;
  }
}

}  // namespace

ColorSchemeWatcher::ColorSchemeWatcher(std::function<void(ColorScheme)> changed, QDBusConnection bus,
                                       QObject* parent)
    : QObject(parent),
      changed_(std::move(changed)),
      fallback_(QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5F ? ColorScheme::dark
                                                                                       : ColorScheme::light) {
  changed_(fallback_);
  if (!bus.isConnected()) return;
  // The connection below looks the type up by its name, which nothing has registered before.
  qRegisterMetaType<QDBusVariant>("QDBusVariant");
  bus.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  QDBusMessage ask = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
  ask << kGroup << kKey;
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(ask, 2000), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError()) {
      if (const auto scheme = schemeOf(reply.value().variant())) changed_(*scheme);
    }
    watcher->deleteLater();
  });
}

void ColorSchemeWatcher::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  if (group != kGroup || key != kKey) return;
  changed_(schemeOf(value.variant()).value_or(fallback_));
}

}  // namespace ostrelon
