// The desktop's light or dark scheme, reported by a portal on a bus of the test's own.
#include "shell/color_scheme_watcher.h"

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTest>

#include "window_fixture.h"

namespace ostrelon {
namespace {

constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";

// Answers as the desktop's portal does.
class Portal final : public QDBusVirtualObject {
 public:
  uint scheme = 0;

  QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.interface() != kInterface || message.member() != "Read") return false;
    const QDBusVariant inner{QVariant(scheme)};
    return connection.send(
        message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)))));
  }
  void change(uint to, QDBusConnection& connection) {
    scheme = to;
    QDBusMessage told = QDBusMessage::createSignal(kPath, kInterface, "SettingChanged");
    told << "org.freedesktop.appearance"
         << "color-scheme" << QVariant::fromValue(QDBusVariant(QVariant(to)));
    connection.send(told);
  }
};

TEST(ColorSchemeWatcherTest, FollowsTheDesktopWhileTheProgramRuns) {
  QProcess daemon;
  daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
  if (!daemon.waitForStarted()) GTEST_SKIP() << "dbus-daemon is not installed";
  ASSERT_TRUE(daemon.waitForReadyRead()) << daemon.readAllStandardError().toStdString();
  const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
  {
    QDBusConnection desktop = QDBusConnection::connectToBus(address, "desktop");
    const QDBusConnection own = QDBusConnection::connectToBus(address, "own");
    ASSERT_TRUE(desktop.isConnected() && own.isConnected());
    Portal portal;
    portal.scheme = 1;
    ASSERT_TRUE(desktop.registerVirtualObject(kPath, &portal));
    ASSERT_TRUE(desktop.registerService("org.freedesktop.portal.Desktop"));

    std::vector<ColorScheme> told;
    const ColorSchemeWatcher watcher([&](ColorScheme scheme) { told.push_back(scheme); }, own);
    ASSERT_EQ(told, std::vector{ColorScheme::light}) << "until the portal answers, the palette decides";
    ASSERT_TRUE(QTest::qWaitFor([&] { return told.size() == 2; }));
    EXPECT_EQ(told.back(), ColorScheme::dark);
    portal.change(2, desktop);
    ASSERT_TRUE(QTest::qWaitFor([&] { return told.size() == 3; })) << told.size();
    EXPECT_EQ(told.back(), ColorScheme::light);
    portal.change(1, desktop);
    portal.change(0, desktop);
    ASSERT_TRUE(QTest::qWaitFor([&] { return told.size() == 5; }));
    EXPECT_EQ(told.back(), ColorScheme::light) << "no preference is the palette's again";
  }
  QDBusConnection::disconnectFromBus("desktop");
  QDBusConnection::disconnectFromBus("own");
  daemon.kill();
  daemon.waitForFinished();
}

}  // namespace
}  // namespace ostrelon
