// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QToolButton>

namespace brevane {

class Spinner;

/// A borderless button that shows a symbol. Its tooltip is also its accessible name. Drawn by the
/// style. Keeps the focus when it is disabled.
class IconButton : public QToolButton {
    Q_OBJECT
public:
    IconButton(const QString& symbol, const QString& toolTip, ColorRole color = &Colors::secondary,
               QWidget* parent = nullptr);

    [[nodiscard]] const QString& symbol() const { return symbol_; }
    [[nodiscard]] ColorRole color() const { return color_; }

    /// The symbol's opacity while the button is neither hovered nor focused.
    void setSymbolOpacity(double opacity) { symbolOpacity_ = opacity; }
    [[nodiscard]] double symbolOpacity() const { return symbolOpacity_; }

    /// Draws a border, as beside a text field.
    void setBordered(bool on) { bordered_ = on; }
    [[nodiscard]] bool isBordered() const { return bordered_; }

    /// Shows a progress indicator in place of the symbol.
    void setBusy(bool on);
    [[nodiscard]] bool isBusy() const { return spinner_ != nullptr; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeSpinner();

    QString symbol_;
    ColorRole color_;
    double symbolOpacity_ = 1;
    bool bordered_ = false;
    Spinner* spinner_ = nullptr;
};

} // namespace brevane
