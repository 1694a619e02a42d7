// SPDX-License-Identifier: MIT
#pragma once

#include "Label.h"

namespace brevane {

/// The address of a share on one line. A public one is followed by a tag, which keeps its distance
/// from the text however much of that is shown.
class ShareAddress : public Label {
    Q_OBJECT
public:
    explicit ShareAddress(QWidget* parent = nullptr);

    void setPublic(bool on);

    /// Where the tag is drawn; empty without one.
    [[nodiscard]] QRect tagRect() const;

protected:
    [[nodiscard]] int trailingSpace() const override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isPublic_ = false;
};

} // namespace brevane
