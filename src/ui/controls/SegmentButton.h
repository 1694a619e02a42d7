// SPDX-License-Identifier: MIT
#pragma once

#include "Button.h"

namespace brevane {

/// One choice of a segmented control. The control draws the ground that moves under the choices.
class SegmentButton : public Button {
    Q_OBJECT
public:
    explicit SegmentButton(const QString& label, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace brevane
