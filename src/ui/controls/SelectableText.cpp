// SPDX-License-Identifier: MIT
#include "SelectableText.h"

#include <QKeyEvent>
#include <QTextDocument>
#include <QTextOption>

#include <algorithm>
#include <cmath>
#include <memory>

namespace brevane {

SelectableText::SelectableText(TextStyle textStyle, ColorRole textColor, int lines, QWidget* parent)
    : QTextEdit(parent), style(textStyle), color(textColor), maximumLines(lines) {
    setReadOnly(true);
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    applyTheme();
    connect(&theme(), &Theme::changed, this, &SelectableText::applyTheme);
}

void SelectableText::applyTheme() {
    setFont(theme().font(style));
    document()->setDefaultFont(font());
    setTextColor(theme().color(color));
    QPalette shown = palette();
    shown.setColor(QPalette::Text, theme().color(color));
    setPalette(shown);
    const QString text = toPlainText();
    if (!text.isEmpty()) setPlainText(text);
    updateGeometry();
}

void SelectableText::setShownText(const QString& text) {
    if (text == toPlainText()) return;
    setPlainText(text);
    updateGeometry();
}

int SelectableText::heightForWidth(int width) const {
    const std::unique_ptr<QTextDocument> measured(document()->clone());
    measured->setTextWidth(width);
    const int whole = static_cast<int>(std::ceil(measured->size().height()));
    return std::min(whole, maximumLines * fontMetrics().lineSpacing());
}

QSize SelectableText::sizeHint() const {
    const int usual = std::max(width(), theme().scaled(200));
    return {usual, heightForWidth(usual)};
}

QSize SelectableText::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

void SelectableText::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    if (event->oldSize().width() != event->size().width()) updateGeometry();
}

void SelectableText::keyPressEvent(QKeyEvent* event) {
    // What only an editor would take goes on to the view around it.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
        event->key() == Qt::Key_Escape)
        event->ignore();
    else
        QTextEdit::keyPressEvent(event);
}

void SelectableText::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) updateGeometry();
}

} // namespace brevane
