// SPDX-License-Identifier: MIT
#include "ShareList.h"

#include "IconButton.h"
#include "SectionHeader.h"
#include "ShareRowView.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace brevane {

// How the keyboard goes through the list. The buttons in view are only some of those that there
// are, so the list itself is one place in the window's order of focus and hands on from there.

std::optional<ShareList::Stop> ShareList::focusedStop() const {
    for (const Row& row : rows)
        if (row.index && row.view->isAncestorOf(window()->focusWidget()))
            return Stop{*row.index, row.view->stopButton() == window()->focusWidget()};
    return std::nullopt;
}

void ShareList::scrollTo(std::size_t index) {
    const int header = SectionHeader::headerHeight();
    const int top = rowTop(index) - header;
    const int bottom = rowTop(index) + ShareRowView::rowHeight() + Theme::listPaddingY;
    auto* bar = verticalScrollBar();
    if (top < bar->value())
        bar->setValue(index == 0 ? 0 : top);
    else if (bottom > bar->value() + viewport()->height())
        bar->setValue(bottom - viewport()->height());
}

void ShareList::focusOn(Stop stop) {
    scrollTo(stop.index);
    const ShareRowView* row = rowAt(stop.index);
    if (row == nullptr) return;
    (stop.isStopButton ? row->stopButton() : row->copyButton())->setFocus(Qt::TabFocusReason);
}

void ShareList::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    if (entries.empty()) return;
    if (event->reason() == Qt::BacktabFocusReason)
        focusOn({entries.size() - 1, true});
    else
        focusOn({0, false});
}

bool ShareList::focusNextPrevChild(bool next) {
    const auto focused = focusedStop();
    if (!focused) return QAbstractScrollArea::focusNextPrevChild(next);
    if (next && !focused->isStopButton)
        focusOn({focused->index, true});
    else if (!next && focused->isStopButton)
        focusOn({focused->index, false});
    else if (next && focused->index + 1 < entries.size())
        focusOn({focused->index + 1, false});
    else if (!next && focused->index > 0)
        focusOn({focused->index - 1, true});
    else
        leave(next);
    return true;
}

void ShareList::leave(bool forwards) {
    const auto takesTab = [this](const QWidget* widget) {
        return (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() &&
               widget->isVisible() && widget != this && !isAncestorOf(widget);
    };
    for (QWidget* widget = this;;) {
        widget = forwards ? widget->nextInFocusChain() : widget->previousInFocusChain();
        if (widget == this) return;
        if (!takesTab(widget)) continue;
        return widget->setFocus(forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }
}

bool ShareList::moveByKey(int key) {
    const auto focused = focusedStop();
    if (!focused) return false;
    const auto last = static_cast<qsizetype>(entries.size()) - 1;
    const auto page = std::max(1, viewport()->height() / ShareRowView::rowHeight() - 1);
    auto index = static_cast<qsizetype>(focused->index);
    switch (key) {
    case Qt::Key_Up:
        index -= 1;
        break;
    case Qt::Key_Down:
        index += 1;
        break;
    case Qt::Key_PageUp:
        index -= page;
        break;
    case Qt::Key_PageDown:
        index += page;
        break;
    case Qt::Key_Home:
        index = 0;
        break;
    case Qt::Key_End:
        index = last;
        break;
    default:
        return false;
    }
    focusOn(
        {static_cast<std::size_t>(std::clamp<qsizetype>(index, 0, last)), focused->isStopButton});
    return true;
}

bool ShareList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && moveByKey(static_cast<QKeyEvent*>(event)->key()))
        return true;
    return QAbstractScrollArea::eventFilter(watched, event);
}

} // namespace brevane
