// SPDX-License-Identifier: MIT
#pragma once

#include "Label.h"

namespace brevane {

/// The address of a share on one line. A public one is followed by a tag, placed right after the
/// text even if that is shortened.
class ShareAddress : public Label {
    Q_OBJECT
public:
    explicit ShareAddress(QWidget* parent = nullptr);

    void setPublic(bool on);

    /// The tag's rectangle; empty if there is none.
    [[nodiscard]] QRect tagRect() const;

protected:
    [[nodiscard]] int trailingSpace() const override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isPublic_ = false;
};

} // namespace brevane
