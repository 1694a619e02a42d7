// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string_view>

namespace brevane {

/// UTF-8 as Qt's text.
[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The text with each line break or tab shown as a blank, for where there is one line only. Of one
/// that is longer than any window is wide, beginning and end.
[[nodiscard]] QString onOneLine(QString text);

/// What a window shows of a text in UTF-8: all of it, or of one of more than 10,000 characters
/// these and the size of what follows.
[[nodiscard]] QString shownText(std::string_view text);

/// A tooltip that shows the text as it is: Qt would take one that looks like HTML for HTML.
[[nodiscard]] QString plainToolTip(const QString& text);

} // namespace brevane
