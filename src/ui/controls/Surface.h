// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QWidget>

namespace brevane {

/// A rectangle of one of the theme's colours, as a background for other controls.
class Surface : public QWidget {
    Q_OBJECT
public:
    explicit Surface(ColorRole color, double opacity = 1, double radius = 0,
                     QWidget* parent = nullptr);

    /// The thin line between two parts of the window.
    [[nodiscard]] static Surface* makeDivider(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ColorRole color_;
    double opacity_;
    double radius_;
};

} // namespace brevane
