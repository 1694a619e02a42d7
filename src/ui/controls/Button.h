// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

namespace brevane {

/// What the window's own buttons have in common: Return presses them as Space does, and what came
/// by keyboard shows that it has the focus.
class Button : public QAbstractButton {
    Q_OBJECT
public:
    explicit Button(QWidget* parent = nullptr);

protected:
    /// Whether to draw the ring.
    [[nodiscard]] bool showsFocus() const { return hasFocus() && focusedByKeyboard; }
    /// Whether the pointer is over it and it can be pressed.
    [[nodiscard]] bool isHovered() const { return underMouse() && isEnabled(); }

    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    bool focusedByKeyboard = false;
};

} // namespace brevane
