// SPDX-License-Identifier: MIT
#pragma once

#include "ManagedServers.h"
#include "ServeEntry.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class QMessageBox;

namespace brevane {

class IconButton;
class Label;
class ShareAddress;
class SymbolView;

/// One share: its address, what it serves, and the buttons that copy the address and stop its port.
class ShareRowView : public QWidget {
    Q_OBJECT
public:
    explicit ShareRowView(QWidget* parent = nullptr);
    ~ShareRowView() override;

    /// Shows the share as last read. Hover, focus and an open question stay.
    void showShare(const ServeEntry& entry, const std::optional<ManagedServerInfo>& managed);

    [[nodiscard]] const ServeEntry& entry() const { return entry_; }

    /// Marks the row as being stopped, which disables its stop button.
    void setStopping(bool on);
    [[nodiscard]] bool isStopping() const { return stopping_; }

    void setHovered(bool on);
    [[nodiscard]] bool isHovered() const { return hovered_; }

    /// Asks whether to stop the share's port; if confirmed, emits `stopRequested`.
    void confirmStop();
    /// The question while it is open, otherwise null.
    [[nodiscard]] QMessageBox* stopConfirmation() const;

    [[nodiscard]] IconButton* copyButton() const { return copy_; }
    [[nodiscard]] IconButton* stopButton() const { return stop_; }

Q_SIGNALS:
    void copyRequested(const QString& url);
    void stopRequested(const brevane::ServeEntry& entry);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Badge;

    void describeButtons();

    ServeEntry entry_{};
    QString url_;
    bool hovered_ = false;
    bool stopping_ = false;
    Badge* badge_;
    ShareAddress* address_;
    SymbolView* detailSymbol_;
    Label* detail_;
    IconButton* copy_;
    IconButton* stop_;
    QPointer<QMessageBox> showStopConfirm_;
};

} // namespace brevane
