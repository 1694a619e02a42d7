// SPDX-License-Identifier: MIT
#include "IconButton.h"

#include "Spinner.h"

#include <QKeyEvent>

#include <utility>

namespace brevane {

IconButton::IconButton(const QString& symbol, const QString& toolTip, ColorRole color,
                       QWidget* parent)
    : QToolButton(parent), symbol_(symbol), color_(color) {
    setToolTip(toolTip);
    setAccessibleName(toolTip);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&theme(), &Theme::changed, this, [this] { updateGeometry(); });
}

QSize IconButton::sizeHint() const {
    const int side = theme().symbolSize() + theme().scaled(bordered_ ? 12 : 10);
    return {side, side};
}

void IconButton::setBusy(bool on) {
    if (isBusy() == on) return;
    if (on) {
        spinner_ = new Spinner(theme().scaled(14), &Colors::secondary, this);
        placeSpinner();
        spinner_->show();
    } else {
        delete std::exchange(spinner_, nullptr);
    }
    update();
}

void IconButton::placeSpinner() {
    if (spinner_ == nullptr) return;
    QRect box = spinner_->rect();
    box.moveCenter(rect().center());
    spinner_->move(box.topLeft());
}

void IconButton::resizeEvent(QResizeEvent* event) {
    QToolButton::resizeEvent(event);
    placeSpinner();
}

// Qt calls this on a focused widget that is disabled; true keeps the focus.
bool IconButton::focusNextPrevChild(bool next) {
    return !isEnabled() || QToolButton::focusNextPrevChild(next);
}

void IconButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click();
        break;
    // A tool button moves the focus with these; leave them to the widget around it.
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
        event->ignore();
        break;
    default:
        QToolButton::keyPressEvent(event);
    }
}

} // namespace brevane
