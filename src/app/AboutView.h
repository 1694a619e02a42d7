// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

namespace brevane {

/// What the About panel shows: the maker's logo, the application's name and version, a credit line
/// and a link to the maker's web site.
class AboutView : public QWidget {
    Q_OBJECT
public:
    explicit AboutView(const QString& appVersion, QWidget* parent = nullptr);

    const QString appVersion;

protected:
    /// Dragging the background moves the window.
    void mousePressEvent(QMouseEvent* event) override;
};

} // namespace brevane
