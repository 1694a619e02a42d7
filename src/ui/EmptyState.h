// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace brevane {

/// Replaces the list while there are no shares.
class EmptyState : public QWidget {
    Q_OBJECT
public:
    explicit EmptyState(QWidget* parent = nullptr);
};

} // namespace brevane
