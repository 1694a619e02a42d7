// SPDX-License-Identifier: MIT
#include "ShareRowView.h"

#include "Accessibility.h"
#include "ConfirmationDialog.h"
#include "IconButton.h"
#include "Painting.h"
#include "QtText.h"
#include "Symbol.h"
#include "Theme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace brevane {

namespace {

constexpr int badgeSide = 30;
constexpr int badgeRadius = 7;
constexpr int betweenBadgeAndText = 12;
constexpr int betweenLines = 3;
constexpr int tagPaddingX = 4;
constexpr int tagPaddingY = 2;
const auto publicTag = QStringLiteral("PUBLIC");

} // namespace

ShareRowView::ShareRowView(std::function<void(const QString&)> copyAction,
                           std::function<void(const ServeEntry&)> stopAction, QWidget* parent)
    : QWidget(parent), onCopy(std::move(copyAction)), onStop(std::move(stopAction)),
      copy(new IconButton(QStringLiteral("doc.on.doc"), tr("Copy URL"), &Colors::secondary, this)),
      stop(new IconButton(QStringLiteral("stop.circle"), tr("Stop share"), &Colors::red, this)) {
    setAccessibleRole(*this, QAccessible::ListItem);
    copy->setSymbolOpacity(0.5);
    stop->setSymbolOpacity(0.7);
    for (auto* button : {copy, stop}) {
        // The list moves the focus from row to row itself: only some of its rows exist.
        button->setFocusPolicy(Qt::ClickFocus);
        button->installEventFilter(this);
    }
    connect(copy, &IconButton::clicked, this, [this] { onCopy(url); });
    connect(stop, &IconButton::clicked, this, &ShareRowView::confirmStop);
}

ShareRowView::~ShareRowView() {
    dismissConfirmation();
}

void ShareRowView::showShare(const ServeEntry& shown,
                             const std::optional<ManagedServerInfo>& managed) {
    const ShareDetail shownDetail = shareDetail(shown, managed);
    share = shown;
    url = toQString(displayURL(shown));
    detail = toQString(shownDetail.text);
    detailSymbol = toQString(shownDetail.symbol);
    if (const QString spoken = toQString(spokenShare(shown, managed)); spoken != accessibleName())
        setAccessibleName(spoken);
    update();
}

void ShareRowView::setStopping(bool on) {
    if (stopping == on) return;
    stopping = on;
    stop->setBusy(on);
    setAccessibleDescription(on ? tr("Stopping") : QString());
    update();
}

void ShareRowView::setHovered(bool on) {
    if (hovered == on) return;
    hovered = on;
    update();
}

void ShareRowView::confirmStop() {
    if (showStopConfirm || stopping) return;
    showStopConfirm = new ConfirmationDialog(toQString(stopTitle(share)),
                                             toQString(stopMessage(share)), tr("Stop"), window());
    connect(showStopConfirm, &QDialog::accepted, this, [this] { onStop(share); });
    showStopConfirm->open();
}

ConfirmationDialog* ShareRowView::stopConfirmation() const {
    return showStopConfirm;
}

void ShareRowView::dismissConfirmation() {
    if (!showStopConfirm) return;
    showStopConfirm->disconnect(this);
    showStopConfirm->reject();
    showStopConfirm.clear();
}

int ShareRowView::rowHeight() {
    const int lines =
        QFontMetrics(theme().font(TextStyle::rowTitle)).height() + betweenLines +
        std::max(QFontMetrics(theme().font(TextStyle::caption)).height(), theme().symbolSize(10));
    return std::max(badgeSide, lines) + 2 * Theme::rowPaddingY;
}

ShareRowView::Geometry ShareRowView::geometryOfParts() const {
    const QFontMetrics title(theme().font(TextStyle::rowTitle));
    const QFontMetrics caption(theme().font(TextStyle::caption));
    const QFontMetrics tag(theme().font(TextStyle::tag));
    const QRect content = rect().adjusted(Theme::rowPaddingX, 0, -Theme::rowPaddingX, 0);
    const int side = copy->sizeHint().width();
    const int textX = content.x() + badgeSide + betweenBadgeAndText;
    const int textWidth = std::max(0, content.right() + 1 - 2 * side - Theme::near - textX);
    const int symbolSide = theme().symbolSize(10);
    const int secondHeight = std::max(caption.height(), symbolSide);
    const int top = (height() - title.height() - betweenLines - secondHeight) / 2;

    const QSize tagSize = share.isFunnel ? QSize(tag.horizontalAdvance(publicTag) + 2 * tagPaddingX,
                                                 tag.height() + 2 * tagPaddingY)
                                         : QSize(0, 0);
    const int tagSpace = share.isFunnel ? tagSize.width() + 6 : 0;
    const int urlWidth =
        std::min(title.horizontalAdvance(onOneLine(url)) + 1, std::max(0, textWidth - tagSpace));
    const int secondY = top + title.height() + betweenLines;
    const auto mirrored = [&](const QRect& box) {
        return QStyle::visualRect(layoutDirection(), rect(), box);
    };
    return {
        .badge = mirrored({content.x(), (height() - badgeSide) / 2, badgeSide, badgeSide}),
        .url = mirrored({textX, top, urlWidth, title.height()}),
        .tag = mirrored({textX + urlWidth + 6, top + (title.height() - tagSize.height()) / 2,
                         tagSize.width(), tagSize.height()}),
        .symbol =
            mirrored({textX, secondY + (secondHeight - symbolSide) / 2, symbolSide, symbolSide}),
        .detail = mirrored({textX + symbolSide + 5, secondY,
                            std::max(0, textWidth - symbolSide - 5), secondHeight}),
    };
}

void ShareRowView::placeButtons() {
    const QSize size = copy->sizeHint();
    const int y = (height() - size.height()) / 2;
    const int stopX = width() - Theme::rowPaddingX - size.width();
    const auto mirrored = [&](const QRect& box) {
        return QStyle::visualRect(layoutDirection(), rect(), box);
    };
    stop->setGeometry(mirrored({{stopX, y}, size}));
    copy->setGeometry(mirrored({{stopX - size.width(), y}, size}));
}

void ShareRowView::resizeEvent(QResizeEvent*) {
    placeButtons();
}

void ShareRowView::enterEvent(QEnterEvent*) {
    setHovered(true);
}

void ShareRowView::leaveEvent(QEvent*) {
    setHovered(false);
}

bool ShareRowView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        showToolTip(*static_cast<QHelpEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::LayoutDirectionChange) placeButtons();
    return QWidget::event(event);
}

void ShareRowView::showToolTip(const QHelpEvent& event) {
    const Geometry parts = geometryOfParts();
    const QFontMetrics title(theme().font(TextStyle::rowTitle));
    const QFontMetrics caption(theme().font(TextStyle::caption));
    QString text;
    if (parts.url.contains(event.pos()) &&
        title.horizontalAdvance(onOneLine(url)) > parts.url.width())
        text = url;
    if (parts.detail.contains(event.pos()) &&
        caption.horizontalAdvance(onOneLine(detail)) > parts.detail.width())
        text = detail;
    QToolTip::showText(event.globalPos(), plainToolTip(text), this);
}

bool ShareRowView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (!key->matches(QKeySequence::Copy)) return QWidget::eventFilter(watched, event);
    // Claimed before the menu's own Copy, which is for text fields.
    if (event->type() == QEvent::KeyPress) onCopy(url);
    event->accept();
    return true;
}

void ShareRowView::drawBadge(QPainter& painter, const QRect& box) const {
    const bool isFunnel = share.isFunnel;
    const Colors& c = theme().colors();
    drawRoundedBox(painter, box, badgeRadius,
                   isFunnel ? Colors::thinned(c.orangeTint, 0.15)
                            : Colors::thinned(c.blueTint, 0.12));
    drawSymbol(painter, box, isFunnel ? QStringLiteral("globe") : QStringLiteral("lock.shield"),
               isFunnel ? c.orange : c.blue, 16);
}

void ShareRowView::drawTag(QPainter& painter, const QRect& box) const {
    drawRoundedBox(painter, box, 3, Colors::thinned(theme().color(&Colors::orangeTint), 0.15));
    painter.setFont(theme().font(TextStyle::tag));
    painter.setPen(theme().color(&Colors::orange));
    painter.drawText(box, Qt::AlignCenter, publicTag);
}

void ShareRowView::drawText(QPainter& painter, const QRect& box, const QString& text) const {
    const auto side = layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
    painter.drawText(
        box, int(Qt::AlignVCenter | side | Qt::AlignAbsolute) | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(onOneLine(text), Qt::ElideMiddle, box.width()));
}

void ShareRowView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    // Addresses and paths read from left to right in every language.
    painter.setLayoutDirection(Qt::LeftToRight);
    const Colors& c = theme().colors();
    if (hovered)
        drawRoundedBox(painter, rect(), Theme::cornerRadius, Colors::thinned(c.text, 0.04));
    const Geometry parts = geometryOfParts();
    if (stopping) painter.setOpacity(0.5);
    drawBadge(painter, parts.badge);
    painter.setPen(c.text);
    painter.setFont(theme().font(TextStyle::rowTitle));
    drawText(painter, parts.url, url);
    if (share.isFunnel) drawTag(painter, parts.tag);
    drawSymbol(painter, parts.symbol, detailSymbol, c.secondary, parts.symbol.width());
    painter.setPen(c.secondary);
    painter.setFont(theme().font(TextStyle::caption));
    drawText(painter, parts.detail, detail);
}

} // namespace brevane
