// SPDX-License-Identifier: MIT
#pragma once

#include "MainQueue.h"
#include "ResetTarget.h"
#include "TailscaleService.h"

#include <QPointer>
#include <QWidget>

#include <functional>
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

/// Everything in the main window: the shares on the left, the form for a new one on the right, and
/// under both a message for a few seconds. It shows what the service publishes, redrawing once per
/// turn of the event loop however much has changed, and calls the service's operations.
class ContentView : public QWidget {
    Q_OBJECT
public:
    /// The service and the main queue, which is the one that the service uses, outlive the view.
    ContentView(TailscaleService& service, MainQueue& mainQueue, QWidget* parent = nullptr);
    ~ContentView() override;

    /// Shows a message for three seconds, in place of any that is still shown.
    void showToast(const QString& message);

    /// What the last reset that was asked for is about, whether or not it was confirmed.
    [[nodiscard]] ResetTarget currentResetTarget() const { return resetTarget_; }

    /// Calls the service for the reset that is pending.
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
    void stop(const ServeEntry& entry, std::function<void()> finished);
    void failToStop(const std::string& output);
    void confirmReset(ResetTarget target);

    TailscaleService& service_;
    MainQueue& mainQueue_;
    ResetTarget resetTarget_ = ResetTarget::all;
    QPointer<QMessageBox> showResetConfirm_;
    int leftWanted_;  ///< how narrow the list is before the form begins to give way
    int rightWanted_; ///< how wide the form is where there is enough
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
