// SPDX-License-Identifier: MIT
#pragma once

#include <QBasicTimer>
#include <QWidget>

class QPainter;
class QRectF;

namespace brevane {

/// An indeterminate progress indicator. Turns only while it is visible.
class Spinner : public QWidget {
    Q_OBJECT
public:
    explicit Spinner(int side, QWidget* parent = nullptr);

    /// The indicator turned by `step` eighths.
    static void draw(QPainter& painter, const QRectF& box, int step, const QColor& color);

    static constexpr int steps = 8;
    static constexpr int intervalMs = 100;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBasicTimer timer;
    int step = 0;
};

} // namespace brevane
