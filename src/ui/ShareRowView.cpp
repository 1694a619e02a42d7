// SPDX-License-Identifier: MIT
#include "ShareRowView.h"

#include "Accessibility.h"
#include "ConfirmationDialog.h"
#include "IconButton.h"
#include "Painting.h"
#include "QtText.h"
#include "ShareAddress.h"
#include "ShareTexts.h"
#include "Symbol.h"
#include "SymbolView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace brevane {

/// The kind of share as a symbol on a rounded background.
class ShareRowView::Badge : public QWidget {
public:
    explicit Badge(QWidget* parent) : QWidget(parent) { setFixedSize(side, side); }

    void setFunnel(bool on) {
        if (std::exchange(isFunnel_, on) != on) update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const Colors& c = theme().colors();
        drawRoundedBox(painter, rect(), 7,
                       isFunnel_ ? Colors::thinned(c.orangeTint, 0.15)
                                 : Colors::thinned(c.blueTint, 0.12));
        drawSymbol(painter, rect(),
                   isFunnel_ ? QStringLiteral("globe") : QStringLiteral("lock.shield"),
                   isFunnel_ ? c.orange : c.blue, 16);
    }

private:
    static constexpr int side = 30;
    bool isFunnel_ = false;
};

ShareRowView::ShareRowView(QWidget* parent)
    : QWidget(parent), badge_(new Badge(this)), address_(new ShareAddress(this)),
      detailSymbol_(new SymbolView({}, &Colors::secondary, 10, this)),
      detail_(new Label(TextStyle::caption, &Colors::secondary, {}, this)),
      copy_(new IconButton(QStringLiteral("doc.on.doc"), QStringLiteral("Copy URL"),
                           &Colors::secondary, this)),
      stop_(new IconButton(QStringLiteral("stop.circle"), QStringLiteral("Stop share"),
                           &Colors::red, this)) {
    setAccessibleRole(*this, QAccessible::ListItem);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    detail_->setElided();
    copy_->setSymbolOpacity(0.5);
    stop_->setSymbolOpacity(0.7);
    connect(copy_, &IconButton::clicked, this, [this] { Q_EMIT copyRequested(url_); });
    connect(stop_, &IconButton::clicked, this, &ShareRowView::confirmStop);

    auto* secondLine = new QHBoxLayout;
    secondLine->setSpacing(5);
    secondLine->addWidget(detailSymbol_);
    secondLine->addWidget(detail_, 1);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(3);
    lines->addStretch();
    lines->addWidget(address_);
    lines->addLayout(secondLine);
    lines->addStretch();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Theme::rowPaddingX, Theme::rowPaddingY, Theme::rowPaddingX,
                            Theme::rowPaddingY);
    row->setSpacing(0);
    row->addWidget(badge_);
    row->addSpacing(12);
    row->addLayout(lines, 1);
    row->addSpacing(Theme::near);
    row->addWidget(copy_);
    row->addWidget(stop_);
}

ShareRowView::~ShareRowView() {
    if (showStopConfirm_) showStopConfirm_->reject();
}

void ShareRowView::showShare(const ServeEntry& entry,
                             const std::optional<ManagedServerInfo>& managed) {
    const ShareDetail detail = shareDetail(entry, managed);
    entry_ = entry;
    url_ = toQString(displayURL(entry));
    badge_->setFunnel(entry.isFunnel);
    address_->setPlainText(url_);
    address_->setPublic(entry.isFunnel);
    describeButtons();
    detailSymbol_->setSymbol(toQString(detail.symbol));
    detail_->setPlainText(toQString(detail.text));
    changeAccessibleName(*this, toQString(spokenShare(entry, managed)));
}

void ShareRowView::setStopping(bool on) {
    if (stopping_ == on) return;
    stopping_ = on;
    stop_->setBusy(on);
    stop_->setEnabled(!on);
    address_->setColor(on ? &Colors::secondary : &Colors::text);
    setAccessibleDescription(on ? QStringLiteral("Stopping") : QString());
    describeButtons();
}

// Every row's buttons have the same names; the description distinguishes them.
void ShareRowView::describeButtons() {
    changeAccessibleDescription(*copy_, url_);
    changeAccessibleDescription(*stop_,
                                stopping_ ? QStringLiteral("Stopping, %1").arg(url_) : url_);
}

void ShareRowView::setHovered(bool on) {
    if (hovered_ == on) return;
    hovered_ = on;
    update();
}

void ShareRowView::confirmStop() {
    if (showStopConfirm_ || stopping_) return;
    showStopConfirm_ =
        openConfirmation(toQString(stopTitle(entry_)), toQString(stopMessage(entry_)),
                         QStringLiteral("Stop"), window(), [row = QPointer(this)] {
                             if (row) Q_EMIT row->stopRequested(row->entry_);
                         });
}

QMessageBox* ShareRowView::stopConfirmation() const {
    return showStopConfirm_;
}

void ShareRowView::enterEvent(QEnterEvent*) {
    setHovered(true);
}

void ShareRowView::leaveEvent(QEvent*) {
    setHovered(false);
}

bool ShareRowView::event(QEvent* event) {
    // Takes precedence over the menu's Copy, which is for text fields.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void ShareRowView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        Q_EMIT copyRequested(url_);
    else
        QWidget::keyPressEvent(event);
}

void ShareRowView::paintEvent(QPaintEvent*) {
    if (!hovered_) return;
    QPainter painter(this);
    drawRoundedBox(painter, rect(), Theme::cornerRadius,
                   Colors::thinned(theme().color(&Colors::text), 0.04));
}

} // namespace brevane
