// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QWidget>

namespace brevane {

/// The heading, in capitals, above one kind of share.
class SectionHeader : public QWidget {
    Q_OBJECT
public:
    SectionHeader(const QString& title, const QString& symbol, ColorRole color,
                  QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
    QString symbol_;
    ColorRole color_;
};

} // namespace brevane
