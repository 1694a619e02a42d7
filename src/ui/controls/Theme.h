// SPDX-License-Identifier: MIT
#pragma once

#include "Colors.h"

#include <QFont>
#include <QObject>
#include <QPalette>

namespace brevane {

class SystemAppearance;

/// What a piece of text is, and so how large and heavy it is set.
enum class TextStyle {
    headline,    ///< titles
    subheadline, ///< title of a part of the window
    body,        ///< controls
    rowTitle,    ///< first line of a share
    callout,     ///< short messages
    caption,     ///< hints and second lines
    section,     ///< capitals above a group
    tag,         ///< tiny word on a tinted ground
    button,      ///< the one prominent button
    field,       ///< typed text, monospaced
    code,        ///< shown commands, monospaced
};

/// All colours, type sizes and distances of the window, in one place. The application makes one
/// after the QApplication and before any widget; it brings its own widget style.
class Theme : public QObject {
    Q_OBJECT
public:
    enum class Scheme {
        system, ///< light or dark as the desktop is, also when that changes
        light,
        dark,
    };

    // Distances and sizes, in device-independent pixels.
    static constexpr int headerPadding = 14;
    static constexpr int listPaddingX = 14;
    static constexpr int listPaddingY = 8;
    static constexpr int rowPaddingX = 14;
    static constexpr int rowPaddingY = 10;
    static constexpr int formPadding = 20;
    static constexpr int tight = 4;  ///< between the lines of one thing
    static constexpr int near = 8;   ///< between things that belong together
    static constexpr int apart = 16; ///< between groups
    static constexpr int cornerRadius = 6;

    explicit Theme(Scheme scheme = Scheme::system);
    ~Theme() override;

    /// The theme in use. There is one as long as there are widgets.
    [[nodiscard]] static const Theme& current();

    [[nodiscard]] bool isDark() const { return dark_; }
    [[nodiscard]] const Colors& colors() const { return dark_ ? Colors::dark() : Colors::light(); }
    [[nodiscard]] QColor color(ColorRole role) const { return colors().*role; }

    /// The desktop's own font in the size and weight of a style. Sizes follow the desktop's size.
    [[nodiscard]] QFont font(TextStyle style) const;

    /// A length that belongs to text, such as the size of a symbol beside it: it grows with the
    /// desktop's font size. Given for a desktop font of 10 points at 96 dots per inch.
    [[nodiscard]] int scaled(int length) const;

    /// The box in which a symbol of a system font size is drawn.
    [[nodiscard]] int symbolSize(int fontSize = 13) const;

    /// Loads the fonts that the window begins with, which a control would else do when it is
    /// measured.
    void loadFonts() const;

    /// Waits for the desktop to say whether it is light or dark, so that the first frame is right.
    void awaitDesktop() const;

    /// Whether the letters that open menus are underlined: while Alt is held.
    [[nodiscard]] bool showsMnemonics() const { return mnemonics_; }

    /// Leaves the desktop's scheme for a fixed one.
    void setDark(bool isDark);

Q_SIGNALS:
    /// Colours or fonts are other ones now. Painting needs no notice: every widget is repainted.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QPalette palette() const;
    [[nodiscard]] double textScale() const;
    void setMnemonics(bool on);

    SystemAppearance* appearance_ = nullptr;
    bool dark_ = false;
    bool mnemonics_ = false;
};

/// The theme in use.
[[nodiscard]] inline const Theme& theme() {
    return Theme::current();
}

} // namespace brevane
