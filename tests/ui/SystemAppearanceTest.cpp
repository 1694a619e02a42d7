// SPDX-License-Identifier: MIT
#include "SystemAppearance.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QtGlobal>

// Where Qt itself knows the desktop's scheme there is nothing of ours to test.
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>
#include <QTest>

#include <functional>

namespace brevane::test {

/// The desktop portal's settings, as far as the window asks for them.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    uint scheme = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString& group, const QString& key) {
        asked = group + ' ' + key;
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme)));
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

public:
    QString asked;
};

/// A session bus of its own with a portal on it.
class SystemAppearanceTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        daemon = new QProcess;
        daemon->start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon->waitForReadyRead());
        qputenv("DBUS_SESSION_BUS_ADDRESS", daemon->readLine().trimmed());
    }
    static void TearDownTestSuite() {
        daemon->kill();
        daemon->waitForFinished();
        delete daemon;
    }

    void servePortal() {
        auto bus = QDBusConnection::connectToBus(qgetenv("DBUS_SESSION_BUS_ADDRESS"), "portal");
        ASSERT_TRUE(bus.registerObject("/org/freedesktop/portal/desktop", &portal,
                                       QDBusConnection::ExportAllSlots |
                                           QDBusConnection::ExportAllSignals));
        ASSERT_TRUE(bus.registerService("org.freedesktop.portal.Desktop"));
    }
    void TearDown() override { QDBusConnection::disconnectFromBus("portal"); }

    static bool until(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 30'000);
    }

    void change(uint scheme) {
        Q_EMIT portal.SettingChanged("org.freedesktop.appearance", "color-scheme",
                                     QDBusVariant(QVariant(scheme)));
    }

    static inline QProcess* daemon = nullptr;
    Portal portal;
};

TEST_F(SystemAppearanceTest, FollowsThePortalAlsoWhileRunning) {
    portal.scheme = 1;
    servePortal();
    SystemAppearance appearance;
    int changes = 0;
    QObject::connect(&appearance, &SystemAppearance::changed, [&] { ++changes; });
    ASSERT_TRUE(until([&] { return appearance.isDark(); }));
    EXPECT_EQ(portal.asked, "org.freedesktop.appearance color-scheme");
    change(2);
    ASSERT_TRUE(until([&] { return !appearance.isDark(); }));
    change(1);
    ASSERT_TRUE(until([&] { return appearance.isDark(); }));
    const int before = changes;
    change(1);
    change(2);
    ASSERT_TRUE(until([&] { return !appearance.isDark(); }));
    EXPECT_EQ(changes, before + 1);
}

TEST_F(SystemAppearanceTest, ItIsLightWhereThereIsNoPortal) {
    const SystemAppearance appearance;
    EXPECT_FALSE(appearance.isDark());
}

} // namespace brevane::test

#include "SystemAppearanceTest.moc"

#endif
