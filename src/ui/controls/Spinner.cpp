// SPDX-License-Identifier: MIT
#include "Spinner.h"

#include "Accessibility.h"

#include <QPainter>
#include <QTimerEvent>

namespace brevane {

namespace {

constexpr int steps = 8;
constexpr int intervalMs = 100;

} // namespace

Spinner::Spinner(int side, ColorRole color, QWidget* parent) : QWidget(parent), color_(color) {
    setFixedSize(side, side);
    setAccessibleRole(*this, QAccessible::Animation);
    setAccessibleName(QStringLiteral("Busy"));
    connect(&theme(), &Theme::changed, this, &Spinner::turnOrStand);
}

void Spinner::turnOrStand() {
    if (isVisible() && theme().isAnimated())
        timer_.start(intervalMs, this);
    else
        timer_.stop();
}

void Spinner::showEvent(QShowEvent*) {
    turnOrStand();
}

void Spinner::hideEvent(QHideEvent*) {
    timer_.stop();
}

void Spinner::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) return QWidget::timerEvent(event);
    step_ = (step_ + 1) % steps;
    update();
}

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme().color(color_));
    painter.translate(QRectF(rect()).center());
    const double length = height() * 0.3;
    const double width = height() * 0.13;
    for (int spoke = 0; spoke < steps; ++spoke) {
        painter.setOpacity(1 - 0.11 * ((steps + step_ - spoke) % steps));
        painter.drawRoundedRect(QRectF(-width / 2, -height() / 2.0, width, length), width / 2,
                                width / 2);
        painter.rotate(360.0 / steps);
    }
}

} // namespace brevane
