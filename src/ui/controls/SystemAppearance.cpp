// SPDX-License-Identifier: MIT
#include "SystemAppearance.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>
#include <QtGlobal>

#ifndef __APPLE__
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#endif

namespace brevane {

namespace {

bool isPaletteDark() {
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

} // namespace

#ifdef __APPLE__

SystemAppearance::SystemAppearance(QObject* parent)
    : QObject(parent), look_{.isDark = isPaletteDark()} {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    const auto* hints = QGuiApplication::styleHints();
    look_.isDark = hints->colorScheme() == Qt::ColorScheme::Dark;
    connect(hints, &QStyleHints::colorSchemeChanged, this, [this](Qt::ColorScheme scheme) {
        setLook({.isDark = scheme == Qt::ColorScheme::Dark});
    });
#endif
}

SystemAppearance::~SystemAppearance() = default;

void SystemAppearance::awaitFirstAnswer() {}

#else

namespace {

constexpr auto portal = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto portalSettings = "org.freedesktop.portal.Settings";
constexpr auto appearance = "org.freedesktop.appearance";
constexpr auto gnome = "org.gnome.desktop.interface";
constexpr auto gnomeAccessibility = "org.gnome.desktop.a11y.interface";
constexpr auto kde = "org.kde.kdeglobals.General";
// A running portal replies within a few milliseconds; waiting for that keeps the first frame from
// flashing in the wrong scheme.
constexpr int firstAnswerWithinMs = 50;

// Three numbers from 0 to 1 (sRGB); others mean that there is none.
QColor accentColor(const QVariant& value) {
    double red = -1;
    double green = -1;
    double blue = -1;
    const auto parts = value.value<QDBusArgument>();
    if (parts.currentSignature() != QStringLiteral("(ddd)")) return {};
    parts.beginStructure();
    parts >> red >> green >> blue;
    parts.endStructure();
    const auto isPart = [](double part) { return part >= 0 && part <= 1; };
    if (!isPart(red) || !isPart(green) || !isPart(blue)) return {};
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue));
}

bool isDesktop(const QString& name) {
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':').contains(name);
}

// A description in Pango's format, such as "Cantarell Bold 11" with the size in points.
std::optional<QFont> gnomeFont(const QString& description, double textScale) {
    QStringList family = description.split(' ', Qt::SkipEmptyParts);
    const double points = family.isEmpty() ? 0 : family.takeLast().toDouble();
    if (!(points > 0) || !(textScale > 0)) return {};
    // Behind the family there may be words for its weight and style.
    while (!family.isEmpty() && !QFontDatabase::hasFamily(family.join(' ')))
        family.removeLast();
    QFont font = QGuiApplication::font();
    if (!family.isEmpty()) font.setFamilies({family.join(' ')});
    // On X11 Qt enlarges the whole window by the scale of text.
    font.setPointSizeF(QGuiApplication::platformName() == "xcb" ? points : points * textScale);
    return font;
}

QDBusMessage readSettings(bool mayStartPortal) {
    auto read = QDBusMessage::createMethodCall(portal, portalPath, portalSettings, "ReadAll");
    read << QStringList{appearance, gnome, gnomeAccessibility, kde};
    read.setAutoStartService(mayStartPortal);
    return read;
}

// The settings in a reply; nothing if it is an error.
std::optional<SystemAppearance::Settings> settingsIn(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "a{sa{sv}}") return {};
    SystemAppearance::Settings settings;
    const auto groups = reply.arguments().constFirst().value<QDBusArgument>();
    groups.beginMap();
    while (!groups.atEnd()) {
        QString name;
        QVariantMap group;
        groups.beginMapEntry();
        groups >> name >> group;
        groups.endMapEntry();
        // Where the portals of several desktops answer, the group is there several times; the first
        // is of the desktop that runs.
        group.insert(settings.value(name));
        settings.insert(name, group);
    }
    groups.endMap();
    return settings;
}

} // namespace

SystemAppearance::SystemAppearance(QObject* parent)
    : QObject(parent), initialLook_{.isDark = isPaletteDark()}, look_(initialLook_) {
    // Connecting to the bus takes a while; the window is created meanwhile. Not std::async: where
    // no thread can be started, libc++'s waits for ever.
    asking_ = std::thread([this] { askPortal(); });
}

SystemAppearance::~SystemAppearance() {
    if (asking_.joinable()) asking_.join();
}

void SystemAppearance::awaitFirstAnswer() {
    if (asking_.joinable()) asking_.join();
    QCoreApplication::sendPostedEvents(this);
}

// Runs on its own thread.
void SystemAppearance::askPortal() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    // Connecting fails if the type is not registered.
    qRegisterMetaType<QDBusVariant>();
    bus.connect(portal, portalPath, portalSettings, "SettingChanged", this,
                SLOT(portalSettingChanged(QString, QString, QDBusVariant)));

    const auto answer =
        settingsIn(bus.call(readSettings(false), QDBus::Block, firstAnswerWithinMs));
    QMetaObject::invokeMethod(this, [this, answer] {
        if (answer)
            take(*answer);
        else
            startPortal();
    });
}

void SystemAppearance::startPortal() {
    auto* watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(readSettings(true)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (const auto answer = settingsIn(watcher->reply())) take(*answer);
    });
}

void SystemAppearance::portalSettingChanged(const QString& group, const QString& key,
                                            const QDBusVariant& value) {
    take({{group, {{key, value.variant()}}}});
}

void SystemAppearance::take(const Settings& settings) {
    for (auto group = settings.begin(); group != settings.end(); ++group)
        settings_[group.key()].insert(group.value());
    setLook(lookAsked());
}

Look SystemAppearance::lookAsked() const {
    const auto read = [&](const char* group, const char* key, const QVariant& otherwise) {
        return settings_.value(group).value(key, otherwise);
    };
    Look look = initialLook_;
    enum { noPreference, preferDark, preferLight };
    const auto scheme = read(appearance, "color-scheme", noPreference).toUInt();
    if (scheme == preferDark || scheme == preferLight) look.isDark = scheme == preferDark;
    look.hasHighContrast = read(appearance, "contrast", 0).toUInt() == 1 ||
                           read(gnomeAccessibility, "high-contrast", false).toBool();
    look.accent = accentColor(read(appearance, "accent-color", {}));
    look.isAnimated = read(appearance, "reduced-motion", 0).toUInt() != 1 &&
                      read(gnome, "enable-animations", true).toBool();
    // Portals report GNOME's settings on other desktops too, where they are not the user's.
    if (isDesktop("GNOME")) {
        look.font = gnomeFont(read(gnome, "font-name", {}).toString(),
                              read(gnome, "text-scaling-factor", 1).toDouble());
    } else if (const QString description = read(kde, "font", {}).toString();
               !description.isEmpty()) {
        QFont font;
        if (font.fromString(description)) look.font = font;
    }
    return look;
}

#endif

void SystemAppearance::setLook(const Look& look) {
    if (look_ == look) return;
    look_ = look;
    Q_EMIT changed();
}

} // namespace brevane
