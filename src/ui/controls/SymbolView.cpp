// SPDX-License-Identifier: MIT
#include "SymbolView.h"

#include "Symbol.h"

#include <QPainter>

namespace brevane {

SymbolView::SymbolView(const QString& symbol, ColorRole color, int fontSize, QWidget* parent)
    : QWidget(parent), name_(symbol), color_(color), fontSize_(fontSize) {
    resizeToFont();
    connect(&theme(), &Theme::changed, this, &SymbolView::resizeToFont);
}

void SymbolView::resizeToFont() {
    const int side = theme().symbolSize(fontSize_);
    setFixedSize(side, side);
}

void SymbolView::setSymbol(const QString& symbol) {
    if (name_ == symbol) return;
    name_ = symbol;
    update();
}

void SymbolView::setColor(ColorRole role) {
    if (color_ == role) return;
    color_ = role;
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawSymbol(painter, rect(), name_, theme().color(color_), width());
}

} // namespace brevane
