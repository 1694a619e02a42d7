// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "Surface.h"

namespace brevane {

class Label;

/// The top of the right pane: selects whether a new share is for the tailnet or for everyone.
class ModeHeader : public Surface {
    Q_OBJECT
public:
    explicit ModeHeader(QWidget* parent = nullptr);

Q_SIGNALS:
    void modeChanged(brevane::ServeMode mode);

private:
    void choose(ServeMode mode);

    ServeMode chosen_ = ServeMode::serve;
    Label* caption_;
};

} // namespace brevane
