// SPDX-License-Identifier: MIT
#include "SymbolView.h"

#include "Symbol.h"

#include <QPainter>

namespace brevane {

SymbolView::SymbolView(const QString& symbol, ColorRole symbolColor, int symbolFontSize,
                       QWidget* parent)
    : QWidget(parent), name(symbol), color(symbolColor), fontSize(symbolFontSize) {
    resizeToFont();
    connect(&theme(), &Theme::changed, this, &SymbolView::resizeToFont);
}

void SymbolView::resizeToFont() {
    const int side = theme().symbolSize(fontSize);
    setFixedSize(side, side);
}

void SymbolView::setSymbol(const QString& symbol) {
    if (name == symbol) return;
    name = symbol;
    update();
}

void SymbolView::setColor(ColorRole role) {
    if (color == role) return;
    color = role;
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawSymbol(painter, rect(), name, theme().color(color), width());
}

} // namespace brevane
