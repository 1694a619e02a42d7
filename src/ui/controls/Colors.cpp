// SPDX-License-Identifier: MIT
#include "Colors.h"

#include <algorithm>
#include <cmath>

namespace brevane {

namespace {

// Relative luminance (WCAG 2.1).
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

// The colour, mixed with as little of `end` as reaches the contrast.
QColor reaching(double wanted, const QColor& ground, const QColor& color, const QColor& end) {
    const auto mixed = [&](double part) {
        const auto channel = [part](double from, double to) {
            return static_cast<float>(from + (to - from) * part);
        };
        return QColor::fromRgbF(channel(color.redF(), end.redF()),
                                channel(color.greenF(), end.greenF()),
                                channel(color.blueF(), end.blueF()));
    };
    double part = 0;
    while (part < 1 && contrast(ground, mixed(part)) < wanted)
        part += 0.02;
    return mixed(std::min(part, 1.0));
}

void setAccent(Colors& colors, const Look& look) {
    colors.accentFill =
        reaching(look.hasHighContrast ? 7 : 4.5, colors.onFill, look.accent, Qt::black);
    colors.focus = reaching(3, colors.window, look.accent, look.isDark ? Qt::white : Qt::black);
}

Colors withHighContrast(Colors colors, bool isDark) {
    for (const auto edge : {&Colors::line, &Colors::outline, &Colors::popupEdge})
        colors.*edge = colors.secondary;
    colors.secondary = colors.text;
    for (const auto ink : {&Colors::blue, &Colors::orange, &Colors::orangeText, &Colors::green,
                           &Colors::red, &Colors::focus})
        colors.*ink = isDark ? (colors.*ink).lighter(125) : (colors.*ink).darker(145);
    for (const auto fill :
         {&Colors::blueFill, &Colors::orangeFill, &Colors::redFill, &Colors::accentFill})
        colors.*fill = (colors.*fill).darker(145);
    if (isDark) colors.segment = colors.segment.darker(145);
    return colors;
}

} // namespace

const Colors& Colors::light() {
    static const Colors colors{
        .window = {0xff, 0xff, 0xff},
        .pane = {0xf5, 0xf5, 0xf7},
        .bar = {0xec, 0xec, 0xee},
        .popup = {0xfb, 0xfb, 0xfc},
        .popupEdge = {0xc9, 0xc9, 0xcd},
        .line = {0, 0, 0, 26},
        .text = {0x1d, 0x1d, 0x1f},
        .secondary = {0x5f, 0x5f, 0x66},
        .blue = {0x00, 0x5c, 0xc5},
        .orange = {0xda, 0x57, 0x00},
        .orangeText = {0xb1, 0x3e, 0x00},
        .green = {0x1c, 0x77, 0x36},
        .red = {0xc4, 0x24, 0x1c},
        .blueTint = {0x00, 0x7a, 0xff},
        .orangeTint = {0xff, 0x95, 0x00},
        .greenTint = {0x34, 0xc7, 0x59},
        .blueFill = {0x06, 0x6a, 0xe0},
        .orangeFill = {0xca, 0x4e, 0x00},
        .redFill = {0xcc, 0x2a, 0x22},
        .onFill = {0xff, 0xff, 0xff},
        .accentFill = {0x06, 0x6a, 0xe0},
        .focus = {0x00, 0x72, 0xf0},
        .field = {0xff, 0xff, 0xff},
        .button = {0xff, 0xff, 0xff},
        .outline = {0, 0, 0, 46},
        .track = {0, 0, 0, 16},
        .segment = {0xff, 0xff, 0xff},
    };
    return colors;
}

const Colors& Colors::dark() {
    static const Colors colors{
        .window = {0x1e, 0x1e, 0x20},
        .pane = {0x27, 0x27, 0x29},
        .bar = {0x2f, 0x2f, 0x32},
        .popup = {0x34, 0x34, 0x37},
        .popupEdge = {0x58, 0x58, 0x5c},
        .line = {255, 255, 255, 28},
        .text = {0xf0, 0xf0, 0xf2},
        .secondary = {0xa9, 0xa9, 0xb0},
        .blue = {0x5e, 0xac, 0xff},
        .orange = {0xff, 0xa9, 0x3a},
        .orangeText = {0xff, 0xa9, 0x3a},
        .green = {0x3d, 0xd1, 0x63},
        .red = {0xff, 0x75, 0x6b},
        .blueTint = {0x3b, 0x99, 0xff},
        .orangeTint = {0xff, 0x9f, 0x0a},
        .greenTint = {0x30, 0xd1, 0x58},
        .blueFill = {0x0a, 0x6a, 0xe0},
        .orangeFill = {0xca, 0x4e, 0x00},
        .redFill = {0xcf, 0x30, 0x28},
        .onFill = {0xff, 0xff, 0xff},
        .accentFill = {0x0a, 0x6a, 0xe0},
        .focus = {0x4a, 0xa0, 0xff},
        .field = {255, 255, 255, 13},
        .button = {255, 255, 255, 30},
        .outline = {255, 255, 255, 44},
        .track = {255, 255, 255, 20},
        .segment = {0x63, 0x63, 0x67},
    };
    return colors;
}

Colors Colors::of(const Look& look) {
    Colors colors = look.isDark ? dark() : light();
    if (look.hasHighContrast) colors = withHighContrast(colors, look.isDark);
    if (look.accent.isValid()) setAccent(colors, look);
    return colors;
}

QColor Colors::thinned(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

} // namespace brevane
