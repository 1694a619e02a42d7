// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>
#include <QUrl>

namespace brevane {

/// A button that looks like a link, in caption type and the brand colour, and opens a web site in
/// the default browser.
class WebLink : public QAbstractButton {
    Q_OBJECT
public:
    WebLink(const QString& text, const QUrl& site, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace brevane
