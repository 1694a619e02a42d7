// SPDX-License-Identifier: MIT
#pragma once

class QLayout;
class QScrollArea;

namespace brevane {

/// Reduces the trailing padding of the layout `content` by the width of the vertical scroll bar
/// while that is shown, so that the content keeps its width.
void keepScrollBarInPadding(QScrollArea& area, QLayout& content, int padding);

} // namespace brevane
