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
#include "ShareDraft.h"
#include "ShareList.h"
#include "StatusHeader.h"
#include "StatusLine.h"
#include "ToastBar.h"

#include <QClipboard>
#include <QCoreApplication>
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

ContentView::ContentView(TailscaleService& service, MainQueue& mainQueue, QWidget* parent)
    : QWidget(parent), service_(service), mainQueue_(mainQueue), leftWanted_(leftIdeal),
      rightWanted_(rightIdeal) {
    toast_ = new ToastBar;
    split_ = new QSplitter;
    split_->setChildrenCollapsible(false);
    QWidget* const left = makeLeftPane();
    QWidget* const right = makeRightPane();
    // A splitter measures the panes when they are added, so fill them first.
    redraw();
    split_->addWidget(left);
    split_->addWidget(right);
    split_->setStretchFactor(0, 1);
    split_->setStretchFactor(1, 0);
    split_->setSizes({leftIdeal, rightIdeal});
    connect(split_, &QSplitter::splitterMoved, this, [this] {
        leftWanted_ = std::min(leftIdeal, split_->sizes()[0]);
        rightWanted_ = split_->sizes()[1];
    });
    // A splitter stacks its panes in reverse, and screen readers read them in stacking order.
    split_->widget(0)->lower();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(split_, 1);
    column->addWidget(toast_);

    const auto redrawEntries = [this] { entriesChanged_ = true; };
    entriesObservation_ = service_.entries.willChange.subscribe(redrawEntries);
    managedServersObservation_ = service_.managedServerInfo.willChange.subscribe(redrawEntries);
    errorObservation_ = service_.lastError.willChange.subscribe([this] { errorChanged_ = true; });
    observation_ = service_.objectWillChange.subscribe([this] { scheduleRedraw(); });
}

ContentView::~ContentView() = default;

QWidget* ContentView::makeLeftPane() {
    auto* pane = new Surface(&Colors::pane);
    statusHeader_ = new StatusHeader;
    connect(statusHeader_, &StatusHeader::refreshRequested, this, [this] { service_.refresh(); });
    auto* bar = new SectionBar;
    connect(bar, &SectionBar::resetRequested, this, &ContentView::confirmReset);
    errorBanner_ = new ErrorBanner;
    connect(errorBanner_, &ErrorBanner::clearRequested, this,
            [this] { service_.lastError.set(std::nullopt); });
    list_ = new ShareList;
    connect(list_, &ShareList::copyRequested, this, &ContentView::copyUrl);
    connect(list_, &ShareList::stopRequested, this, &ContentView::stop);
    emptyState_ = new EmptyState;
    auto* column = new QVBoxLayout(pane);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(statusHeader_);
    column->addWidget(Surface::makeDivider());
    column->addWidget(bar);
    column->addWidget(errorBanner_);
    column->addWidget(list_, 1);
    column->addWidget(emptyState_, 1);
    return pane;
}

QWidget* ContentView::makeRightPane() {
    auto* pane = new Surface(&Colors::window);
    modeHeader_ = new ModeHeader;
    form_ = new AddServeView;
    connect(form_, &AddServeView::startRequested, this, &ContentView::add);
    connect(modeHeader_, &ModeHeader::modeChanged, form_, &AddServeView::setMode);
    auto* column = new QVBoxLayout(pane);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    // Reserves the toast's height together with the form's bottom padding, so that the toast does
    // not move or resize the form.
    auto* toastPlace = new QWidget;
    const auto resizePlace = [this, toastPlace] {
        toastPlace->setFixedHeight(toast_->sizeHint().height() - AddServeView::givesWay);
    };
    resizePlace();
    connect(&theme(), &Theme::changed, toastPlace, resizePlace, Qt::QueuedConnection);
    connect(toast_, &ToastBar::visibilityChanged, toastPlace, &QWidget::setHidden);
    connect(toast_, &ToastBar::visibilityChanged, form_, &AddServeView::giveWay);
    column->addWidget(modeHeader_);
    column->addWidget(Surface::makeDivider());
    column->addWidget(form_, 1);
    column->addWidget(toastPlace);
    return pane;
}

void ContentView::showToast(const QString& message) {
    toast_->showToast(message);
}

// As the window narrows, first the list shrinks to `leftWanted_`, then the form to its minimum,
// then the list again.
void ContentView::shareWidth() {
    // Long texts make a pane wider than it otherwise would be.
    QWidget* const left = split_->widget(0);
    QWidget* const form = split_->widget(1);
    left->setMinimumWidth(std::max(leftMinimum, left->minimumSizeHint().width()));
    const int needed = form->minimumSizeHint().width();
    form->setMinimumWidth(std::max(rightMinimum, needed));
    form->setMaximumWidth(std::max(rightMaximum, needed));
    const int both = width() - split_->handleWidth();
    // Larger text needs a wider form.
    const int least = std::max(needed, std::min(rightWanted_, theme().scaled(rightMinimum)));
    const int right = std::clamp(both - leftWanted_, least, std::max(least, rightWanted_));
    split_->setSizes({both - right, right});
}

// Both headers get the height of the taller one.
void ContentView::matchHeaderHeights() {
    constexpr int least = 56;
    const int right = modeHeader_->heightForWidth(modeHeader_->width());
    const int headerHeight = std::max({least, statusHeader_->sizeHint().height(), right});
    statusHeader_->setFixedHeight(headerHeight);
    modeHeader_->setFixedHeight(headerHeight);
}

// A scroll area scrolls only to a focus that moves within it.
bool ContentView::focusNextPrevChild(bool next) {
    const bool moved = QWidget::focusNextPrevChild(next);
    QWidget* const focused = window()->focusWidget();
    for (QWidget* around = focused; around != nullptr; around = around->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(around)) area->ensureWidgetVisible(focused);
    return moved;
}

bool ContentView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Show:
        if (window()->focusWidget() == nullptr) form_->focusSource();
        [[fallthrough]];
    case QEvent::Resize:
    case QEvent::LayoutRequest:
        shareWidth();
        matchHeaderHeights();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void ContentView::scheduleRedraw() {
    if (std::exchange(redrawScheduled_, true)) return;
    QMetaObject::invokeMethod(this, &ContentView::redraw, Qt::QueuedConnection);
}

void ContentView::redraw() {
    redrawScheduled_ = false;
    statusHeader_->setStatus(
        service_.isConnected.get(),
        toQString(statusLine(service_.isConnected.get(), service_.dnsName.get(),
                             service_.tailscaleIP.get())));
    statusHeader_->setLoading(service_.isLoading.get());
    if (std::exchange(errorChanged_, false)) {
        const auto& error = service_.lastError.get();
        errorBanner_->setError(error ? shownText(*error) : QString());
    }
    if (std::exchange(entriesChanged_, false)) {
        const auto rowsBefore = list_->rows().size();
        list_->setShares(service_.entries.get(), service_.managedServerInfo.get());
        list_->setVisible(!service_.entries->empty());
        emptyState_->setVisible(service_.entries->empty());
        if (list_->rows().size() > rowsBefore) {
            // Qt would compare every new widget with every row to find out what to paint of it.
            QCoreApplication::removePostedEvents(nullptr, QEvent::UpdateLater);
            window()->update();
        }
    }
    form_->setHost(service_.dnsName.get());
}

void ContentView::copyUrl(const QString& url) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(url);
    showToast(QStringLiteral("URL copied!"));
}

void ContentView::add(const ShareDraft& draft) {
    service_.add(
        draft.mode, draft.sourceType, draft.source, mountPathWord(draft), draft.background,
        [view = QPointer(this), mode = draft.mode](bool success, const std::string& output) {
            if (!view) return;
            if (success) view->showToast(toQString(startedMessage(mode)));
            view->form_->finishStart(success, output);
        });
}

void ContentView::stop(const ServeEntry& entry) {
    service_.stopEntry(entry,
                       [view = QPointer(this), entry](bool success, const std::string& output) {
                           if (!view) return;
                           view->list_->finishStop(entry);
                           if (success)
                               view->showToast(QStringLiteral("Share stopped"));
                           else
                               view->failToStop(output);
                       });
}

void ContentView::failToStop(const std::string& output) {
    // The refresh that follows every stop has queued a task that clears the error. Queue this one
    // after it, so that the message stays.
    mainQueue_.post([view = QPointer(this), message = std::string(stopFailedMessage(output))] {
        if (view) view->service_.lastError.set(message);
    });
}

void ContentView::confirmReset(ResetTarget target) {
    // An open question keeps its target.
    if (showResetConfirm_) return;
    resetTarget_ = target;
    const ResetTexts texts = resetTexts(target);
    showResetConfirm_ =
        openConfirmation(toQString(texts.title), toQString(texts.message), QStringLiteral("Reset"),
                         window(), [view = QPointer(this)] {
                             if (view) view->performReset();
                         });
}

void ContentView::performReset() {
    const auto done = [view = QPointer(this), target = resetTarget_] {
        if (view) view->showToast(toQString(resetTexts(target).toast));
    };
    const auto whateverTheOutcome = [done](bool, const std::string&) { done(); };
    switch (resetTarget_) {
    case ResetTarget::all:
        return service_.resetAll(done);
    case ResetTarget::serves:
        return service_.resetServes(whateverTheOutcome);
    case ResetTarget::funnels:
        return service_.resetFunnels(whateverTheOutcome);
    }
}

} // namespace brevane
