// SPDX-License-Identifier: MIT
#pragma once

#include "ManagedServers.h"
#include "ServeEntry.h"
#include "ShareKey.h"

#include <QAbstractScrollArea>

#include <functional>
#include <vector>

namespace brevane {

class IconButton;
class SectionHeader;
class ShareRowView;

/// The shares, serves above funnels, in a list that scrolls. Only the rows in view exist, as real
/// controls, and are used again for others while it scrolls. When the shares are read anew, rows,
/// focus, pointer, open questions and the scroll position stay with the share that they were at.
class ShareList : public QAbstractScrollArea {
    Q_OBJECT
public:
    using CopyAction = std::function<void(const QString& url)>;
    /// Stops the entry's port and calls `finished` on the main thread when that has been answered.
    using StopAction = std::function<void(const ServeEntry& entry, std::function<void()> finished)>;

    ShareList(CopyAction onCopy, StopAction onStop, QWidget* parent = nullptr);

    void setShares(std::vector<ServeEntry> entries, ManagedServers::InfoMap managedServers);

    [[nodiscard]] const std::vector<ServeEntry>& shares() const { return entries; }
    /// The row that shows a share, if it exists at the moment.
    [[nodiscard]] ShareRowView* rowAt(std::size_t index) const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Row {
        ShareRowView* view;
        std::optional<std::size_t> index; ///< the share that it shows
    };
    /// A place that the keyboard can be at: one of the two buttons of a share.
    struct Stop {
        std::size_t index;
        bool isStopButton;
    };

    [[nodiscard]] int sectionTop(bool funnels) const;
    [[nodiscard]] int rowTop(std::size_t index) const;
    [[nodiscard]] int contentHeight() const;
    [[nodiscard]] std::size_t firstShareBelow(int y) const;
    void layOut();
    void placeHeaders();
    void bindRows(std::size_t first, std::size_t end);
    void bind(Row& row, std::size_t index);
    [[nodiscard]] bool isPinned(const Row& row) const;
    Row& makeRow();
    void updateHover();

    void stopShare(const ServeEntry& entry);
    [[nodiscard]] std::optional<Stop> focusedStop() const;
    void focusOn(Stop stop);
    void leave(bool forwards);
    bool moveByKey(int key);
    void scrollTo(std::size_t index);

    CopyAction onCopy;
    StopAction onStop;
    std::vector<ServeEntry> entries;
    std::size_t serveCount = 0;
    ManagedServers::InfoMap servers;
    std::vector<ShareKey> stopping;
    std::vector<Row> rows;
    SectionHeader* serves;
    SectionHeader* funnels;
};

} // namespace brevane
