// SPDX-License-Identifier: MIT
#pragma once

#include <QButtonGroup>
#include <QVariantAnimation>
#include <QWidget>

namespace brevane {

/// A row of choices, exactly one of which is selected. Each is a radio button for the keyboard and
/// for screen readers.
class SegmentedControl : public QWidget {
    Q_OBJECT
public:
    explicit SegmentedControl(const QStringList& labels, QWidget* parent = nullptr);

    void setCurrentIndex(int index);
    [[nodiscard]] int currentIndex() const { return segments_.checkedId(); }

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void currentIndexChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    class Segment;

    void slideTo(int index);

    QButtonGroup segments_;
    QVariantAnimation slide_;
};

} // namespace brevane
