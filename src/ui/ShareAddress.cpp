// SPDX-License-Identifier: MIT
#include "ShareAddress.h"

#include "Painting.h"

#include <QPainter>
#include <QStyle>

namespace brevane {

namespace {

constexpr int beforeTag = 6;
constexpr int tagPaddingX = 4;
constexpr int tagPaddingY = 2;
const auto publicTag = QStringLiteral("PUBLIC");

QSize tagSize() {
    const QFontMetrics metrics(theme().font(TextStyle::tag));
    return {metrics.horizontalAdvance(publicTag) + 2 * tagPaddingX,
            metrics.height() + 2 * tagPaddingY};
}

} // namespace

ShareAddress::ShareAddress(QWidget* parent)
    : Label(TextStyle::rowTitle, &Colors::text, {}, parent) {
    setElided();
}

void ShareAddress::setPublic(bool on) {
    if (isPublic_ == on) return;
    isPublic_ = on;
    update();
}

int ShareAddress::trailingSpace() const {
    return isPublic_ ? beforeTag + tagSize().width() : 0;
}

QRect ShareAddress::tagRect() const {
    if (!isPublic_) return {};
    const QSize size = tagSize();
    const QRect box(
        {fontMetrics().horizontalAdvance(shownText()) + beforeTag, (height() - size.height()) / 2},
        size);
    return QStyle::visualRect(layoutDirection(), rect(), box);
}

void ShareAddress::paintEvent(QPaintEvent* event) {
    Label::paintEvent(event);
    if (!isPublic_) return;
    QPainter painter(this);
    const QRect tag = tagRect();
    drawRoundedBox(painter, tag, 3, Colors::thinned(theme().color(&Colors::orangeTint), 0.15));
    painter.setFont(theme().font(TextStyle::tag));
    painter.setPen(theme().color(&Colors::orangeText));
    painter.drawText(tag, Qt::AlignCenter, publicTag);
}

} // namespace brevane
