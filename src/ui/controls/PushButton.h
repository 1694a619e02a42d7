// SPDX-License-Identifier: MIT
#pragma once

#include "Theme.h"

#include <QPushButton>

namespace brevane {

class Spinner;

/// A button with a text, preceded by a symbol or a progress indicator. Drawn by the style. Keeps
/// the focus when it is disabled.
class PushButton : public QPushButton {
    Q_OBJECT
public:
    enum class Kind {
        plain,     ///< outlined
        prominent, ///< filled with a colour: the view's main action
        link,      ///< only coloured text
    };

    explicit PushButton(Kind kind, const QString& text = {}, QWidget* parent = nullptr);

    [[nodiscard]] Kind kind() const { return kind_; }

    void setSymbol(const QString& name);
    [[nodiscard]] const QString& symbol() const { return symbol_; }

    /// The background colour of a prominent button, or the text colour of any other.
    void setTint(ColorRole role);
    [[nodiscard]] ColorRole tint() const { return tint_; }

    /// Shows a progress indicator in place of the symbol.
    void setBusy(bool on);
    [[nodiscard]] bool isBusy() const { return spinner_ != nullptr; }

    /// The rectangles of symbol and text; the first is empty if there is no symbol.
    struct Parts {
        QRect symbol, text;
    };
    [[nodiscard]] Parts parts() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int leadingWidth() const;
    void placeSpinner();

    Kind kind_;
    ColorRole tint_;
    QString symbol_;
    Spinner* spinner_ = nullptr;
};

} // namespace brevane
