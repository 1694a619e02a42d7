// SPDX-License-Identifier: MIT
#include "QtMainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>

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

} // namespace brevane
