// SPDX-License-Identifier: MIT
#pragma once

#include "Button.h"
#include "Theme.h"

#include <QBasicTimer>

namespace brevane {

/// A borderless button that shows a symbol. Its tooltip is also its accessible name.
class IconButton : public Button {
    Q_OBJECT
public:
    IconButton(const QString& symbol, const QString& toolTip, ColorRole color = &Colors::secondary,
               QWidget* parent = nullptr);

    /// How much of the symbol's colour shows while nothing points at the button.
    void setSymbolOpacity(double opacity) { symbolOpacity = opacity; }

    /// Draws an edge around it, as beside a text field.
    void setBordered(bool on) { bordered = on; }

    /// Shows a progress indicator in place of the symbol.
    void setBusy(bool on);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] const QString& symbol() const { return name; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    QString name;
    ColorRole color;
    double symbolOpacity = 1;
    bool bordered = false;
    bool busy = false;
    QBasicTimer timer;
    int step = 0;
};

} // namespace brevane
