// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string_view>

namespace brevane {

/// Converts UTF-8 to Qt's text.
[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The text with each line break and tab replaced by a space. If it is longer than any window is
/// wide, only its beginning and end.
[[nodiscard]] QString onOneLine(QString text);

/// What a window shows of a UTF-8 text: all of it, or the first 10,000 characters and the size of
/// the rest.
[[nodiscard]] QString shownText(std::string_view text);

/// A tooltip that shows the text literally: Qt would interpret text that looks like HTML.
[[nodiscard]] QString plainToolTip(const QString& text);

} // namespace brevane
