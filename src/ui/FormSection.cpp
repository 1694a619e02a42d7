// SPDX-License-Identifier: MIT
#include "FormSection.h"

namespace brevane {

FormSection::FormSection(const QString& title, QWidget* parent)
    : QWidget(parent), label(new Label(TextStyle::section, &Colors::secondary)),
      column(new QVBoxLayout(this)) {
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(label);
    setTitle(title);
}

void FormSection::setTitle(const QString& title) {
    label->setPlainText(title.toUpper());
}

void FormSection::addNamed(QWidget* control) {
    label->setBuddy(control);
    add(control);
}

void FormSection::add(QWidget* widget) {
    column->addWidget(widget);
}

void FormSection::add(QLayout* layout) {
    column->addLayout(layout);
}

Label* makeCaption(const QString& text) {
    auto* caption = new Label(TextStyle::caption, &Colors::secondary, text);
    caption->setWordWrap(true);
    return caption;
}

} // namespace brevane
