// SPDX-License-Identifier: MIT
#include "SegmentButton.h"

#include "Painting.h"
#include "Theme.h"

#include <QPainter>

namespace brevane {

SegmentButton::SegmentButton(const QString& label, QWidget* parent) : Button(parent) {
    setText(label);
    setCheckable(true);
    setAutoExclusive(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFont(theme().font(TextStyle::body));
    connect(&theme(), &Theme::changed, this, [this] { setFont(theme().font(TextStyle::body)); });
}

QSize SegmentButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 16, fontMetrics().height() + 6};
}

void SegmentButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme().color(isChecked() ? &Colors::text : &Colors::secondary));
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (showsFocus()) drawFocusRing(painter, rect(), Theme::cornerRadius - 1);
}

} // namespace brevane
