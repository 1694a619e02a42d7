// SPDX-License-Identifier: MIT
#include "Label.h"

#include "QtText.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace brevane {

Label::Label(TextStyle style, ColorRole color, const QString& text, QWidget* parent)
    : QLabel(text, parent), style_(style), color_(color) {
    setTextFormat(Qt::PlainText);
    setFont(theme().font(style_));
    connect(&theme(), &Theme::changed, this, [this] { setFont(theme().font(style_)); });
}

void Label::setElided() {
    elided_ = true;
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    updateGeometry();
}

void Label::setPlainText(const QString& newText) {
    if (newText == text()) return;
    heights_.clear();
    setText(newText);
}

void Label::setColor(ColorRole color) {
    if (color_ == color) return;
    color_ = color;
    update();
}

QString Label::shownText() const {
    if (!elided_) return text();
    return fontMetrics().elidedText(onOneLine(text()), Qt::ElideMiddle, width() - trailingSpace());
}

QSize Label::sizeHint() const {
    return elided_ ? minimumSizeHint() : QLabel::sizeHint();
}

QSize Label::minimumSizeHint() const {
    return elided_ ? QSize(0, fontMetrics().height()) : QLabel::minimumSizeHint();
}

int Label::heightForWidth(int width) const {
    const auto [height, isNew] = heights_.try_emplace(width);
    if (isNew) height->second = QLabel::heightForWidth(width);
    return height->second;
}

void Label::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme().color(color_));
    if (elided_) {
        // Addresses and paths are written left to right in every language.
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

bool Label::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::ToolTip:
        // Set only on demand, since measuring whether a text is elided is slow.
        if (elided_)
            setToolTip(shownText() == onOneLine(text()) ? QString() : plainToolTip(text()));
        break;
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::ContentsRectChange:
        heights_.clear();
        break;
    default:
        break;
    }
    return QLabel::event(event);
}

} // namespace brevane
