// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QWidget>

namespace brevane {

/// A symbol in one of the theme's colours, at a system font size. Has no accessible name.
class SymbolView : public QWidget {
    Q_OBJECT
public:
    explicit SymbolView(const QString& symbol, ColorRole color, int fontSize = 13,
                        QWidget* parent = nullptr);

    void setSymbol(const QString& symbol);
    [[nodiscard]] const QString& symbol() const { return name_; }
    void setColor(ColorRole role);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void resizeToFont();

    QString name_;
    ColorRole color_;
    int fontSize_;
};

} // namespace brevane
