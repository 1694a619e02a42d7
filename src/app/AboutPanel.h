// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

namespace brevane {

/// The window "About Brevane". Closing it, including with Escape, only hides it.
class AboutPanel : public QDialog {
    Q_OBJECT
public:
    /// Centred on the screen, 300 by 310 or as large as the desktop's font needs.
    explicit AboutPanel(QWidget* parent = nullptr);

    /// Shows it in front of all other windows and gives it the keyboard.
    void makeKeyAndOrderFront();
};

} // namespace brevane
