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

/// The dragged local file or folder; none if there are several, or it is remote or does not exist.
[[nodiscard]] std::optional<DroppedPath> droppedPath(const QMimeData& data);

} // namespace brevane
