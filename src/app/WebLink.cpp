// SPDX-License-Identifier: MIT
#include "WebLink.h"

#include "Color.h"
#include "Painting.h"
#include "QuitWatch.h"
#include "Theme.h"

#include <QDesktopServices>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

namespace brevane {

namespace {

QFont linkFont() {
    QFont font = theme().font(TextStyle::caption);
    font.setWeight(QFont::Medium);
    return font;
}

} // namespace

WebLink::WebLink(const QString& text, const QUrl& site, QWidget* parent) : QAbstractButton(parent) {
    setText(text);
    setAccessibleName(text);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    connect(this, &QAbstractButton::clicked, this, [site] {
        const QuitWatch::Unblocked forTheBrowser;
        QDesktopServices::openUrl(site);
    });
}

QSize WebLink::sizeHint() const {
    return QFontMetrics(linkFont()).size(Qt::TextSingleLine, text()) + QSize(12, 8);
}

void WebLink::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QFont font = linkFont();
    font.setUnderline(underMouse());
    painter.setFont(font);
    painter.setPen(Color::orvale);
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (hasFocus()) drawFocusRing(painter, rect(), Theme::cornerRadius);
}

void WebLink::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace brevane
