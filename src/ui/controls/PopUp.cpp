// SPDX-License-Identifier: MIT
#include "PopUp.h"

#include "Theme.h"

#include <QAbstractItemView>
#include <QWheelEvent>

namespace brevane {

PopUp::PopUp(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setFont(theme().font(TextStyle::body));
    connect(&theme(), &Theme::changed, this, [this] { setFont(theme().font(TextStyle::body)); });
    // On Linux, Qt reports the choice as the name, in place of which screen readers speak the
    // label.
    connect(this, &QComboBox::currentTextChanged, this, &QWidget::setAccessibleDescription);
}

void PopUp::showPopup() {
    // Leave the background to the pop-up, which has rounded corners. Each choice first fills its
    // rectangle with the palette's window colour.
    view()->viewport()->setAutoFillBackground(false);
    QPalette palette = view()->palette();
    palette.setColor(QPalette::Window, theme().color(&Colors::popup));
    view()->setPalette(palette);
    view()->setMinimumWidth(view()->sizeHintForColumn(0));
    QComboBox::showPopup();
}

void PopUp::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace brevane
