// SPDX-License-Identifier: MIT
#pragma once

#include "Button.h"
#include "Theme.h"

#include <QBasicTimer>

namespace brevane {

/// A button with a text, and before it a symbol or a progress indicator.
class PushButton : public Button {
    Q_OBJECT
public:
    enum class Kind {
        plain,     ///< edged
        prominent, ///< filled with a colour, the one button that a view is about
        link,      ///< coloured text alone
    };

    explicit PushButton(Kind kind, const QString& text = {}, QWidget* parent = nullptr);

    void setSymbol(const QString& name);
    [[nodiscard]] const QString& symbol() const { return symbolName; }

    /// The ground of a prominent button, or the ink of any other.
    void setTint(ColorRole role);

    /// Shows a progress indicator in place of the symbol.
    void setBusy(bool on);
    [[nodiscard]] bool isBusy() const { return busy; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    [[nodiscard]] int leadingWidth() const;
    void drawGround(QPainter& painter) const;

    Kind kind;
    ColorRole tint;
    QString symbolName;
    bool busy = false;
    QBasicTimer timer;
    int step = 0;
};

} // namespace brevane
