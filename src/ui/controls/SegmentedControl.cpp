// SPDX-License-Identifier: MIT
#include "SegmentedControl.h"

#include "Painting.h"
#include "SegmentButton.h"
#include "Theme.h"

#include <QEasingCurve>
#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace brevane {

namespace {

constexpr int inset = 2;

} // namespace

SegmentedControl::SegmentedControl(const QStringList& labels, QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(inset, inset, inset, inset);
    layout->setSpacing(0);
    for (int index = 0; index < labels.size(); ++index) {
        auto* button = new SegmentButton(labels[index], this);
        button->setFocusPolicy(Qt::NoFocus);
        buttons.addButton(button, index);
        layout->addWidget(button, 1);
    }
    slide.setEasingCurve(QEasingCurve::OutCubic);
    slide.setStartValue(0.0);
    slide.setEndValue(0.0);
    connect(&slide, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&buttons, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        // The whole control is one stop of the keyboard; arrows go on from there.
        buttons.button(index)->setFocusPolicy(checked ? Qt::TabFocus : Qt::NoFocus);
        if (!checked) return;
        slideTo(index);
        Q_EMIT currentIndexChanged(index);
    });
    buttons.button(0)->setChecked(true);
}

void SegmentedControl::setCurrentIndex(int index) {
    buttons.button(index)->setChecked(true);
}

void SegmentedControl::slideTo(int index) {
    slide.stop();
    slide.setStartValue(slide.currentValue());
    slide.setEndValue(static_cast<double>(index));
    slide.setDuration(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this));
    if (isVisible() && slide.duration() > 0) {
        slide.start();
    } else {
        slide.setStartValue(static_cast<double>(index));
        slide.setCurrentTime(slide.duration());
    }
}

QSize SegmentedControl::sizeHint() const {
    constexpr int height = 28;
    return {200, std::max(theme().scaled(height), QWidget::sizeHint().height())};
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Colors& c = theme().colors();
    drawRoundedBox(painter, rect(), Theme::cornerRadius + 1, c.track);
    const auto count = static_cast<double>(buttons.buttons().size());
    const double segmentWidth = (width() - 2.0 * inset) / count;
    double position = slide.currentValue().toDouble();
    if (layoutDirection() == Qt::RightToLeft) position = count - 1 - position;
    drawRoundedBox(
        painter,
        QRectF(inset + position * segmentWidth, inset, segmentWidth, height() - 2.0 * inset),
        Theme::cornerRadius - 1, c.segment, c.line);
}

} // namespace brevane
