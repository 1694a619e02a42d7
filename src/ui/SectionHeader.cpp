// SPDX-License-Identifier: MIT
#include "SectionHeader.h"

#include "Accessibility.h"
#include "Symbol.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace brevane {

SectionHeader::SectionHeader(const QString& sectionTitle, const QString& symbolName,
                             ColorRole symbolColor, QWidget* parent)
    : QWidget(parent), title(sectionTitle.toUpper()), symbol(symbolName), color(symbolColor) {
    setAccessibleRole(*this, QAccessible::Heading);
    setAccessibleName(sectionTitle);
    hide();
}

int SectionHeader::headerHeight() {
    const int line = QFontMetrics(theme().font(TextStyle::section)).height();
    return std::max(line, theme().symbolSize(11)) + 12;
}

void SectionHeader::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    // Rows pass underneath.
    painter.fillRect(rect(), theme().color(&Colors::pane));
    const int side = theme().symbolSize(11);
    const int x = Theme::listPaddingX + Theme::rowPaddingX;
    const auto mirrored = [&](const QRect& box) {
        return QStyle::visualRect(layoutDirection(), rect(), box);
    };
    drawSymbol(painter, mirrored({x, 0, side, height()}), symbol, theme().color(color), side);
    painter.setFont(theme().font(TextStyle::section));
    painter.setPen(theme().color(&Colors::secondary));
    painter.drawText(mirrored({x + side + 6, 0, width() - x - side - 6, height()}),
                     Qt::AlignVCenter | Qt::AlignLeft, title);
}

} // namespace brevane
