// SPDX-License-Identifier: MIT
#include "SegmentedControl.h"

#include "Painting.h"
#include "Theme.h"

#include <QEasingCurve>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QStyle>

#include <algorithm>

namespace brevane {

namespace {

constexpr int inset = 2;

} // namespace

/// One choice. The control draws the background that slides under the choices.
class SegmentedControl::Segment : public QPushButton {
public:
    explicit Segment(const QString& label, QWidget* parent) : QPushButton(label, parent) {
        setCheckable(true);
        setAutoExclusive(true);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        setFont(theme().font(TextStyle::body));
        connect(&theme(), &Theme::changed, this,
                [this] { setFont(theme().font(TextStyle::body)); });
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 16, fontMetrics().height() + 6};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(theme().color(isChecked() ? &Colors::text : &Colors::secondary));
        painter.drawText(rect(), Qt::AlignCenter, text());
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            drawFocusRing(painter, rect(), Theme::cornerRadius - 1);
    }
};

SegmentedControl::SegmentedControl(const QStringList& labels, QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(inset, inset, inset, inset);
    layout->setSpacing(0);
    for (int index = 0; index < labels.size(); ++index) {
        auto* segment = new Segment(labels[index], this);
        segment->setFocusPolicy(Qt::NoFocus);
        segments_.addButton(segment, index);
        layout->addWidget(segment, 1);
    }
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    slide_.setStartValue(0.0);
    slide_.setEndValue(0.0);
    connect(&slide_, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&segments_, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        // The whole control is one tab stop; arrow keys move within it.
        segments_.button(index)->setFocusPolicy(checked ? Qt::TabFocus : Qt::NoFocus);
        if (!checked) return;
        slideTo(index);
        Q_EMIT currentIndexChanged(index);
    });
    segments_.button(0)->setChecked(true);
}

void SegmentedControl::setCurrentIndex(int index) {
    segments_.button(index)->setChecked(true);
}

void SegmentedControl::slideTo(int index) {
    slide_.stop();
    slide_.setStartValue(slide_.currentValue());
    slide_.setEndValue(static_cast<double>(index));
    slide_.setDuration(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this));
    if (isVisible() && slide_.duration() > 0) {
        slide_.start();
    } else {
        slide_.setStartValue(static_cast<double>(index));
        slide_.setCurrentTime(slide_.duration());
    }
}

QSize SegmentedControl::sizeHint() const {
    QSize segment;
    for (const auto* button : segments_.buttons())
        segment = segment.expandedTo(button->sizeHint());
    const auto count = static_cast<int>(segments_.buttons().size());
    return {std::max(200, count * segment.width() + 2 * inset),
            std::max(theme().scaled(28), segment.height() + 2 * inset)};
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Colors& c = theme().colors();
    drawRoundedBox(painter, rect(), Theme::cornerRadius + 1, c.track);
    const auto count = static_cast<double>(segments_.buttons().size());
    const double segmentWidth = (width() - 2.0 * inset) / count;
    double position = slide_.currentValue().toDouble();
    if (layoutDirection() == Qt::RightToLeft) position = count - 1 - position;
    drawRoundedBox(
        painter,
        QRectF(inset + position * segmentWidth, inset, segmentWidth, height() - 2.0 * inset),
        Theme::cornerRadius - 1, c.segment, c.line);
}

} // namespace brevane
