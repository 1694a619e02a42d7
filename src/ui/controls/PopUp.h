// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

namespace brevane {

/// A pop-up button over a list of choices. The wheel scrolls what it lies in, never its choice.
class PopUp : public QComboBox {
    Q_OBJECT
public:
    explicit PopUp(QWidget* parent = nullptr);

    void showPopup() override;

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace brevane
