// SPDX-License-Identifier: MIT
#include "QtText.h"

#include <QLocale>
#include <QTextDocument>

namespace brevane {

QString onOneLine(QString text) {
    // Every redraw sets the text, in linear time, and a shared text may have a megabyte.
    constexpr qsizetype half = 2000;
    if (text.size() > 2 * half + 1) text = text.left(half) + u'\u2026' + text.right(half);
    for (QChar& character : text)
        if (character == u'\n' || character == u'\r' || character == u'\t' ||
            character == QChar::LineSeparator || character == QChar::ParagraphSeparator)
            character = u' ';
    return text;
}

QString shownText(std::string_view text) {
    // Converting, laying out or speaking more would block the main thread.
    constexpr qsizetype limit = 10'000;
    constexpr std::size_t longestCharacter = 4;
    QString shown = toQString(text.substr(0, limit * longestCharacter));
    if (shown.size() <= limit) return shown;
    shown.truncate(shown[limit - 1].isHighSurrogate() ? limit - 1 : limit);
    // Counting the characters would take linear time.
    const auto rest = static_cast<qint64>(text.size()) - shown.toUtf8().size();
    return shown + QStringLiteral("… and %1 more")
                       .arg(QLocale().formattedDataSize(rest, 1, QLocale::DataSizeSIFormat));
}

QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpacePre) : text;
}

} // namespace brevane
