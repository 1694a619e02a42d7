// SPDX-License-Identifier: MIT
#include "Stage.h"

#include "MenuBar.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QMenuBar>
#include <QPainter>

namespace brevane::pictures {

Stage::Stage()
    : queue("tailscale"),
      service(TailscaleService::create({"/bin/sleep 60 #", "/bin/sh", "/usr/bin:/bin"}, mainQueue,
                                       queue, preferences, pool)) {
    window.setWindowTitle(QStringLiteral("Brevane"));
    fillMenuBar(
        *window.menuBar(), [] {}, [] {});
    content = new ContentView(*service, mainQueue);
    window.setCentralWidget(content);
    window.resize(800, 640);
    window.show();
    settle();
}

Stage::~Stage() {
    service->interruptCommands();
}

void Stage::settle() {
    for (int turn = 0; turn < 8; ++turn)
        QApplication::processEvents();
}

void Stage::comeToRest() {
    constexpr int longerThanAnyAnimationMs = 300;
    for (const QDeadlineTimer end(longerThanAnyAnimationMs); !end.hasExpired();)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool Stage::isNamed(const QWidget& widget, const QString& text) {
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    return button && button->text() == text;
}

QImage Stage::picture(double pixelRatio) {
    const auto pictureOf = [pixelRatio](QWidget& widget) {
        QImage image(widget.size() * pixelRatio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(pixelRatio);
        image.fill(Qt::transparent);
        widget.render(&image);
        return image;
    };
    QImage whole = pictureOf(window);
    QPainter painter(&whole);
    for (auto* above : QApplication::topLevelWidgets()) {
        if (above == &window || !above->isVisible()) continue;
        QPoint corner = above->geometry().topLeft() - window.geometry().topLeft();
        if (above->inherits("QDialog")) {
            painter.fillRect(window.rect(), QColor(0, 0, 0, 60));
            corner = window.rect().center() - above->rect().center();
        }
        painter.drawImage(corner, pictureOf(*above));
    }
    return whole;
}

} // namespace brevane::pictures
