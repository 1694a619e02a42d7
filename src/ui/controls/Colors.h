// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

namespace brevane {

/// The colours of one scheme, by what they are for. Text in `text`, `secondary`, `orangeText`,
/// `blue`, `green` and `red` reaches a contrast of 4.5 to 1 (WCAG 2.1, 1.4.3) on every ground it
/// stands on, symbols in `orange` one of 3 to 1 (1.4.11).
struct Colors {
    QColor window;     ///< ground of the form and of dialogs
    QColor pane;       ///< ground of the share list
    QColor bar;        ///< ground of the menu bar
    QColor popup;      ///< ground of menus
    QColor popupEdge;  ///< edge of menus
    QColor line;       ///< dividers
    QColor text;       ///< primary text
    QColor secondary;  ///< captions, hints, placeholders, quiet symbols
    QColor blue;       ///< serves
    QColor orange;     ///< symbols of funnels and warnings
    QColor orangeText; ///< text about funnels and warnings
    QColor green;      ///< connected, done
    QColor red;        ///< not connected, destructive
    QColor blueTint;   ///< what is thinned to make a blue ground
    QColor orangeTint; ///< what is thinned to make an orange ground
    QColor greenTint;  ///< what is thinned to make a green ground
    QColor blueFill;   ///< buttons with `onFill` text
    QColor orangeFill; ///< buttons with `onFill` text
    QColor redFill;    ///< buttons with `onFill` text
    QColor onFill;     ///< text on a filled button
    QColor focus;      ///< ring around what has the keyboard
    QColor field;      ///< ground of text fields
    QColor button;     ///< ground of plain buttons
    QColor outline;    ///< edge of fields and buttons
    QColor track;      ///< ground of the segmented control
    QColor segment;    ///< its selected segment

    [[nodiscard]] static const Colors& light();
    [[nodiscard]] static const Colors& dark();

    /// The colour thinned to `opacity` of its own.
    [[nodiscard]] static QColor thinned(QColor color, double opacity);
};

/// Names a colour whichever scheme is in use.
using ColorRole = QColor Colors::*;

} // namespace brevane
