// SPDX-License-Identifier: MIT
#pragma once

#include "Label.h"

#include <QVBoxLayout>
#include <QWidget>

#include <initializer_list>

namespace brevane {

/// One titled group of the form: its label in capitals above its controls.
class FormSection : public QWidget {
    Q_OBJECT
public:
    explicit FormSection(const QString& title = {}, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// Adds a control that the label names.
    void addNamed(QWidget* control);
    void add(QWidget* widget);
    void add(QLayout* layout);

private:
    Label* label_;
    QVBoxLayout* column_;
};

/// A caption that wraps, as hints do.
[[nodiscard]] Label* makeCaption(const QString& text = {});

} // namespace brevane
