// SPDX-License-Identifier: MIT
#include "QtMainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QTimer>

#include <utility>

namespace brevane {

QtMainQueue::QtMainQueue() {
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &receiver_,
                     [this] {
                         close();
                         QCoreApplication::removePostedEvents(&receiver_);
                     });
}

void QtMainQueue::post(std::function<void()> task) {
    if (isOpen_) QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection);
}

void QtMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
    if (isOpen_) QTimer::singleShot(delay, &receiver_, std::move(task));
}

} // namespace brevane
