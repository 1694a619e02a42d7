// SPDX-License-Identifier: MIT
#pragma once

class QLayout;
class QScrollArea;

namespace brevane {

/// Lets the vertical scroll bar take its place out of the padding at the trailing side of the
/// content, whose layout this is, so that the content is as wide with it as without.
void keepScrollBarInPadding(QScrollArea& area, QLayout& content, int padding);

} // namespace brevane
