// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QTextEdit>

namespace brevane {

/// Text that can be selected but not changed, as high as it needs to be at its width. A word that
/// is longer than a line is broken. Beyond `maximumLines` it scrolls.
class SelectableText : public QTextEdit {
    Q_OBJECT
public:
    SelectableText(TextStyle style, ColorRole color, int maximumLines, QWidget* parent = nullptr);

    /// Replaces the text; equal text changes nothing, so that a selection stays.
    void setShownText(const QString& text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void applyTheme();

    TextStyle style;
    ColorRole color;
    int maximumLines;
};

} // namespace brevane
