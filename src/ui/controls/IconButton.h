// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QAbstractButton>

namespace brevane {

/// A borderless button that shows a symbol. Its tooltip is also its accessible name.
class IconButton : public QAbstractButton {
    Q_OBJECT
public:
    IconButton(const QString& symbol, const QString& toolTip, ColorRole color = &Colors::secondary,
               QWidget* parent = nullptr);

    /// How much of the symbol's colour shows while nothing points at the button.
    void setSymbolOpacity(double opacity) { symbolOpacity = opacity; }

    /// Draws an edge around it, as beside a text field.
    void setBordered(bool on) { bordered = on; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] const QString& symbol() const { return name; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name;
    ColorRole color;
    double symbolOpacity = 1;
    bool bordered = false;
};

} // namespace brevane
