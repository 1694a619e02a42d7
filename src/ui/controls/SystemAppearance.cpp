// SPDX-License-Identifier: MIT
#include "SystemAppearance.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>
#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusVariant>
#endif

namespace brevane {

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)

SystemAppearance::SystemAppearance(QObject* parent) : QObject(parent) {
    const auto* hints = QGuiApplication::styleHints();
    dark_ = hints->colorScheme() == Qt::ColorScheme::Dark;
    connect(hints, &QStyleHints::colorSchemeChanged, this,
            [this](Qt::ColorScheme scheme) { setDark(scheme == Qt::ColorScheme::Dark); });
}

void SystemAppearance::awaitFirstAnswer() {}
void SystemAppearance::portalSettingChanged(const QString&, const QString&, const QDBusVariant&) {}

#else

namespace {

constexpr auto portal = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto settings = "org.freedesktop.portal.Settings";
constexpr auto appearanceGroup = "org.freedesktop.appearance";
constexpr auto schemeKey = "color-scheme";
// A running portal replies within a few milliseconds; waiting for that keeps the first frame from
// flashing in the wrong scheme.
constexpr int firstAnswerWithinMs = 50;

QDBusMessage readScheme(bool mayStartPortal) {
    auto read = QDBusMessage::createMethodCall(portal, portalPath, settings, "Read");
    read << appearanceGroup << schemeKey;
    read.setAutoStartService(mayStartPortal);
    return read;
}

} // namespace

SystemAppearance::SystemAppearance(QObject* parent) : QObject(parent) {
    const QPalette palette = QGuiApplication::palette();
    dark_ = palette.color(QPalette::Window).lightness() <
            palette.color(QPalette::WindowText).lightness();
    // Connecting to the bus takes a while; the window is created meanwhile.
    asking_ = std::async(std::launch::async, [this] { askPortal(); });
}

void SystemAppearance::awaitFirstAnswer() {
    asking_.wait();
    QCoreApplication::sendPostedEvents(this);
}

// Runs on its own thread.
void SystemAppearance::askPortal() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    // Connecting fails if the type is not registered.
    qRegisterMetaType<QDBusVariant>();
    bus.connect(portal, portalPath, settings, "SettingChanged", this,
                SLOT(portalSettingChanged(QString, QString, QDBusVariant)));

    const QDBusReply<QDBusVariant> answer =
        bus.call(readScheme(false), QDBus::Block, firstAnswerWithinMs);
    QMetaObject::invokeMethod(this, [this, answer] {
        if (answer.isValid())
            portalSettingChanged(appearanceGroup, schemeKey, answer.value());
        else
            startPortal();
    });
}

void SystemAppearance::startPortal() {
    auto* watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(readScheme(true)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        watcher->deleteLater();
        if (reply.isValid()) portalSettingChanged(appearanceGroup, schemeKey, reply.value());
    });
}

void SystemAppearance::portalSettingChanged(const QString& group, const QString& key,
                                            const QDBusVariant& value) {
    if (group != QLatin1String(appearanceGroup) || key != QLatin1String(schemeKey)) return;
    // "Read" wraps its reply in two variants, the signal in one.
    QVariant scheme = value.variant();
    if (scheme.canConvert<QDBusVariant>()) scheme = scheme.value<QDBusVariant>().variant();
    enum { noPreference, preferDark };
    if (scheme.toUInt() != noPreference) setDark(scheme.toUInt() == preferDark);
}

#endif

void SystemAppearance::setDark(bool isDark) {
    if (dark_ == isDark) return;
    dark_ = isDark;
    Q_EMIT changed();
}

} // namespace brevane
