// SPDX-License-Identifier: MIT
#include "ShareList.h"

#include "Accessibility.h"
#include "EntryPorts.h"
#include "IconButton.h"
#include "ScrollPadding.h"
#include "SectionHeader.h"
#include "ShareRowView.h"
#include "ShareTexts.h"
#include "Theme.h"

#include <QCoreApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QPointer>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <ranges>
#include <tuple>
#include <utility>

namespace brevane {

bool ShareList::Key::operator<(const Key& other) const {
    return std::tie(hostPort, urlPath, handlerType, occurrence) <
           std::tie(other.hostPort, other.urlPath, other.handlerType, other.occurrence);
}

ShareList::ShareList(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(Theme::listPaddingX, Theme::listPaddingY, Theme::listPaddingX,
                               Theme::listPaddingY);
    column->setSpacing(0);
    serves_ = makeSection(QStringLiteral("Serves"), QStringLiteral("lock.shield"), &Colors::blue,
                          *column);
    funnels_ =
        makeSection(QStringLiteral("Funnels"), QStringLiteral("globe"), &Colors::orange, *column);
    column->addStretch();
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    keepScrollBarInPadding(*this, *column, Theme::listPaddingX);
}

ShareList::Section ShareList::makeSection(const QString& title, const QString& symbol,
                                          ColorRole color, QVBoxLayout& column) {
    auto* header = new SectionHeader(title, symbol, color);
    auto* list = new QWidget;
    setAccessibleRole(*list, QAccessible::List);
    list->setAccessibleName(title);
    auto* layout = new QVBoxLayout(list);
    layout->setContentsMargins(0, 0, 0, Theme::near);
    layout->setSpacing(0);
    for (QWidget* part : {static_cast<QWidget*>(header), list}) {
        column.addWidget(part);
        part->hide();
    }
    return {header, list, layout};
}

void ShareList::setShares(std::vector<ServeEntry> entries,
                          const ManagedServers::InfoMap& managedServers) {
    const auto focused = focusedPlace();
    const QPointer<ShareRowView> focusedRow = focused ? rows_[focused->index] : nullptr;
    const int scrolled = verticalScrollBar()->value();
    // The visible rows and their positions, topmost first.
    std::vector<std::pair<QPointer<ShareRowView>, int>> inView;
    if (scrolled > 0)
        for (ShareRowView* row : rows_)
            if (const int top = topOf(*row);
                top + row->height() > scrolled && top < scrolled + viewport()->height())
                inView.emplace_back(row, top);

    const auto isServe = [](const ServeEntry& entry) { return !entry.isFunnel; };
    const auto firstFunnel = std::ranges::stable_partition(entries, isServe).begin();
    const auto serveCount = firstFunnel - entries.begin();
    auto former = std::exchange(rowsByKey_, {});
    std::vector<ShareRowView*> rows;
    rows.reserve(entries.size());
    for (const ServeEntry& entry : entries) {
        Key key{entry.hostPort, entry.urlPath, entry.handlerType, 0};
        while (rowsByKey_.contains(key))
            ++key.occurrence;
        const auto known = former.extract(key);
        auto* row = known.empty() ? makeRow() : known.mapped();
        row->showShare(entry, managedInfo(entry, managedServers));
        rows.push_back(row);
        rowsByKey_.emplace(std::move(key), row);
    }
    for (const auto& [key, row] : former)
        delete row;
    if (rows != rows_ || !former.empty()) {
        rows_ = std::move(rows);
        const auto split = rows_.begin() + serveCount;
        arrange(serves_, {rows_.begin(), split});
        arrange(funnels_, {split, rows_.end()});
        orderFocus();
        layOutNow();
    }
    markStopping();
    const auto still =
        std::ranges::find_if(inView, [](const auto& row) { return !row.first.isNull(); });
    if (still != inView.end())
        verticalScrollBar()->setValue(scrolled + topOf(*still->first) - still->second);
    if (focused && !rows_.empty()) {
        const auto place = std::ranges::find(rows_, focusedRow.data());
        const auto index = place == rows_.end() ? std::min(focused->index, rows_.size() - 1)
                                                : static_cast<std::size_t>(place - rows_.begin());
        if (const auto now = focusedPlace(); !now || now->index != index)
            focusOn({index, focused->isStopButton});
    }
    updateHover();
}

ShareRowView* ShareList::makeRow() {
    auto* row = new ShareRowView;
    connect(row, &ShareRowView::copyRequested, this, &ShareList::copyRequested);
    connect(row, &ShareRowView::stopRequested, this, &ShareList::stopShare);
    return row;
}

void ShareList::arrange(const Section& section, const std::vector<ShareRowView*>& rows) {
    bool isReordered = false;
    section.layout->setEnabled(false);
    for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
        auto* row = rows[static_cast<std::size_t>(i)];
        const auto* item = section.layout->itemAt(i);
        if (item != nullptr && item->widget() == row) continue;
        isReordered = isReordered || item != nullptr;
        section.layout->insertWidget(i, row);
        // The layout would show and measure it only after the next turn of the event loop.
        row->show();
    }
    section.layout->setEnabled(true);
    // Screen readers read them in stacking order.
    if (isReordered)
        for (ShareRowView* row : rows)
            row->raise();
    section.header->setVisible(!rows.empty());
    section.list->setVisible(!rows.empty());
}

// Qt appends a new control to the window's focus order, wherever it is placed.
void ShareList::orderFocus() {
    // setTabOrder() ignores a widget that takes no focus.
    setFocusPolicy(Qt::TabFocus);
    // From last to first, since Qt searches the widgets between a control and its new place.
    for (ShareRowView* row : std::ranges::reverse_view(rows_)) {
        setTabOrder(this, row->stopButton());
        setTabOrder(this, row->copyButton());
    }
    setFocusPolicy(Qt::NoFocus);
}

// Otherwise rows reach their positions only after the next turn of the event loop.
void ShareList::layOutNow() {
    if (!isVisible()) return;
    for (const Section& section : {serves_, funnels_})
        section.layout->activate();
    widget()->layout()->activate();
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(this, &request);
}

int ShareList::topOf(const ShareRowView& row) const {
    return row.y() + row.parentWidget()->y();
}

// Qt notices a row that moves under the pointer only when the pointer moves.
void ShareList::updateHover() {
    const bool inside = viewport()->underMouse();
    const QPoint pointer = widget()->mapFromGlobal(QCursor::pos());
    for (ShareRowView* row : rows_)
        row->setHovered(inside &&
                        row->geometry().translated(row->parentWidget()->pos()).contains(pointer));
}

void ShareList::scrollContentsBy(int dx, int dy) {
    QScrollArea::scrollContentsBy(dx, dy);
    updateHover();
}

std::optional<ShareList::Place> ShareList::focusedPlace() const {
    QWidget* const focused = window()->focusWidget();
    if (focused == nullptr || !isAncestorOf(focused)) return std::nullopt;
    const auto row = std::ranges::find_if(
        rows_, [&](const ShareRowView* candidate) { return candidate->isAncestorOf(focused); });
    if (row == rows_.end()) return std::nullopt;
    return Place{static_cast<std::size_t>(row - rows_.begin()), (*row)->stopButton() == focused};
}

void ShareList::focusOn(Place place) {
    ShareRowView* row = rows_[place.index];
    (place.isStopButton ? row->stopButton() : row->copyButton())->setFocus(Qt::TabFocusReason);
    // Also show the heading above the first row.
    if (place.index == 0)
        verticalScrollBar()->setValue(0);
    else
        ensureWidgetVisible(row, 0, Theme::listPaddingY);
}

void ShareList::keyPressEvent(QKeyEvent* event) {
    const auto focused = focusedPlace();
    if (!focused) return QScrollArea::keyPressEvent(event);
    const auto last = static_cast<qsizetype>(rows_.size()) - 1;
    const auto page = std::max(1, viewport()->height() / rows_.front()->height() - 1);
    auto index = static_cast<qsizetype>(focused->index);
    switch (event->key()) {
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
        return QScrollArea::keyPressEvent(event);
    }
    window()->setAttribute(Qt::WA_KeyboardFocusChange);
    focusOn(
        {static_cast<std::size_t>(std::clamp<qsizetype>(index, 0, last)), focused->isStopButton});
}

void ShareList::stopShare(const ServeEntry& entry) {
    stoppingPorts_.insert(stopPort(entry));
    markStopping();
    Q_EMIT stopRequested(entry);
}

void ShareList::finishStop(const ServeEntry& entry) {
    stoppingPorts_.erase(stopPort(entry));
    markStopping();
}

// A stop affects all shares of its port.
void ShareList::markStopping() {
    for (ShareRowView* row : rows_)
        row->setStopping(!stoppingPorts_.empty() &&
                         stoppingPorts_.contains(stopPort(row->entry())));
}

} // namespace brevane
