// SPDX-License-Identifier: MIT
#pragma once

#include "ManagedServers.h"
#include "ServeEntry.h"
#include "Theme.h"

#include <QScrollArea>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QVBoxLayout;

namespace brevane {

class SectionHeader;
class ShareRowView;

/// The shares, serves above funnels, in a scrolling list. After a refresh, each share keeps its
/// row, focus, hover, open question and place in the view.
class ShareList : public QScrollArea {
    Q_OBJECT
public:
    explicit ShareList(QWidget* parent = nullptr);

    void setShares(std::vector<ServeEntry> entries, const ManagedServers::InfoMap& managedServers);

    /// Unmarks the rows of the entry's port after its stop, which `stopRequested` asked for.
    void finishStop(const ServeEntry& entry);

    /// The rows from top to bottom.
    [[nodiscard]] const std::vector<ShareRowView*>& rows() const { return rows_; }

Q_SIGNALS:
    void copyRequested(const QString& url);
    /// The rows of the entry's port are marked as being stopped until `finishStop()`.
    void stopRequested(const brevane::ServeEntry& entry);

protected:
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// The shares of one kind under their heading.
    struct Section {
        SectionHeader* header;
        QWidget* list;
        QVBoxLayout* layout;
    };
    /// Identifies a share across refreshes, each of which assigns new `id`s.
    struct Key {
        std::string hostPort;
        std::string urlPath;
        ServeEntry::HandlerType handlerType;
        std::size_t occurrence; ///< number of shares before it with the same three values

        bool operator<(const Key& other) const;
    };
    /// One of the two buttons of a row.
    struct Place {
        std::size_t index;
        bool isStopButton;
    };

    [[nodiscard]] Section makeSection(const QString& title, const QString& symbol, ColorRole color,
                                      QVBoxLayout& column);
    static void arrange(const Section& section, const std::vector<ShareRowView*>& rows);
    void orderFocus();
    void layOutNow();
    [[nodiscard]] int topOf(const ShareRowView& row) const;
    void updateHover();

    [[nodiscard]] std::optional<Place> focusedPlace() const;
    void focusOn(Place place);
    [[nodiscard]] ShareRowView* makeRow();
    void stopShare(const ServeEntry& entry);
    void markStopping();

    std::map<Key, ShareRowView*> rowsByKey_;
    std::vector<ShareRowView*> rows_;
    std::set<std::string> stoppingPorts_;
    Section serves_;
    Section funnels_;
};

} // namespace brevane
