// SPDX-License-Identifier: MIT
#pragma once

#include "Stage.h"

#include <QString>

#include <functional>
#include <vector>

namespace brevane::pictures {

/// One state of the window.
struct Scene {
    QString name;
    std::function<void(Stage&)> enter;
};

/// All scenes, in the order of the contact sheet.
[[nodiscard]] std::vector<Scene> allScenes();

} // namespace brevane::pictures
