// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QLabel>

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

    void setColor(ColorRole color);

    /// The text as it is shown, with an ellipsis where it is shortened.
    [[nodiscard]] QString shownText() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// How much of an elided label's width is left to something else, at the trailing side.
    [[nodiscard]] virtual int trailingSpace() const { return 0; }

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    TextStyle style_;
    ColorRole color_;
    bool elided_ = false;
};

} // namespace brevane
