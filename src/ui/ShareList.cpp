// SPDX-License-Identifier: MIT
#include "ShareList.h"

#include "Accessibility.h"
#include "IconButton.h"
#include "SectionHeader.h"
#include "ShareRowView.h"
#include "Theme.h"

#include <QCursor>
#include <QKeyEvent>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace brevane {

ShareList::ShareList(CopyAction copyAction, StopAction stopAction, QWidget* parent)
    : QAbstractScrollArea(parent), onCopy(std::move(copyAction)), onStop(std::move(stopAction)),
      serves(new SectionHeader(tr("Serves"), QStringLiteral("lock.shield"), &Colors::blue,
                               viewport())),
      funnels(
          new SectionHeader(tr("Funnels"), QStringLiteral("globe"), &Colors::orange, viewport())) {
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    setAccessibleRole(*viewport(), QAccessible::List);
    viewport()->setAccessibleName(tr("Active Shares"));
    connect(&theme(), &Theme::changed, this, &ShareList::layOut);
}

void ShareList::setShares(std::vector<ServeEntry> newEntries,
                          ManagedServers::InfoMap managedServers) {
    // Where each row, and the topmost share in view, will be found again.
    std::vector<std::optional<ShareKey>> keys;
    keys.reserve(rows.size());
    for (const Row& row : rows)
        keys.push_back(row.index ? std::optional(shareKey(entries, *row.index)) : std::nullopt);
    const int scroll = verticalScrollBar()->value();
    const auto focused = focusedStop();
    struct Anchor {
        ShareKey key;
        int offset;
    };
    std::vector<Anchor> anchors;
    if (scroll > 0)
        for (std::size_t index = firstShareBelow(scroll);
             index < entries.size() && rowTop(index) < scroll + viewport()->height(); ++index)
            anchors.push_back({shareKey(entries, index), rowTop(index) - scroll});

    const auto isServe = [](const ServeEntry& entry) { return !entry.isFunnel; };
    entries = std::move(newEntries);
    servers = std::move(managedServers);
    if (!std::ranges::is_partitioned(entries, isServe))
        std::ranges::stable_partition(entries, isServe);
    serveCount = static_cast<std::size_t>(std::ranges::count_if(entries, isServe));
    setFocusPolicy(entries.empty() ? Qt::NoFocus : Qt::TabFocus);

    bool focusLost = focused.has_value();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Row& row = rows[i];
        if (!row.index) continue;
        const bool hadFocus = focused && *row.index == focused->index;
        row.index = indexOf(*keys[i], entries);
        if (row.index) {
            bind(row, *row.index);
            if (hadFocus) focusLost = false;
        } else {
            row.view->dismissConfirmation();
        }
    }
    std::erase_if(stopping, [&](const ShareKey& key) { return !indexOf(key, entries); });

    int position = scroll;
    for (const Anchor& anchor : anchors)
        if (const auto index = indexOf(anchor.key, entries)) {
            position = rowTop(*index) - anchor.offset;
            break;
        }
    // The scroll bar's own notice would lay out once more.
    const QSignalBlocker quiet(verticalScrollBar());
    verticalScrollBar()->setRange(0, std::max(0, contentHeight() - viewport()->height()));
    verticalScrollBar()->setValue(position);
    layOut();
    if (focusLost && !entries.empty())
        focusOn({std::min(focused->index, entries.size() - 1), focused->isStopButton});
}

ShareRowView* ShareList::rowAt(std::size_t index) const {
    const auto row = std::ranges::find(rows, std::optional(index), &Row::index);
    return row == rows.end() ? nullptr : row->view;
}

int ShareList::sectionTop(bool ofFunnels) const {
    if (!ofFunnels || serveCount == 0) return Theme::listPaddingY;
    return Theme::listPaddingY + SectionHeader::headerHeight() +
           static_cast<int>(serveCount) * ShareRowView::rowHeight() + Theme::near;
}

int ShareList::rowTop(std::size_t index) const {
    const bool isFunnel = index >= serveCount;
    const auto before = static_cast<int>(isFunnel ? index - serveCount : index);
    return sectionTop(isFunnel) + SectionHeader::headerHeight() +
           before * ShareRowView::rowHeight();
}

int ShareList::contentHeight() const {
    if (entries.empty()) return 0;
    return rowTop(entries.size() - 1) + ShareRowView::rowHeight() + Theme::listPaddingY;
}

std::size_t ShareList::firstShareBelow(int y) const {
    std::size_t low = 0;
    std::size_t high = entries.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (rowTop(middle) + ShareRowView::rowHeight() <= y)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

void ShareList::layOut() {
    const int height = viewport()->height();
    verticalScrollBar()->setPageStep(height);
    // Without a row there is no need to load its fonts.
    if (!entries.empty()) verticalScrollBar()->setSingleStep(ShareRowView::rowHeight() / 2);
    verticalScrollBar()->setRange(0, std::max(0, contentHeight() - height));
    const int y = verticalScrollBar()->value();
    const std::size_t first = firstShareBelow(y);
    std::size_t end = first;
    while (end < entries.size() && rowTop(end) < y + height)
        ++end;
    bindRows(first, end);
    // The scroll bar takes its place out of the padding, so that rows are as wide with it as
    // without.
    const int rowWidth = width() - 2 * Theme::listPaddingX;
    const int x = layoutDirection() == Qt::RightToLeft
                      ? viewport()->width() - Theme::listPaddingX - rowWidth
                      : Theme::listPaddingX;
    for (const Row& row : rows) {
        if (row.index)
            row.view->setGeometry(x, rowTop(*row.index) - y, rowWidth, ShareRowView::rowHeight());
        row.view->setVisible(row.index.has_value());
    }
    placeHeaders();
    updateHover();
}

void ShareList::placeHeaders() {
    const int y = verticalScrollBar()->value();
    const int headerHeight = SectionHeader::headerHeight();
    const int funnelsTop = sectionTop(true) - y;
    const bool hasFunnels = serveCount < entries.size();
    const bool hasServes = serveCount > 0;
    const int pushed = hasFunnels ? std::min(0, funnelsTop - headerHeight) : 0;
    serves->setGeometry(0, std::max(sectionTop(false) - y, pushed), viewport()->width(),
                        headerHeight);
    funnels->setGeometry(0, std::max(funnelsTop, 0), viewport()->width(), headerHeight);
    serves->setVisible(hasServes);
    funnels->setVisible(hasFunnels);
    serves->raise();
    funnels->raise();
}

void ShareList::bindRows(std::size_t first, std::size_t end) {
    const auto isNeeded = [&](const Row& row) {
        return row.index && *row.index >= first && *row.index < end;
    };
    for (Row& row : rows)
        if (row.index && !isNeeded(row) && !isPinned(row)) row.index.reset();
    for (std::size_t index = first; index < end; ++index) {
        if (rowAt(index) != nullptr) continue;
        const auto unused =
            std::ranges::find_if(rows, [](const Row& row) { return !row.index.has_value(); });
        bind(unused == rows.end() ? makeRow() : *unused, index);
    }
}

void ShareList::bind(Row& row, std::size_t index) {
    const ServeEntry& entry = entries[index];
    row.index = index;
    row.view->showShare(entry, managedInfo(entry, servers));
    row.view->setStopping(!stopping.empty() &&
                          std::ranges::find(stopping, shareKey(entries, index)) != stopping.end());
}

bool ShareList::isPinned(const Row& row) const {
    return row.view->stopConfirmation() != nullptr ||
           row.view->isAncestorOf(window()->focusWidget());
}

ShareList::Row& ShareList::makeRow() {
    auto* view = new ShareRowView(
        onCopy, [this](const ServeEntry& entry) { stopShare(entry); }, viewport());
    for (auto* button : {view->copyButton(), view->stopButton()})
        button->installEventFilter(this);
    return rows.emplace_back(Row{view, std::nullopt});
}

void ShareList::updateHover() {
    const bool inside = viewport()->underMouse();
    for (const Row& row : rows)
        row.view->setHovered(inside && row.index &&
                             row.view->rect().contains(row.view->mapFromGlobal(QCursor::pos())));
}

void ShareList::stopShare(const ServeEntry& entry) {
    const auto row = std::ranges::find_if(
        rows, [&](const Row& known) { return known.index && known.view->entry().id == entry.id; });
    if (row == rows.end()) return;
    const ShareKey key = shareKey(entries, *row->index);
    stopping.push_back(key);
    row->view->setStopping(true);
    onStop(entry, [list = QPointer(this), key] {
        if (!list) return;
        if (const auto marked = std::ranges::find(list->stopping, key);
            marked != list->stopping.end())
            list->stopping.erase(marked);
        const auto index = indexOf(key, list->entries);
        if (auto* view = index ? list->rowAt(*index) : nullptr) view->setStopping(false);
    });
}

void ShareList::resizeEvent(QResizeEvent*) {
    layOut();
}

void ShareList::scrollContentsBy(int, int) {
    layOut();
}

} // namespace brevane
