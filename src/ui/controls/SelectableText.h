// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QWidget>

namespace brevane {

/// Read-only text that can be selected, as high as its width requires. A word that is longer than a
/// line is broken. Beyond `maximumLines` it scrolls. Creates its text edit only when it first gets
/// a text.
class SelectableText : public QWidget {
    Q_OBJECT
public:
    /// `name` is its accessible name.
    SelectableText(const QString& name, TextStyle style, ColorRole color, int maximumLines,
                   QWidget* parent = nullptr);

    /// Replaces the text; does nothing if it is equal, so that a selection stays.
    void setShownText(const QString& text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class Viewer;

    void makeViewer();
    void applyTheme();

    QString name_;
    TextStyle style_;
    ColorRole color_;
    int maximumLines_;
    Viewer* viewer_ = nullptr;
};

} // namespace brevane
