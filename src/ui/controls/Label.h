// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QLabel>

#include <map>

namespace brevane {

/// Plain text in one of the theme's styles and colours, which it follows. Wraps, or is elided in
/// the middle of one line with the whole text in its tooltip.
class Label : public QLabel {
    Q_OBJECT
public:
    explicit Label(TextStyle style, ColorRole color = &Colors::text, const QString& text = {},
                   QWidget* parent = nullptr);

    /// Keeps the text on one line, eliding it as necessary.
    void setElided();

    /// Replaces the text; does nothing if it is equal.
    void setPlainText(const QString& text);

    void setColor(ColorRole color);

    /// The text as shown, with an ellipsis if it is elided.
    [[nodiscard]] QString shownText() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    /// The width at an elided label's trailing side that the text leaves free.
    [[nodiscard]] virtual int trailingSpace() const { return 0; }

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    TextStyle style_;
    ColorRole color_;
    bool elided_ = false;
    /// By width. A layout asks for the same heights several times, and breaking lines is slow: it
    /// would be a twelfth of the work before the first frame.
    mutable std::map<int, int> heights_;
};

} // namespace brevane
