// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>

#include <functional>

namespace brevane {

/// Asks before something is destroyed, and calls `destroy` if the button `destructiveLabel` is
/// pressed. Cancel is the default; Escape and closing cancel too. Opened window-modal, without a
/// nested event loop; deletes itself when it has been answered.
QMessageBox* openConfirmation(const QString& title, const QString& message,
                              const QString& destructiveLabel, QWidget* parent,
                              std::function<void()> destroy);

} // namespace brevane
