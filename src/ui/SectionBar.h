// SPDX-License-Identifier: MIT
#pragma once

#include "ResetTarget.h"

#include <QWidget>

namespace brevane {

/// The bar above the share list, with the menu of resets.
class SectionBar : public QWidget {
    Q_OBJECT
public:
    explicit SectionBar(QWidget* parent = nullptr);

Q_SIGNALS:
    /// The user has chosen a reset, but not yet confirmed it.
    void resetRequested(brevane::ResetTarget target);
};

} // namespace brevane
