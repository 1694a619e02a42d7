// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <future>

class QDBusVariant;

namespace brevane {

/// Whether the user's desktop is light or dark, also when that changes. Asks Qt where it knows
/// (6.5 and later), else the desktop portal (org.freedesktop.portal.Settings, "color-scheme"),
/// else goes by the palette. Made before the application sets a palette of its own.
class SystemAppearance : public QObject {
    Q_OBJECT
public:
    explicit SystemAppearance(QObject* parent = nullptr);

    [[nodiscard]] bool isDark() const { return dark_; }

    /// Waits for the portal's first answer, which otherwise comes with the events: at most a
    /// twentieth of a second from when the session bus is there.
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
