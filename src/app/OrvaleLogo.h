// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace brevane {

/// The maker's wordmark above the tagline, 240 wide. A picture of text: it does not grow with the
/// desktop's font size.
class OrvaleLogo : public QWidget {
    Q_OBJECT
public:
    explicit OrvaleLogo(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace brevane
