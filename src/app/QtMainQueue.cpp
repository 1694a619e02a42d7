// SPDX-License-Identifier: MIT
#include "QtMainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <utility>

namespace brevane {

QtMainQueue::QtMainQueue() {
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &receiver,
                     [this] { close(); });
}

void QtMainQueue::post(std::function<void()> task) {
    if (isOpen) QMetaObject::invokeMethod(&receiver, std::move(task), Qt::QueuedConnection);
}

void QtMainQueue::close() {
    isOpen = false;
    QCoreApplication::removePostedEvents(&receiver);
}

} // namespace brevane
