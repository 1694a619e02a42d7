// SPDX-License-Identifier: MIT
#include "ButtonDrawing.h"

#include "IconButton.h"
#include "Painting.h"
#include "PushButton.h"
#include "Symbol.h"
#include "Theme.h"

#include <QPainter>
#include <QStyleOption>

namespace brevane {

namespace {

using Kind = PushButton::Kind;

bool isDown(const QStyleOption& option) {
    return option.state & QStyle::State_Sunken;
}
// Disabled buttons do not react to the pointer.
bool isHovered(const QStyleOption& option) {
    return (option.state & QStyle::State_MouseOver) && (option.state & QStyle::State_Enabled);
}
bool showsFocus(const QStyleOption& option) {
    return (option.state & QStyle::State_HasFocus) &&
           (option.state & QStyle::State_KeyboardFocusChange);
}

void drawGround(QPainter& painter, const QStyleOption& option, Kind kind, const QColor& fill) {
    const Colors& c = theme().colors();
    const bool highlighted = isDown(option) || isHovered(option);
    if (kind == Kind::prominent) {
        constexpr int radius = Theme::cornerRadius + 1;
        drawRoundedBox(painter, option.rect, radius, fill);
        if (highlighted)
            drawRoundedBox(painter, option.rect, radius, QColor(0, 0, 0, isDown(option) ? 46 : 18));
        return;
    }
    if (kind == Kind::plain)
        drawRoundedBox(painter, option.rect, Theme::cornerRadius, c.button, c.outline);
    if (highlighted)
        drawRoundedBox(painter, option.rect, Theme::cornerRadius,
                       Colors::thinned(c.text, isDown(option) ? 0.14 : 0.06));
}

void drawFocus(QPainter& painter, const QStyleOption& option, Kind kind) {
    if (!showsFocus(option)) return;
    // A ring inside a filled button would not stand out against its colour.
    if (kind == Kind::prominent)
        drawRoundedBox(painter, option.rect.adjusted(2, 2, -2, -2), Theme::cornerRadius - 1,
                       Qt::NoBrush, theme().color(&Colors::onFill), 1.5);
    else
        drawFocusRing(painter, option.rect, Theme::cornerRadius);
}

} // namespace

void drawPushButton(QPainter& painter, const QStyleOptionButton& option, const PushButton& button) {
    const Colors& c = theme().colors();
    // A disabled button keeps readable text.
    const bool quiet = !(option.state & QStyle::State_Enabled) && !button.isBusy();
    drawGround(painter, option, button.kind(), quiet ? c.track : c.*button.tint());
    const QColor ink = quiet                              ? c.secondary
                       : button.kind() == Kind::prominent ? c.onFill
                                                          : c.*button.tint();
    const PushButton::Parts parts = button.parts();
    if (!button.isBusy() && !button.symbol().isEmpty())
        drawSymbol(painter, parts.symbol, button.symbol(), ink, theme().symbolSize(12));
    painter.setPen(ink);
    painter.drawText(parts.text, Qt::AlignVCenter | Qt::AlignLeft, option.text);
    // The ring of a filled button would be invisible on a disabled one's background.
    drawFocus(painter, option, quiet ? Kind::plain : button.kind());
}

void drawDialogButton(QPainter& painter, const QStyleOptionButton& option, bool isDestructive) {
    const Kind kind = isDestructive ? Kind::prominent : Kind::plain;
    drawGround(painter, option, kind, theme().color(&Colors::redFill));
    painter.setPen(theme().color(isDestructive ? &Colors::onFill : &Colors::text));
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextHideMnemonic, option.text);
    // Always show the button that Return presses, even before the keyboard is used.
    QStyleOptionButton answer = option;
    if (answer.state & QStyle::State_HasFocus) answer.state |= QStyle::State_KeyboardFocusChange;
    drawFocus(painter, answer, kind);
}

void drawIconButton(QPainter& painter, const QStyleOptionToolButton& option,
                    const IconButton& button) {
    const Colors& c = theme().colors();
    const bool highlighted = isDown(option) || isHovered(option);
    if (button.isBordered())
        drawRoundedBox(painter, option.rect, Theme::cornerRadius, c.button, c.outline);
    if (highlighted)
        drawRoundedBox(painter, option.rect, Theme::cornerRadius,
                       Colors::thinned(c.text, isDown(option) ? 0.16 : 0.08));
    if (showsFocus(option)) drawFocusRing(painter, option.rect, Theme::cornerRadius);
    if (button.isBusy()) return;
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool plain = !highlighted && !showsFocus(option) && !theme().hasHighContrast();
    const double opacity = enabled ? (plain ? button.symbolOpacity() : 1) : 0.4;
    drawSymbol(painter, option.rect, button.symbol(),
               Colors::thinned(theme().color(button.color()), opacity), theme().symbolSize());
}

} // namespace brevane
