// SPDX-License-Identifier: MIT
#include "ContactSheet.h"

#include <QPainter>

namespace brevane::pictures {

namespace {

constexpr int columns = 4;
constexpr QSize cell{420, 360};
constexpr int captionHeight = 22;

} // namespace

void ContactSheet::add(const QString& name, const QImage& picture) {
    QImage plain = picture;
    plain.setDevicePixelRatio(1);
    frames_.push_back({name, plain.scaled(cell.width() - 20, cell.height() - captionHeight - 10,
                                          Qt::KeepAspectRatio, Qt::SmoothTransformation)});
}

QImage ContactSheet::image() const {
    const int lines = (static_cast<int>(frames_.size()) + columns - 1) / columns;
    QImage sheet(columns * cell.width(), lines * cell.height(), QImage::Format_RGB32);
    sheet.fill(QColor(0x88, 0x88, 0x8c));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    for (int i = 0; i < static_cast<int>(frames_.size()); ++i) {
        const Frame& frame = frames_[static_cast<std::size_t>(i)];
        const QPoint corner(i % columns * cell.width() + 10, i / columns * cell.height() + 10);
        painter.drawImage(corner, frame.picture);
        painter.drawText(QRect(corner.x(), corner.y() + frame.picture.height(), cell.width() - 20,
                               captionHeight),
                         Qt::AlignVCenter, frame.name);
    }
    return sheet;
}

} // namespace brevane::pictures
