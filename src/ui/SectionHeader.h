// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QWidget>

namespace brevane {

/// The capitals above one kind of share. Stays at the top of the list while its shares scroll by.
class SectionHeader : public QWidget {
    Q_OBJECT
public:
    SectionHeader(const QString& title, const QString& symbol, ColorRole color, QWidget* parent);

    /// How high every header is with the fonts in use.
    [[nodiscard]] static int headerHeight();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title;
    QString symbol;
    ColorRole color;
};

} // namespace brevane
