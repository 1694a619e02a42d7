// SPDX-License-Identifier: MIT
#include "ContentView.h"

#include "AddServeView.h"
#include "ConfirmationDialog.h"
#include "EmptyState.h"
#include "ErrorBanner.h"
#include "FormTexts.h"
#include "ModeHeader.h"
#include "QtText.h"
#include "SectionBar.h"
#include "ShareList.h"
#include "StatusHeader.h"
#include "StatusLine.h"
#include "ToastBar.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QScrollArea>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace brevane {

namespace {

constexpr int leftMinimum = 310;
constexpr int leftIdeal = 400;
constexpr int rightMinimum = 280;
constexpr int rightIdeal = 340;
constexpr int rightMaximum = 400;

} // namespace

ContentView::ContentView(TailscaleService& ownService, MainQueue& ownMainQueue, QWidget* parent)
    : QWidget(parent), service(ownService), mainQueue(ownMainQueue), leftWanted(leftIdeal),
      rightWanted(rightIdeal) {
    toast = new ToastBar;
    split = new QSplitter;
    split->setChildrenCollapsible(false);
    QWidget* const left = makeLeftPane();
    QWidget* const right = makeRightPane();
    // A splitter measures what it gets: it should be what will be shown.
    redraw();
    split->addWidget(left);
    split->addWidget(right);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 0);
    split->setSizes({leftIdeal, rightIdeal});
    connect(split, &QSplitter::splitterMoved, this, [this] {
        leftWanted = std::min(leftIdeal, split->sizes()[0]);
        rightWanted = split->sizes()[1];
    });
    // A splitter puts each new pane before the others, which is the order that screen readers take.
    split->widget(0)->lower();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(split, 1);
    column->addWidget(toast);

    const auto redrawEntries = [this] { entriesChanged = true; };
    entriesObservation = service.entries.willChange.subscribe(redrawEntries);
    managedServersObservation = service.managedServerInfo.willChange.subscribe(redrawEntries);
    observation = service.objectWillChange.subscribe([this] { scheduleRedraw(); });
    form->focusSource();
}

ContentView::~ContentView() = default;

QWidget* ContentView::makeLeftPane() {
    auto* pane = new Surface(&Colors::pane);
    pane->setMinimumWidth(leftMinimum);
    statusHeader = new StatusHeader;
    connect(statusHeader, &StatusHeader::refreshRequested, this, [this] { service.refresh(); });
    auto* bar = new SectionBar;
    connect(bar, &SectionBar::resetRequested, this, &ContentView::confirmReset);
    errorBanner = new ErrorBanner;
    connect(errorBanner, &ErrorBanner::clearRequested, this,
            [this] { service.lastError.set(std::nullopt); });
    list = new ShareList([this](const QString& url) { copyUrl(url); },
                         [this](const ServeEntry& entry, std::function<void()> finished) {
                             stop(entry, std::move(finished));
                         });
    emptyState = new EmptyState;
    auto* column = new QVBoxLayout(pane);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(statusHeader);
    column->addWidget(Surface::makeDivider());
    column->addWidget(bar);
    column->addWidget(errorBanner);
    column->addWidget(list, 1);
    column->addWidget(emptyState, 1);
    return pane;
}

QWidget* ContentView::makeRightPane() {
    auto* pane = new Surface(&Colors::window);
    pane->setMinimumWidth(rightMinimum);
    pane->setMaximumWidth(rightMaximum);
    modeHeader = new ModeHeader;
    form = new AddServeView(service, [this](const QString& message) { showToast(message); });
    connect(modeHeader, &ModeHeader::modeChanged, form, &AddServeView::setMode);
    auto* column = new QVBoxLayout(pane);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    // What the toast takes from the window it takes from here and from the form's padding, so that
    // the form stays as it is.
    auto* toastPlace = new QWidget;
    const auto resizePlace = [this, toastPlace] {
        toastPlace->setFixedHeight(toast->sizeHint().height() - AddServeView::givesWay);
    };
    resizePlace();
    connect(&theme(), &Theme::changed, toastPlace, resizePlace, Qt::QueuedConnection);
    connect(toast, &ToastBar::visibilityChanged, toastPlace, &QWidget::setHidden);
    connect(toast, &ToastBar::visibilityChanged, form, &AddServeView::giveWay);
    column->addWidget(modeHeader);
    column->addWidget(Surface::makeDivider());
    column->addWidget(form, 1);
    column->addWidget(toastPlace);
    return pane;
}

void ContentView::showToast(const QString& message) {
    toast->showToast(message);
}

// Where there is not enough for both panes, the list gives way last.
void ContentView::shareWidth() {
    const int both = width() - split->handleWidth();
    // Larger text needs more of it.
    const int least = std::min(rightWanted, theme().scaled(rightMinimum));
    const int right = std::clamp(both - leftWanted, least, rightWanted);
    split->setSizes({both - right, right});
}

// Both headers are as high as the higher one needs to be.
void ContentView::matchHeaderHeights() {
    constexpr int least = 56;
    const int right = modeHeader->heightForWidth(modeHeader->width());
    const int headerHeight = std::max({least, statusHeader->sizeHint().height(), right});
    statusHeader->setFixedHeight(headerHeight);
    modeHeader->setFixedHeight(headerHeight);
}

// A scroll area by itself follows only a focus that moves within it.
bool ContentView::focusNextPrevChild(bool next) {
    const bool moved = QWidget::focusNextPrevChild(next);
    QWidget* const focused = window()->focusWidget();
    for (QWidget* around = focused; around != nullptr; around = around->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(around)) area->ensureWidgetVisible(focused);
    return moved;
}

bool ContentView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Resize:
        shareWidth();
        [[fallthrough]];
    case QEvent::Show:
    case QEvent::LayoutRequest:
        matchHeaderHeights();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void ContentView::scheduleRedraw() {
    if (std::exchange(redrawScheduled, true)) return;
    QMetaObject::invokeMethod(this, &ContentView::redraw, Qt::QueuedConnection);
}

void ContentView::redraw() {
    redrawScheduled = false;
    statusHeader->setStatus(service.isConnected.get(),
                            toQString(statusLine(service.isConnected.get(), service.dnsName.get(),
                                                 service.tailscaleIP.get())));
    statusHeader->setLoading(service.isLoading.get());
    errorBanner->setError(toQString(service.lastError.get().value_or("")));
    if (std::exchange(entriesChanged, false)) {
        list->setShares(service.entries.get(), service.managedServerInfo.get());
        list->setVisible(!service.entries->empty());
        emptyState->setVisible(service.entries->empty());
    }
    form->redraw();
}

void ContentView::copyUrl(const QString& url) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(url);
    showToast(tr("URL copied!"));
}

void ContentView::stop(const ServeEntry& entry, std::function<void()> finished) {
    service.stopEntry(entry,
                      [view = QPointer(this), finished](bool success, const std::string& output) {
                          if (!view) return;
                          finished();
                          if (success)
                              view->showToast(tr("Share stopped"));
                          else
                              view->failToStop(output);
                      });
}

void ContentView::failToStop(const std::string& output) {
    // The refresh that every stop begins has queued a task that clears the error. Queued behind it,
    // this one is not wiped before anyone has seen it.
    mainQueue.post([view = QPointer(this), message = stopFailedMessage(output)] {
        if (view) view->service.lastError.set(message);
    });
}

void ContentView::confirmReset(ResetTarget target) {
    // What the open question asks about is what it will do.
    if (showResetConfirm) return;
    resetTarget = target;
    const ResetTexts texts = resetTexts(target);
    showResetConfirm = openConfirmation(toQString(texts.title), toQString(texts.message),
                                        tr("Reset"), window(), [view = QPointer(this)] {
                                            if (view) view->performReset();
                                        });
}

void ContentView::performReset() {
    const auto done = [view = QPointer(this), target = resetTarget] {
        if (view) view->showToast(toQString(resetTexts(target).toast));
    };
    const auto whateverTheOutcome = [done](bool, const std::string&) { done(); };
    switch (resetTarget) {
    case ResetTarget::all:
        return service.resetAll(done);
    case ResetTarget::serves:
        return service.resetServes(whateverTheOutcome);
    case ResetTarget::funnels:
        return service.resetFunnels(whateverTheOutcome);
    }
}

} // namespace brevane
