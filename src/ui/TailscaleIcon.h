// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QWidget>

namespace brevane {

/// The icon of the installed Tailscale application, or one of our own if it is not installed.
class TailscaleIcon : public QWidget {
    Q_OBJECT
public:
    explicit TailscaleIcon(int size, QWidget* parent = nullptr);

    /// The installed application's icon; null if there is none.
    [[nodiscard]] static QIcon installed();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFallback(QPainter& painter) const;

    QIcon icon_;
};

} // namespace brevane
