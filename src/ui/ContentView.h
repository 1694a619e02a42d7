// SPDX-License-Identifier: MIT
#pragma once

#include "MainQueue.h"
#include "ResetTarget.h"
#include "TailscaleService.h"

#include <QPointer>
#include <QWidget>

#include <string>

class QMessageBox;
class QSplitter;

namespace brevane {

class AddServeView;
class EmptyState;
class ErrorBanner;
class ModeHeader;
class ShareList;
class StatusHeader;
class ToastBar;
struct ShareDraft;

/// The main window's content: the shares on the left, the form for a new one on the right, and
/// under both a message for a few seconds. Shows what the service publishes, redrawing at most once
/// per turn of the event loop, and calls the service's operations.
class ContentView : public QWidget {
    Q_OBJECT
public:
    /// The service and its main queue outlive the view.
    ContentView(TailscaleService& service, MainQueue& mainQueue, QWidget* parent = nullptr);
    ~ContentView() override;

    /// Shows a message for three seconds, replacing one that is still shown.
    void showToast(const QString& message);

    /// The target of the last reset requested, whether confirmed or not.
    [[nodiscard]] ResetTarget currentResetTarget() const { return resetTarget_; }

    /// Performs the last reset requested.
    void performReset();

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    [[nodiscard]] QWidget* makeLeftPane();
    [[nodiscard]] QWidget* makeRightPane();
    void shareWidth();
    void matchHeaderHeights();
    void scheduleRedraw();
    void redraw();

    void copyUrl(const QString& url);
    void add(const ShareDraft& draft);
    void stop(const ServeEntry& entry);
    void failToStop(const std::string& output);
    void confirmReset(ResetTarget target);

    TailscaleService& service_;
    MainQueue& mainQueue_;
    ResetTarget resetTarget_ = ResetTarget::all;
    QPointer<QMessageBox> showResetConfirm_;
    int leftWanted_;  ///< the list's width at which the form starts to shrink
    int rightWanted_; ///< the form's width if there is room
    bool redrawScheduled_ = false;
    bool entriesChanged_ = true;
    bool errorChanged_ = true;

    StatusHeader* statusHeader_;
    ErrorBanner* errorBanner_;
    ShareList* list_;
    EmptyState* emptyState_;
    ModeHeader* modeHeader_;
    AddServeView* form_;
    QSplitter* split_;
    ToastBar* toast_;
    Subscription observation_;
    Subscription entriesObservation_;
    Subscription managedServersObservation_;
    Subscription errorObservation_;
};

} // namespace brevane
