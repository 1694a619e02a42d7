// SPDX-License-Identifier: MIT
#include "FormSection.h"

namespace brevane {

FormSection::FormSection(const QString& title, QWidget* parent)
    : QWidget(parent), label_(new Label(TextStyle::section, &Colors::secondary)),
      column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(6);
    label_->setWordWrap(true);
    column_->addWidget(label_);
    setTitle(title);
}

void FormSection::setTitle(const QString& title) {
    label_->setPlainText(title.toUpper());
}

void FormSection::addNamed(QWidget* control) {
    label_->setBuddy(control);
    add(control);
}

void FormSection::add(QWidget* widget) {
    column_->addWidget(widget);
}

void FormSection::add(QLayout* layout) {
    column_->addLayout(layout);
}

Label* makeCaption(const QString& text) {
    auto* caption = new Label(TextStyle::caption, &Colors::secondary, text);
    caption->setWordWrap(true);
    return caption;
}

} // namespace brevane
