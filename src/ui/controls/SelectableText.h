// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QWidget>

namespace brevane {

/// Text that can be selected but not changed, as high as it needs to be at its width. A word that
/// is longer than a line is broken. Beyond `maximumLines` it scrolls. Costs next to nothing until
/// it has a text to show.
class SelectableText : public QWidget {
    Q_OBJECT
public:
    /// `name` is what screen readers call it.
    SelectableText(const QString& name, TextStyle style, ColorRole color, int maximumLines,
                   QWidget* parent = nullptr);

    /// Replaces the text; equal text changes nothing, so that a selection stays.
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
