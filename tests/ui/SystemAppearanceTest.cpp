// SPDX-License-Identifier: MIT
#include "SystemAppearance.h"

#include <gtest/gtest.h>

#ifndef __APPLE__ // there is no portal

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QProcess>
#include <QTest>

#include <functional>

namespace brevane::test {
namespace {

struct AccentColor {
    double red = 0, green = 0, blue = 0;
};
static QDBusArgument& operator<<(QDBusArgument& argument, const AccentColor& color) {
    argument.beginStructure();
    argument << color.red << color.green << color.blue;
    argument.endStructure();
    return argument;
}
static const QDBusArgument& operator>>(const QDBusArgument& argument, AccentColor& color) {
    argument.beginStructure();
    argument >> color.red >> color.green >> color.blue;
    argument.endStructure();
    return argument;
}

constexpr auto appearanceGroup = "org.freedesktop.appearance";
constexpr auto gnomeGroup = "org.gnome.desktop.interface";
constexpr auto gnomeAccessibilityGroup = "org.gnome.desktop.a11y.interface";
constexpr auto kdeGroup = "org.kde.kdeglobals.General";

/// The desktop portal's settings.
class Portal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    QMap<QString, QVariantMap> settings;
    QMap<QString, QVariantMap> settingsOfAnotherDesktop; // behind the others, with the same keys
    QStringList asked;

public Q_SLOTS:
    void ReadAll(const QStringList& groups) {
        asked = groups;
        setDelayedReply(true);
        QDBusArgument answer;
        answer.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QVariantMap>());
        for (const auto& part : {settings, settingsOfAnotherDesktop}) {
            for (auto group = part.begin(); group != part.end(); ++group) {
                answer.beginMapEntry();
                answer << group.key() << group.value();
                answer.endMapEntry();
            }
        }
        answer.endMap();
        connection().send(message().createReply(QVariant::fromValue(answer)));
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

/// A session bus of its own with a portal on it.
class SystemAppearanceTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        qDBusRegisterMetaType<AccentColor>();
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
    void TearDown() override {
        QDBusConnection::disconnectFromBus("portal");
        qunsetenv("XDG_CURRENT_DESKTOP");
    }

    static bool until(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 30'000);
    }

    void change(const char* group, const char* key, const QVariant& value) {
        Q_EMIT portal.SettingChanged(group, key, QDBusVariant(value));
    }
    void changeScheme(uint scheme) { change(appearanceGroup, "color-scheme", scheme); }

    static inline QProcess* daemon = nullptr;
    Portal portal;
};

TEST_F(SystemAppearanceTest, FollowsThePortalAlsoWhileRunning) {
    portal.settings = {{appearanceGroup, {{"color-scheme", 1U}}}};
    servePortal();
    SystemAppearance appearance;
    int changes = 0;
    QObject::connect(&appearance, &SystemAppearance::changed, [&] { ++changes; });
    ASSERT_TRUE(until([&] { return appearance.look().isDark; }));
    EXPECT_EQ(portal.asked,
              (QStringList{appearanceGroup, gnomeGroup, gnomeAccessibilityGroup, kdeGroup}));
    changeScheme(2);
    ASSERT_TRUE(until([&] { return !appearance.look().isDark; }));
    changeScheme(1);
    ASSERT_TRUE(until([&] { return appearance.look().isDark; }));
    const int before = changes;
    changeScheme(1);
    changeScheme(2);
    ASSERT_TRUE(until([&] { return !appearance.look().isDark; }));
    EXPECT_EQ(changes, before + 1);
    changeScheme(1);
    ASSERT_TRUE(until([&] { return appearance.look().isDark; }));
    // GNOME has no preference for light: switching dark off withdraws it.
    changeScheme(0);
    ASSERT_TRUE(until([&] { return !appearance.look().isDark; }));
}

TEST_F(SystemAppearanceTest, FollowsTheFirstOfThePortalsThatAnswer) {
    portal.settings = {{appearanceGroup, {{"color-scheme", 1U}}}};
    portal.settingsOfAnotherDesktop = {{appearanceGroup, {{"color-scheme", 0U}, {"contrast", 1U}}}};
    servePortal();
    const SystemAppearance appearance;
    ASSERT_TRUE(until([&] { return appearance.look().hasHighContrast; }));
    EXPECT_TRUE(appearance.look().isDark);
}

TEST_F(SystemAppearanceTest, FollowsContrastAndAnimationsToo) {
    portal.settings = {{appearanceGroup, {{"contrast", 1U}}},
                       {gnomeGroup, {{"enable-animations", false}, {"font-name", "Inter 11"}}}};
    servePortal();
    const SystemAppearance appearance;
    ASSERT_TRUE(until([&] { return appearance.look().hasHighContrast; }));
    EXPECT_FALSE(appearance.look().isAnimated);
    EXPECT_FALSE(appearance.look().isDark);
    change(gnomeGroup, "enable-animations", true);
    ASSERT_TRUE(until([&] { return appearance.look().isAnimated; }));
    EXPECT_TRUE(appearance.look().hasHighContrast);
    change(appearanceGroup, "contrast", 0U);
    ASSERT_TRUE(until([&] { return !appearance.look().hasHighContrast; }));
}

TEST_F(SystemAppearanceTest, FollowsTheAccentColour) {
    const auto accent = [](double red, double green, double blue) {
        return QVariant::fromValue(AccentColor{red, green, blue});
    };
    portal.settings = {{appearanceGroup, {{"accent-color", accent(0.2, 0.6, 0)}}}};
    servePortal();
    const SystemAppearance appearance;
    ASSERT_TRUE(until([&] { return appearance.look().accent == QColor::fromRgb(51, 153, 0); }));
    change(appearanceGroup, "accent-color", accent(1, 0, 0));
    ASSERT_TRUE(until([&] { return appearance.look().accent == QColor(Qt::red); }));
    changeScheme(1);
    ASSERT_TRUE(until([&] { return appearance.look().isDark; }));
    EXPECT_EQ(appearance.look().accent, QColor(Qt::red));
    change(appearanceGroup, "accent-color", accent(-1, -1, -1));
    ASSERT_TRUE(until([&] { return !appearance.look().accent.isValid(); }));
    change(appearanceGroup, "accent-color", accent(1, 0, 0));
    ASSERT_TRUE(until([&] { return appearance.look().accent.isValid(); }));
    change(appearanceGroup, "accent-color", "red");
    ASSERT_TRUE(until([&] { return !appearance.look().accent.isValid(); }));
}

TEST_F(SystemAppearanceTest, FollowsTheHighContrastOfOldReleasesOfGNOME) {
    portal.settings = {{gnomeAccessibilityGroup, {{"high-contrast", true}}}};
    servePortal();
    const SystemAppearance appearance;
    ASSERT_TRUE(until([&] { return appearance.look().hasHighContrast; }));
    change(gnomeAccessibilityGroup, "high-contrast", false);
    ASSERT_TRUE(until([&] { return !appearance.look().hasHighContrast; }));
    change(appearanceGroup, "contrast", 1U);
    ASSERT_TRUE(until([&] { return appearance.look().hasHighContrast; }));
}

TEST_F(SystemAppearanceTest, FollowsTheWishForLessMotion) {
    portal.settings = {{gnomeGroup, {{"enable-animations", true}}},
                       {appearanceGroup, {{"reduced-motion", 1U}}}};
    servePortal();
    const SystemAppearance appearance;
    ASSERT_TRUE(until([&] { return !appearance.look().isAnimated; }));
    change(appearanceGroup, "reduced-motion", 0U);
    ASSERT_TRUE(until([&] { return appearance.look().isAnimated; }));
}

TEST_F(SystemAppearanceTest, FollowsTheFontAndTextScaleOfGNOME) {
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    portal.settings = {
        {gnomeGroup,
         {{"font-name", "DejaVu Sans Medium Oblique 12"}, {"text-scaling-factor", 1.5}}}};
    servePortal();
    const SystemAppearance appearance;
    const auto isFont = [&](const QStringList& families, double points) {
        const auto& font = appearance.look().font;
        return font && font->families() == families && font->pointSizeF() == points;
    };
    ASSERT_TRUE(until([&] { return isFont({"DejaVu Sans"}, 18); }));
    change(gnomeGroup, "text-scaling-factor", 1.25);
    ASSERT_TRUE(until([&] { return isFont({"DejaVu Sans"}, 15); }));
    change(gnomeGroup, "font-name", "DejaVu Sans Mono 8");
    ASSERT_TRUE(until([&] { return isFont({"DejaVu Sans Mono"}, 10); }));
    change(gnomeGroup, "font-name", "Absent 16");
    ASSERT_TRUE(until([&] { return isFont(QGuiApplication::font().families(), 20); }));
    for (const char* wrong : {"", " ", "DejaVu Sans", "12 DejaVu Sans", "DejaVu Sans -12"}) {
        change(gnomeGroup, "font-name", wrong);
        ASSERT_TRUE(until([&] { return !appearance.look().font; })) << wrong;
        change(gnomeGroup, "font-name", "Inter 8");
        ASSERT_TRUE(until([&] { return appearance.look().font.has_value(); }));
    }
}

TEST_F(SystemAppearanceTest, LeavesTheFontOfOtherDesktopsToQt) {
    qputenv("XDG_CURRENT_DESKTOP", "XFCE");
    portal.settings = {{appearanceGroup, {{"color-scheme", 1U}}},
                       {gnomeGroup, {{"font-name", "DejaVu Sans 12"}}}};
    servePortal();
    const SystemAppearance appearance;
    ASSERT_TRUE(until([&] { return appearance.look().isDark; }));
    EXPECT_FALSE(appearance.look().font);
}

TEST_F(SystemAppearanceTest, FollowsTheFontOfKDE) {
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    portal.settings = {{gnomeGroup, {{"font-name", "DejaVu Sans 8"}}},
                       {kdeGroup, {{"font", "DejaVu Sans,14,-1,5,50,0,0,0,0,0"}}}};
    servePortal();
    const SystemAppearance appearance;
    const auto isSize = [&](double points) {
        const auto& font = appearance.look().font;
        return font && font->family() == "DejaVu Sans" && font->pointSizeF() == points;
    };
    ASSERT_TRUE(until([&] { return isSize(14); }));
    change(kdeGroup, "font", "DejaVu Sans,11,-1,5,50,0,0,0,0,0");
    ASSERT_TRUE(until([&] { return isSize(11); }));
    change(kdeGroup, "font", "");
    ASSERT_TRUE(until([&] { return !appearance.look().font; }));
}

TEST_F(SystemAppearanceTest, IsTheUsualOneWithoutAPortal) {
    const SystemAppearance appearance;
    EXPECT_EQ(appearance.look(), Look());
}

} // namespace
} // namespace brevane::test

#include "SystemAppearanceTest.moc"

#endif
