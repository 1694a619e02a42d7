// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

namespace brevane {

/// Asks before something is destroyed. Opened with `open()`: it takes no event loop of its own,
/// blocks its window alone, and deletes itself when it has been answered. Escape, Return and
/// closing it all cancel.
class ConfirmationDialog : public QDialog {
    Q_OBJECT
public:
    /// `destructiveLabel` names the button on which the dialog is accepted.
    ConfirmationDialog(const QString& title, const QString& message,
                       const QString& destructiveLabel, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace brevane
