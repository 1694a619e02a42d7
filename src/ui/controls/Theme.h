// SPDX-License-Identifier: MIT
#pragma once

#include "Colors.h"
#include "Look.h"

#include <QFont>
#include <QObject>
#include <QPalette>

namespace brevane {

class SystemAppearance;

/// The purpose of a text, which determines its size and weight.
enum class TextStyle {
    headline,    ///< titles
    subheadline, ///< title of a part of the window
    body,        ///< controls
    rowTitle,    ///< first line of a share
    callout,     ///< short messages
    caption,     ///< hints and second lines
    section,     ///< capitals above a group
    tag,         ///< tiny word on a tinted background
    button,      ///< the one prominent button
    field,       ///< typed text, monospaced
    code,        ///< shown commands, monospaced
};

/// All colours, type sizes and distances of the window. The application creates one after the
/// QApplication and before any widget; it installs its own widget style.
class Theme : public QObject {
    Q_OBJECT
public:
    enum class Scheme {
        system, ///< follows the desktop
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
    static constexpr int apart = 14; ///< between groups
    static constexpr int cornerRadius = 6;

    explicit Theme(Scheme scheme = Scheme::system);
    ~Theme() override;

    /// The theme in use, which exists as long as there are widgets.
    [[nodiscard]] static const Theme& current();

    [[nodiscard]] bool isDark() const { return look_.isDark; }
    [[nodiscard]] bool hasHighContrast() const { return look_.hasHighContrast; }
    [[nodiscard]] bool isAnimated() const { return look_.isAnimated; }
    [[nodiscard]] const Colors& colors() const { return colors_; }
    [[nodiscard]] QColor color(ColorRole role) const { return colors_.*role; }

    /// The desktop's font in a style's weight and size, scaled by the desktop's font size.
    [[nodiscard]] QFont font(TextStyle style) const;

    /// A length that grows with the desktop's font size, such as that of a symbol beside text.
    /// `length` is for a desktop font of 10 points at 96 dots per inch.
    [[nodiscard]] int scaled(int length) const;

    /// The side of the box in which a symbol of a system font size is drawn.
    [[nodiscard]] int symbolSize(int fontSize = 13) const;

    /// Loads the fonts that the window starts with; otherwise measuring its controls would.
    void loadFonts() const;

    /// Blocks briefly until the desktop has reported its scheme, so that the first frame is right.
    void awaitDesktop() const;

    /// Whether mnemonics in menus are underlined: while Alt is held.
    [[nodiscard]] bool showsMnemonics() const { return mnemonics_; }

    /// Switches the scheme. With `Scheme::system`, the desktop's next change overrides it.
    void setDark(bool isDark);

    /// Switches all of the look; so does the desktop's next change.
    void setLook(const Look& look);

Q_SIGNALS:
    /// Emitted after colours or fonts have changed. Every widget is repainted anyway.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QPalette palette() const;
    [[nodiscard]] double textScale() const;
    void setMnemonics(bool on);

    SystemAppearance* appearance_ = nullptr;
    Look look_;
    Colors colors_;
    bool mnemonics_ = false;
};

/// The theme in use.
[[nodiscard]] inline const Theme& theme() {
    return Theme::current();
}

} // namespace brevane
