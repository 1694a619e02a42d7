// SPDX-License-Identifier: MIT
#pragma once

#include "Surface.h"

#include <QTimer>

namespace brevane {

class Label;

/// A message across the bottom of the window that hides itself.
class ToastBar : public Surface {
    Q_OBJECT
public:
    explicit ToastBar(QWidget* parent = nullptr);

    /// Shows and announces the message for three seconds, replacing any other.
    void showToast(const QString& message);

    static constexpr int shownForMs = 3000;

Q_SIGNALS:
    void visibilityChanged(bool isVisible);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Label* text_;
    QTimer toastTimer_;
};

} // namespace brevane
