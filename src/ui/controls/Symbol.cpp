// SPDX-License-Identifier: MIT
#include "Symbol.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace brevane {

QPixmap symbolPixmap(const QString& name, const QColor& color, int size, double pixelRatio) {
    const QString key = QStringLiteral("brevane/%1/%2/%3/%4")
                            .arg(name, color.name(QColor::HexArgb))
                            .arg(size)
                            .arg(pixelRatio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = QPixmap(QSize(size, size) * pixelRatio);
    pixmap.fill(Qt::transparent);
    QSvgRenderer drawing(QStringLiteral(":/symbols/%1.svg").arg(name));
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    pixmap.setDevicePixelRatio(pixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

void drawSymbol(QPainter& painter, const QRect& box, const QString& name, const QColor& color,
                int size) {
    const QPoint corner(box.x() + (box.width() - size) / 2, box.y() + (box.height() - size) / 2);
    // The device's own ratio is the widget's, even while that is rendered into an image of another.
    painter.drawPixmap(corner, symbolPixmap(name, color, size, painter.deviceTransform().m11()));
}

} // namespace brevane
