// SPDX-License-Identifier: MIT
#include "Label.h"

#include "QtText.h"

#include <QPainter>
#include <QStyle>

namespace brevane {

Label::Label(TextStyle labelStyle, ColorRole labelColor, const QString& text, QWidget* parent)
    : QLabel(text, parent), style(labelStyle), color(labelColor) {
    setTextFormat(Qt::PlainText);
    setFont(theme().font(style));
    connect(&theme(), &Theme::changed, this, [this] { setFont(theme().font(style)); });
}

void Label::setElided() {
    elided = true;
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    updateGeometry();
}

void Label::setPlainText(const QString& newText) {
    if (newText == text()) return;
    setText(newText);
    updateToolTip();
}

QString Label::shownText() const {
    return elided ? fontMetrics().elidedText(onOneLine(text()), Qt::ElideMiddle, width()) : text();
}

QSize Label::sizeHint() const {
    if (!elided) return QLabel::sizeHint();
    return {fontMetrics().horizontalAdvance(onOneLine(text())) + 1, fontMetrics().height()};
}

QSize Label::minimumSizeHint() const {
    return elided ? QSize(0, fontMetrics().height()) : QLabel::minimumSizeHint();
}

int Label::heightForWidth(int width) const {
    if (measuredText != text()) {
        measuredText = text();
        heights.clear();
    }
    const auto known = heights.find(width);
    if (known != heights.end()) return known->second;
    return heights[width] = QLabel::heightForWidth(width);
}

void Label::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    heights.clear();
}

void Label::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme().color(color));
    if (elided) {
        // Addresses and paths read from left to right in every language.
        painter.setLayoutDirection(Qt::LeftToRight);
        const auto side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
        painter.drawText(rect(),
                         int(Qt::AlignVCenter | side | Qt::AlignAbsolute) | Qt::TextSingleLine,
                         shownText());
        return;
    }
    painter.drawText(contentsRect(), int(alignment()) | (wordWrap() ? Qt::TextWordWrap : 0),
                     text());
}

void Label::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    updateToolTip();
}

void Label::updateToolTip() {
    if (!elided) return;
    setToolTip(shownText() == onOneLine(text()) ? QString() : plainToolTip(text()));
}

} // namespace brevane
