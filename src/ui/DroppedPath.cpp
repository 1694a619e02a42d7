// SPDX-License-Identifier: MIT
#include "DroppedPath.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace brevane {

std::optional<DroppedPath> droppedPath(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    if (urls.size() != 1 || !urls.first().isLocalFile()) return std::nullopt;
    const QFileInfo file(urls.first().toLocalFile());
    if (!file.exists()) return std::nullopt;
    return DroppedPath{file.filePath(), file.isDir()};
}

} // namespace brevane
