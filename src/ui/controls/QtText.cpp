// SPDX-License-Identifier: MIT
#include "QtText.h"

#include <QTextDocument>

namespace brevane {

QString onOneLine(QString text) {
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
