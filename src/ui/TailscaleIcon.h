// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QWidget>

namespace brevane {

/// The Tailscale application's icon, or where that application is not installed one of our own.
class TailscaleIcon : public QWidget {
    Q_OBJECT
public:
    explicit TailscaleIcon(int size, QWidget* parent = nullptr);

    /// The installed application's icon, looked up anew each time; null if there is none.
    [[nodiscard]] static QIcon installed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFallback(QPainter& painter) const;
};

} // namespace brevane
