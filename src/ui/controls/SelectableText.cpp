// SPDX-License-Identifier: MIT
#include "SelectableText.h"

#include <QKeyEvent>
#include <QResizeEvent>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextOption>

#include <algorithm>
#include <cmath>
#include <memory>

namespace brevane {

/// The text edit inside. Keys that only an editor would take go on to the view around it.
class SelectableText::Viewer : public QTextEdit {
public:
    explicit Viewer(QWidget* parent) : QTextEdit(parent) {
        setReadOnly(true);
        setAcceptRichText(false);
        setFrameShape(QFrame::NoFrame);
        setTabChangesFocus(true);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        document()->setDocumentMargin(0);
        viewport()->setAutoFillBackground(false);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape)
            event->ignore();
        else
            QTextEdit::keyPressEvent(event);
    }
};

SelectableText::SelectableText(const QString& spokenName, TextStyle textStyle, ColorRole textColor,
                               int lines, QWidget* parent)
    : QWidget(parent), name(spokenName), style(textStyle), color(textColor), maximumLines(lines) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    applyTheme();
    connect(&theme(), &Theme::changed, this, &SelectableText::applyTheme);
}

void SelectableText::makeViewer() {
    viewer = new Viewer(this);
    viewer->setAccessibleName(name);
    viewer->setGeometry(rect());
    // The keyboard comes to it where it would come to this widget, if that took the focus itself.
    setFocusPolicy(Qt::TabFocus);
    setTabOrder(this, viewer);
    setFocusPolicy(Qt::NoFocus);
    applyTheme();
    viewer->show();
}

void SelectableText::applyTheme() {
    setFont(theme().font(style));
    if (viewer == nullptr) return;
    viewer->setFont(font());
    viewer->document()->setDefaultFont(font());
    viewer->setTextColor(theme().color(color));
    QPalette palette = viewer->palette();
    palette.setColor(QPalette::Text, theme().color(color));
    viewer->setPalette(palette);
    // What is there already keeps the old colour.
    viewer->setPlainText(viewer->toPlainText());
    updateGeometry();
}

void SelectableText::setShownText(const QString& text) {
    if (viewer == nullptr && text.isEmpty()) return;
    if (viewer == nullptr) makeViewer();
    if (text == viewer->toPlainText()) return;
    viewer->setPlainText(text);
    updateGeometry();
}

int SelectableText::heightForWidth(int width) const {
    if (viewer == nullptr) return fontMetrics().height();
    const std::unique_ptr<QTextDocument> measured(viewer->document()->clone());
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
    if (viewer != nullptr) viewer->setGeometry(rect());
    if (event->oldSize().width() != event->size().width()) updateGeometry();
}

} // namespace brevane
