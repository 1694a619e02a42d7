// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

class QMimeData;

namespace brevane {

/// A file or folder that is being dropped on the window.
struct DroppedPath {
    QString path;
    bool isFolder;
};

/// The one local file or folder among what is dragged; nothing for several, for anything remote and
/// for what does not exist.
[[nodiscard]] std::optional<DroppedPath> droppedPath(const QMimeData& data);

} // namespace brevane
