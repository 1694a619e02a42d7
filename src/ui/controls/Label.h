// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QLabel>

#include <map>

namespace brevane {

/// Plain text in one of the theme's styles and colours, which it follows. Wraps, or stays on one
/// line and is shortened in the middle with the whole text in its tooltip.
class Label : public QLabel {
    Q_OBJECT
public:
    explicit Label(TextStyle style, ColorRole color = &Colors::text, const QString& text = {},
                   QWidget* parent = nullptr);

    /// Keeps the text on one line that may be narrower than the text.
    void setElided();

    /// Replaces the text; equal text changes nothing.
    void setPlainText(const QString& text);

    /// The text as it is shown, with an ellipsis where it is shortened.
    [[nodiscard]] QString shownText() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateToolTip();

    TextStyle style;
    ColorRole color;
    bool elided = false;

    // Layouts ask for the same heights many times over, and breaking lines takes long.
    mutable std::map<int, int> heights; // by width
    mutable QString measuredText;
};

} // namespace brevane
