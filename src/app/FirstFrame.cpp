// SPDX-License-Identifier: MIT
#include "FirstFrame.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <utility>

namespace brevane {

namespace {

class FirstFrame : public QObject {
public:
    FirstFrame(QWidget& widget, std::chrono::milliseconds patience, std::function<void()> then)
        : QObject(&widget), action_(std::move(then)) {
        widget.installEventFilter(this);
        callIn(patience);
    }

    bool eventFilter(QObject* widget, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            widget->removeEventFilter(this);
            callIn(std::chrono::milliseconds(0));
        }
        return false;
    }

private:
    void callIn(std::chrono::milliseconds time) {
        QTimer::singleShot(time, this, [this] {
            deleteLater();
            if (const auto once = std::exchange(action_, nullptr)) once();
        });
    }

    std::function<void()> action_;
};

} // namespace

void afterFirstFrame(QWidget& widget, std::chrono::milliseconds patience,
                     std::function<void()> action) {
    new FirstFrame(widget, patience, std::move(action));
}

} // namespace brevane
