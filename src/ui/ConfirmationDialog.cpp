// SPDX-License-Identifier: MIT
#include "ConfirmationDialog.h"

#include "Label.h"
#include "PushButton.h"
#include "SymbolView.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace brevane {

ConfirmationDialog::ConfirmationDialog(const QString& title, const QString& message,
                                       const QString& destructiveLabel, QWidget* parent)
    : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(QStringLiteral("Brevane"));
    setAccessibleName(title);
    setAccessibleDescription(message);

    auto* heading = new Label(TextStyle::headline, &Colors::text, title);
    auto* explanation = new Label(TextStyle::body, &Colors::secondary, message);
    for (auto* label : {heading, explanation})
        label->setWordWrap(true);
    auto* cancel = new PushButton(PushButton::Kind::plain, tr("Cancel"));
    auto* destroy = new PushButton(PushButton::Kind::prominent, destructiveLabel);
    destroy->setTint(&Colors::redFill);
    connect(cancel, &PushButton::clicked, this, &QDialog::reject);
    connect(destroy, &PushButton::clicked, this, &QDialog::accept);
    for (auto* button : {cancel, destroy}) {
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        button->setFixedHeight(theme().scaled(30));
        button->setMinimumWidth(theme().scaled(84));
    }

    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    texts->addWidget(heading);
    texts->addWidget(explanation);
    auto* question = new QHBoxLayout;
    question->setSpacing(14);
    question->addWidget(
        new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), &Colors::orange, 24), 0,
        Qt::AlignTop);
    question->addLayout(texts, 1);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::near);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(destroy);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(18);
    column->addLayout(question);
    column->addLayout(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    explanation->setFixedWidth(theme().scaled(300));
    cancel->setFocus(Qt::OtherFocusReason);
}

void ConfirmationDialog::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), theme().color(&Colors::popup));
}

} // namespace brevane
