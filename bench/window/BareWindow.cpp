// SPDX-License-Identifier: MIT
//
// The least that a window can cost: an empty one of the same size.

#include "Clock.h"
#include "NextFrame.h"

using namespace brevane::bench;

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(800, 640);
    NextFrame frame(window);
    frame.then([] {
        report("first_frame", sinceExec());
        QTimer::singleShot(2000, [] {
            report("memory", residentMemory());
            QApplication::exit();
        });
    });
    window.show();
    return QApplication::exec();
}
