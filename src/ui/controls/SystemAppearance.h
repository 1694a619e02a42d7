// SPDX-License-Identifier: MIT
#pragma once

#include "Look.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

#include <thread>

class QDBusVariant;

namespace brevane {

/// How the user's desktop wants windows to look, following changes. On macOS it asks Qt (6.5 and
/// later), elsewhere the desktop portal (org.freedesktop.portal.Settings); without an answer it
/// goes by the palette. Created before the application sets its own palette.
class SystemAppearance : public QObject {
    Q_OBJECT
public:
    explicit SystemAppearance(QObject* parent = nullptr);
    ~SystemAppearance() override;

    [[nodiscard]] const Look& look() const { return look_; }

    /// Blocks until the portal's first reply, but at most 50 ms once the session bus is connected.
    /// A later reply emits `changed`.
    void awaitFirstAnswer();

    using Settings = QMap<QString, QVariantMap>; ///< the portal's, by group and key

Q_SIGNALS:
    void changed();

#ifndef __APPLE__
private Q_SLOTS:
    void portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void askPortal();
    void startPortal();
    void take(const Settings& settings);
    [[nodiscard]] Look lookAsked() const;

    std::thread asking_;
    Settings settings_;      ///< as the portal last reported them
    const Look initialLook_; ///< as the platform's theme was at the start
#endif

private:
    void setLook(const Look& look);

    Look look_;
};

} // namespace brevane
