// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <utility>

namespace brevane::bench {

/// Calls an action from the event loop once, after a widget's next paint.
class NextFrame : public QObject {
public:
    explicit NextFrame(QWidget& painted) { painted.installEventFilter(this); }

    void then(std::function<void()> action) { waiting = std::move(action); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && waiting)
            QTimer::singleShot(0, this, [action = std::exchange(waiting, nullptr)] { action(); });
        return false;
    }

private:
    std::function<void()> waiting;
};

} // namespace brevane::bench
