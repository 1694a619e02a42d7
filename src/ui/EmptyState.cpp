// SPDX-License-Identifier: MIT
#include "EmptyState.h"

#include "Label.h"
#include "SymbolView.h"

#include <QVBoxLayout>

namespace brevane {

EmptyState::EmptyState(QWidget* parent) : QWidget(parent) {
    auto* title =
        new Label(TextStyle::headline, &Colors::secondary, QStringLiteral("No active shares"));
    auto* advice =
        new Label(TextStyle::callout, &Colors::secondary,
                  QStringLiteral("Use the form on the right to\ncreate a Serve or Funnel."));
    for (auto* label : {title, advice}) {
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
    }
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::listPaddingX, Theme::listPaddingY, Theme::listPaddingX,
                               Theme::listPaddingY);
    column->setSpacing(Theme::near);
    column->addStretch();
    column->addWidget(new SymbolView(QStringLiteral("antenna.radiowaves.left.and.right.slash"),
                                     &Colors::secondary, 32),
                      0, Qt::AlignHCenter);
    column->addSpacing(Theme::tight);
    column->addWidget(title);
    column->addWidget(advice);
    column->addStretch();
}

} // namespace brevane
