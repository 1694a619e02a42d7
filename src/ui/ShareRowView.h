// SPDX-License-Identifier: MIT
#pragma once

#include "ManagedServers.h"
#include "ServeEntry.h"
#include "ShareTexts.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QHelpEvent;

namespace brevane {

class ConfirmationDialog;
class IconButton;

/// One share: its address, what it serves, and the buttons that copy the address and stop its port.
/// A row shows one share after another while the list scrolls.
class ShareRowView : public QWidget {
    Q_OBJECT
public:
    ShareRowView(std::function<void(const QString& url)> onCopy,
                 std::function<void(const ServeEntry& entry)> onStop, QWidget* parent = nullptr);
    ~ShareRowView() override;

    /// Shows this share from now on. The pointer, the focus and an open question stay, as for the
    /// same share read anew.
    void showShare(const ServeEntry& shown, const std::optional<ManagedServerInfo>& managed);

    [[nodiscard]] const ServeEntry& entry() const { return share; }

    /// Marks the row, and keeps it from being stopped again, until the command has answered.
    void setStopping(bool on);
    [[nodiscard]] bool isStopping() const { return stopping; }

    void setHovered(bool on);
    [[nodiscard]] bool isHovered() const { return hovered; }

    /// Asks whether to stop the share's port, and on a yes calls `onStop`.
    void confirmStop();
    /// The question, while it is open.
    [[nodiscard]] ConfirmationDialog* stopConfirmation() const;
    void dismissConfirmation();

    [[nodiscard]] IconButton* copyButton() const { return copy; }
    [[nodiscard]] IconButton* stopButton() const { return stop; }

    /// Where the parts that are not controls are drawn.
    struct Geometry {
        QRect badge, url, tag, symbol, detail;
    };
    [[nodiscard]] Geometry geometryOfParts() const;

    /// How high every row is with the fonts in use.
    [[nodiscard]] static int rowHeight();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void placeButtons();
    void showToolTip(const QHelpEvent& event);
    void drawBadge(QPainter& painter, const QRect& box) const;
    void drawTag(QPainter& painter, const QRect& box) const;
    void drawText(QPainter& painter, const QRect& box, const QString& text) const;

    ServeEntry share{};
    QString url;
    QString detail;
    QString detailSymbol;
    std::function<void(const QString&)> onCopy;
    std::function<void(const ServeEntry&)> onStop;
    bool hovered = false;
    bool stopping = false;
    IconButton* copy;
    IconButton* stop;
    QPointer<ConfirmationDialog> showStopConfirm;
};

} // namespace brevane
