// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QBasicTimer>
#include <QWidget>

namespace brevane {

/// An indeterminate progress indicator. Turns only while it is visible, and not if the desktop
/// wants no animations.
class Spinner : public QWidget {
    Q_OBJECT
public:
    explicit Spinner(int side, ColorRole color = &Colors::secondary, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void turnOrStand();

    ColorRole color_;
    QBasicTimer timer_;
    int step_ = 0;
};

} // namespace brevane
