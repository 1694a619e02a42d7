// SPDX-License-Identifier: MIT
#include "SectionHeader.h"

#include "Accessibility.h"
#include "Symbol.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace brevane {

namespace {

constexpr int symbolFontSize = 11;
constexpr int afterSymbol = 6;

} // namespace

SectionHeader::SectionHeader(const QString& title, const QString& symbol, ColorRole color,
                             QWidget* parent)
    : QWidget(parent), title_(title.toUpper()), symbol_(symbol), color_(color) {
    setAccessibleRole(*this, QAccessible::Heading);
    setAccessibleName(title);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(&theme(), &Theme::changed, this, [this] { updateGeometry(); });
}

QSize SectionHeader::sizeHint() const {
    const QFontMetrics metrics(theme().font(TextStyle::section));
    const int side = theme().symbolSize(symbolFontSize);
    return {Theme::rowPaddingX + side + afterSymbol + metrics.horizontalAdvance(title_),
            std::max(metrics.height(), side) + 12};
}

void SectionHeader::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int side = theme().symbolSize(symbolFontSize);
    const auto mirrored = [&](const QRect& box) {
        return QStyle::visualRect(layoutDirection(), rect(), box);
    };
    drawSymbol(painter, mirrored({Theme::rowPaddingX, 0, side, height()}), symbol_,
               theme().color(color_), side);
    painter.setFont(theme().font(TextStyle::section));
    painter.setPen(theme().color(&Colors::secondary));
    painter.drawText(mirrored(rect().adjusted(Theme::rowPaddingX + side + afterSymbol, 0, 0, 0)),
                     Qt::AlignVCenter | Qt::AlignLeft, title_);
}

} // namespace brevane
