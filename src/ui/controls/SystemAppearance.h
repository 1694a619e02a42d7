// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <future>

class QDBusVariant;

namespace brevane {

/// Whether the user's desktop is light or dark, following changes. From Qt 6.5 on it asks Qt,
/// otherwise the desktop portal (org.freedesktop.portal.Settings, "color-scheme"), and without an
/// answer goes by the palette. Created before the application sets its own palette.
class SystemAppearance : public QObject {
    Q_OBJECT
public:
    explicit SystemAppearance(QObject* parent = nullptr);

    [[nodiscard]] bool isDark() const { return dark_; }

    /// Blocks until the portal's first reply, but at most 50 ms once the session bus is connected.
    /// A later reply emits `changed`.
    void awaitFirstAnswer();

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void setDark(bool isDark);
    void askPortal();
    void startPortal();

    bool dark_ = false;
    std::future<void> asking_;
};

} // namespace brevane
