// SPDX-License-Identifier: MIT
#include "QtText.h"

#include <QTextDocument>

namespace brevane {

QString onOneLine(QString text) {
    // Setting a text takes as long as it is, with every redraw; a shared one may have a megabyte.
    constexpr qsizetype half = 2000;
    if (text.size() > 2 * half + 1) text = text.left(half) + u'\u2026' + text.right(half);
    for (QChar& character : text)
        if (character == u'\n' || character == u'\r' || character == u'\t' ||
            character == QChar::LineSeparator || character == QChar::ParagraphSeparator)
            character = u' ';
    return text;
}

QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpacePre) : text;
}

} // namespace brevane
