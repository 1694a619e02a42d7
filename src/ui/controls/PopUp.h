// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

namespace brevane {

/// A pop-up button with a list of choices. The wheel scrolls the view around it and never changes
/// the choice.
class PopUp : public QComboBox {
    Q_OBJECT
public:
    explicit PopUp(QWidget* parent = nullptr);

    void showPopup() override;

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace brevane
