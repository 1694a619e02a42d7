// SPDX-License-Identifier: MIT
#include "Spinner.h"

#include "Accessibility.h"
#include "Theme.h"

#include <QPainter>
#include <QTimerEvent>

namespace brevane {

Spinner::Spinner(int side, QWidget* parent) : QWidget(parent) {
    setFixedSize(side, side);
    setAccessibleRole(*this, QAccessible::Animation);
    setAccessibleName(tr("Busy"));
}

void Spinner::draw(QPainter& painter, const QRectF& box, int step, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.translate(box.center());
    const double length = box.height() * 0.3;
    const double width = box.height() * 0.13;
    for (int spoke = 0; spoke < steps; ++spoke) {
        painter.setOpacity(1 - 0.11 * ((steps + step - spoke) % steps));
        painter.drawRoundedRect(QRectF(-width / 2, -box.height() / 2, width, length), width / 2,
                                width / 2);
        painter.rotate(360.0 / steps);
    }
    painter.restore();
}

void Spinner::showEvent(QShowEvent*) {
    timer.start(intervalMs, this);
}

void Spinner::hideEvent(QHideEvent*) {
    timer.stop();
}

void Spinner::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer.timerId()) return QWidget::timerEvent(event);
    step = (step + 1) % steps;
    update();
}

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    draw(painter, rect(), step, theme().color(&Colors::secondary));
}

} // namespace brevane
