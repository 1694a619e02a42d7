// SPDX-License-Identifier: MIT
#pragma once

#include "Look.h"

#include <QColor>

namespace brevane {

/// The colours of one scheme, by purpose. Text in `text`, `secondary`, `orangeText`, `blue`,
/// `green` and `red` has a contrast of at least 4.5:1 (WCAG 2.1, 1.4.3) on every background that it
/// is drawn on, symbols in `orange` of 3:1 (1.4.11).
struct Colors {
    QColor window;     ///< background of the form and of dialogs
    QColor pane;       ///< background of the share list
    QColor bar;        ///< background of the menu bar
    QColor popup;      ///< background of menus
    QColor popupEdge;  ///< edge of menus
    QColor line;       ///< dividers
    QColor text;       ///< primary text
    QColor secondary;  ///< captions, hints, placeholders, quiet symbols
    QColor blue;       ///< serves
    QColor orange;     ///< symbols of funnels and warnings
    QColor orangeText; ///< text about funnels and warnings
    QColor green;      ///< connected, done
    QColor red;        ///< not connected, destructive
    QColor blueTint;   ///< used translucent as a blue background
    QColor orangeTint; ///< used translucent as an orange background
    QColor greenTint;  ///< used translucent as a green background
    QColor blueFill;   ///< buttons with `onFill` text
    QColor orangeFill; ///< buttons with `onFill` text
    QColor redFill;    ///< buttons with `onFill` text
    QColor onFill;     ///< text on a filled button
    QColor accentFill; ///< selected items and controls, with `onFill` text
    QColor focus;      ///< ring around the focused control
    QColor field;      ///< background of text fields
    QColor button;     ///< background of plain buttons
    QColor outline;    ///< edge of fields and buttons
    QColor track;      ///< background of the segmented control
    QColor segment;    ///< its selected segment

    [[nodiscard]] static const Colors& light();
    [[nodiscard]] static const Colors& dark();

    /// The colours for a desktop's look. With high contrast all text reaches 7:1 (1.4.6), and edges
    /// and dividers 3:1. An accent colour is lightened or darkened as far as legibility needs.
    [[nodiscard]] static Colors of(const Look& look);

    /// The colour with its alpha multiplied by `opacity`.
    [[nodiscard]] static QColor thinned(QColor color, double opacity);
};

/// Names a colour independently of the scheme.
using ColorRole = QColor Colors::*;

} // namespace brevane
