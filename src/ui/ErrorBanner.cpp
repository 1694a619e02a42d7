// SPDX-License-Identifier: MIT
#include "ErrorBanner.h"

#include "Accessibility.h"
#include "PushButton.h"
#include "SelectableText.h"
#include "SymbolView.h"

#include <QHBoxLayout>

namespace brevane {

ErrorBanner::ErrorBanner(QWidget* parent)
    : Surface(&Colors::orangeTint, 0.12, 0, parent),
      text_(new SelectableText(QStringLiteral("Error"), TextStyle::caption, &Colors::text, 8)) {
    setAccessibleRole(*this, QAccessible::Notification);
    auto* clear = new PushButton(PushButton::Kind::link, QStringLiteral("Clear"));
    connect(clear, &PushButton::clicked, this, &ErrorBanner::clearRequested);

    auto* warning =
        new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), &Colors::orange, 12);
    // Aligns symbol, text and button with the text's first line.
    const int line = clear->sizeHint().height();
    warning->setFixedHeight(line);
    auto* words = new QVBoxLayout;
    words->setContentsMargins(0, (line - text_->fontMetrics().height()) / 2, 0, 0);
    words->addWidget(text_);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Theme::headerPadding, 5, Theme::headerPadding - 4, 6);
    row->setSpacing(Theme::near);
    row->addWidget(warning, 0, Qt::AlignTop);
    row->addLayout(words, 1);
    row->addWidget(clear, 0, Qt::AlignTop);
    hide();
}

void ErrorBanner::setError(const QString& error) {
    const bool isNew = error != accessibleName();
    changeAccessibleName(*this, error);
    text_->setShownText(error);
    if (error.isEmpty())
        hide();
    else if (isNew)
        showAndAnnounce(*this);
}

} // namespace brevane
