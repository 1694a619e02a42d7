// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace brevane::pictures {

/// Thumbnails in a grid, each with its name below.
class ContactSheet {
public:
    void add(const QString& name, const QImage& picture);
    [[nodiscard]] QImage image() const;

private:
    struct Frame {
        QString name;
        QImage picture;
    };
    std::vector<Frame> frames_;
};

} // namespace brevane::pictures
