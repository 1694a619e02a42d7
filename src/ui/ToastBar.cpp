// SPDX-License-Identifier: MIT
#include "ToastBar.h"

#include "Accessibility.h"
#include "Label.h"
#include "SymbolView.h"

#include <QHBoxLayout>

namespace brevane {

ToastBar::ToastBar(QWidget* parent)
    : Surface(&Colors::greenTint, 0.12, 0, parent), text_(new Label(TextStyle::callout)) {
    setAccessibleRole(*this, QAccessible::Notification);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(14, 8, 14, 8);
    row->setSpacing(8);
    row->addWidget(new SymbolView(QStringLiteral("checkmark.circle.fill"), &Colors::green, 12));
    row->addWidget(text_, 1);
    toastTimer_.setSingleShot(true);
    toastTimer_.setInterval(shownForMs);
    toastTimer_.setTimerType(Qt::PreciseTimer);
    connect(&toastTimer_, &QTimer::timeout, this, &QWidget::hide);
    hide();
}

void ToastBar::showEvent(QShowEvent*) {
    Q_EMIT visibilityChanged(true);
}

void ToastBar::hideEvent(QHideEvent*) {
    Q_EMIT visibilityChanged(false);
}

void ToastBar::showToast(const QString& message) {
    text_->setPlainText(message);
    changeAccessibleName(*this, message);
    showAndAnnounce(*this);
    toastTimer_.start();
}

} // namespace brevane
