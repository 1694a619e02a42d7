// SPDX-License-Identifier: MIT
#include "ScrollPadding.h"

#include <QLayout>
#include <QScrollArea>
#include <QScrollBar>

namespace brevane {

void keepScrollBarInPadding(QScrollArea& area, QLayout& content, int padding) {
    const auto* bar = area.verticalScrollBar();
    QObject::connect(bar, &QScrollBar::rangeChanged, &content,
                     [&area, &content, bar, padding](int, int maximum) {
                         const int left = padding - (maximum > 0 ? bar->sizeHint().width() : 0);
                         QMargins margins = content.contentsMargins();
                         // Unlike scroll bars, margins are not mirrored with the layout.
                         const bool mirrored = area.layoutDirection() == Qt::RightToLeft;
                         margins.setRight(mirrored ? padding : left);
                         margins.setLeft(mirrored ? left : padding);
                         content.setContentsMargins(margins);
                     });
}

} // namespace brevane
