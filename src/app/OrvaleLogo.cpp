// SPDX-License-Identifier: MIT
#include "OrvaleLogo.h"

#include "Accessibility.h"
#include "Color.h"
#include "Maker.h"
#include "Theme.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace brevane {

namespace {

constexpr int logoWidth = 240;
constexpr int wordmarkHeight = 58;
constexpr int taglineHeight = 16;

/// The font, made smaller if `text` would be wider than the logo.
QFont fitted(QFont font, const QString& text) {
    const double needed = QFontMetricsF(font).horizontalAdvance(text);
    const double shrink = std::min(1.0, logoWidth / needed);
    font.setPixelSize(static_cast<int>(font.pixelSize() * shrink));
    font.setLetterSpacing(QFont::AbsoluteSpacing, font.letterSpacing() * shrink);
    return font;
}

QFont logoFont(int pixels, QFont::Weight weight, double letterSpacing) {
    QFont font = QApplication::font();
    font.setPixelSize(pixels);
    font.setWeight(weight);
    font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
    return font;
}

} // namespace

OrvaleLogo::OrvaleLogo(QWidget* parent) : QWidget(parent) {
    setFixedSize(logoWidth, wordmarkHeight + taglineHeight);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(QString(maker::wordmarkFirst) + maker::wordmarkSecond + ", " +
                      maker::tagline);
}

void OrvaleLogo::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QString first = maker::wordmarkFirst;
    const QString second = maker::wordmarkSecond;
    painter.setFont(fitted(logoFont(52, QFont::Black, -1), first + second));
    const QFontMetricsF metrics(painter.font());
    const double start = (logoWidth - metrics.horizontalAdvance(first + second)) / 2;
    const double baseline = (wordmarkHeight + metrics.capHeight()) / 2;
    painter.setPen(theme().color(&Colors::text));
    painter.drawText(QPointF(start, baseline), first);
    painter.setPen(Color::orvale);
    painter.drawText(QPointF(start + metrics.horizontalAdvance(first), baseline), second);

    const QString tagline = QString(maker::tagline).toUpper();
    painter.setFont(fitted(logoFont(10, QFont::DemiBold, 2.5), tagline));
    painter.setPen(theme().color(&Colors::secondary));
    painter.drawText(QRect(0, wordmarkHeight, logoWidth, taglineHeight), Qt::AlignCenter, tagline);
}

} // namespace brevane
