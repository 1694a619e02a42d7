// SPDX-License-Identifier: MIT
#include "SelectableText.h"

#include <QFocusFrame>
#include <QKeyEvent>
#include <QLocale>
#include <QPointer>
#include <QResizeEvent>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace brevane {

namespace {

/// More characters than fit into the lines shown at once.
constexpr int longText = 5000;

QTextOption::WrapMode wrapMode(const QString& text) {
    // Searching each line for a word boundary takes quadratic time.
    return text.size() > longText ? QTextOption::WrapAnywhere
                                  : QTextOption::WrapAtWordBoundaryOrAnywhere;
}

} // namespace

/// The text edit inside. Ignores Return and Escape, so that the view around it gets them.
class SelectableText::Viewer : public QTextEdit {
public:
    explicit Viewer(QWidget* parent) : QTextEdit(parent) {
        setReadOnly(true);
        setAcceptRichText(false);
        setFrameShape(QFrame::NoFrame);
        setTabChangesFocus(true);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        document()->setDocumentMargin(0);
        viewport()->setAutoFillBackground(false);
    }

protected:
    void focusInEvent(QFocusEvent* event) override {
        QTextEdit::focusInEvent(event);
        if (event->reason() == Qt::MouseFocusReason) return;
        if (!ring_) ring_ = new QFocusFrame(this);
        ring_->setWidget(this);
    }
    void focusOutEvent(QFocusEvent* event) override {
        QTextEdit::focusOutEvent(event);
        if (ring_) ring_->setWidget(nullptr);
    }

    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape)
            event->ignore();
        else
            QTextEdit::keyPressEvent(event);
    }

private:
    // Outside the text, which extends to the edge. Qt reparents it to an ancestor of this widget.
    QPointer<QFocusFrame> ring_;
};

SelectableText::SelectableText(const QString& name, TextStyle style, ColorRole color, int lines,
                               QWidget* parent)
    : QWidget(parent), name_(name), style_(style), color_(color), maximumLines_(lines) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    applyTheme();
    connect(&theme(), &Theme::changed, this, &SelectableText::applyTheme);
}

void SelectableText::makeViewer() {
    viewer_ = new Viewer(this);
    viewer_->setAccessibleName(name_);
    viewer_->setGeometry(rect());
    // Puts it at this widget's place in the focus order; setTabOrder() ignores a widget that takes
    // no focus.
    setFocusPolicy(Qt::TabFocus);
    setTabOrder(this, viewer_);
    setFocusPolicy(Qt::NoFocus);
    applyTheme();
    viewer_->show();
}

void SelectableText::applyTheme() {
    setFont(theme().font(style_));
    if (viewer_ == nullptr) return;
    viewer_->setFont(font());
    viewer_->document()->setDefaultFont(font());
    viewer_->setTextColor(theme().color(color_));
    QPalette palette = viewer_->palette();
    palette.setColor(QPalette::Text, theme().color(color_));
    viewer_->setPalette(palette);
    // Existing text keeps the old colour, so set it again.
    viewer_->setPlainText(viewer_->toPlainText());
    updateGeometry();
}

void SelectableText::setShownText(const QString& text) {
    if (viewer_ == nullptr && text.isEmpty()) return;
    if (viewer_ == nullptr) makeViewer();
    if (text == viewer_->toPlainText()) return;
    if (viewer_->wordWrapMode() != wrapMode(text)) {
        // Setting the mode lays out the old text again.
        viewer_->clear();
        viewer_->setWordWrapMode(wrapMode(text));
    }
    viewer_->setPlainText(text);
    updateGeometry();
}

int SelectableText::heightForWidth(int width) const {
    if (viewer_ == nullptr) return fontMetrics().height();
    const QString text = viewer_->toPlainText();
    QTextDocument measured;
    measured.setDocumentMargin(0);
    measured.setDefaultFont(font());
    QTextOption option;
    option.setWrapMode(wrapMode(text));
    measured.setDefaultTextOption(option);
    measured.setPlainText(text.left(longText));
    measured.setTextWidth(width);
    const int whole = static_cast<int>(std::ceil(measured.size().height()));
    return std::min(whole, maximumLines_ * fontMetrics().lineSpacing());
}

QSize SelectableText::sizeHint() const {
    // Until a layout has set it, the width means nothing.
    const int wide = testAttribute(Qt::WA_Resized) ? width() : theme().scaled(200);
    return {wide, heightForWidth(wide)};
}

QSize SelectableText::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

void SelectableText::resizeEvent(QResizeEvent* event) {
    if (viewer_ != nullptr) viewer_->setGeometry(rect());
    if (event->oldSize().width() != event->size().width()) updateGeometry();
}

} // namespace brevane
