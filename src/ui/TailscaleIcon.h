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

    /// Looks for the installed application's icon; null if there is none.
    [[nodiscard]] static QIcon installed();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFallback(QPainter& painter) const;

    QIcon icon_;
};

} // namespace brevane
