// SPDX-License-Identifier: MIT
//
// Brevane's main window as the application opens it, on a tailscale of the benchmark's.
//
// Usage: brevane-window TAILSCALE start|list|inside

#include "Clock.h"
#include "ContentView.h"
#include "Inside.h"
#include "MenuBar.h"
#include "NextFrame.h"
#include "QtMainQueue.h"
#include "ShareList.h"
#include "Theme.h"

#include <QMainWindow>
#include <QMenuBar>

#include <string_view>

using namespace brevane;
using namespace brevane::bench;

namespace {

class NoPreferences final : public Preferences {
public:
    [[nodiscard]] std::optional<Dictionary> dictionary(const std::string&) const override {
        return {};
    }
    std::error_code set(const std::string&, const Dictionary&) override { return {}; }
};

void endInTwoSeconds() {
    QTimer::singleShot(2000, [] {
        report("memory", residentMemory());
        QApplication::exit();
    });
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string_view mode = argv[2];
    const QApplication application(argc, argv);
    const Theme look;
    ServerPool pool;
    NoPreferences preferences;
    QtMainQueue mainQueue;
    SerialQueue queue("tailscale");
    const auto service = TailscaleService::create({argv[1], "/bin/zsh", "/usr/bin:/bin"}, mainQueue,
                                                  queue, preferences, pool);
    QMainWindow window;
    fillMenuBar(
        *window.menuBar(), [] {}, [] {});
    auto* content = new ContentView(*service, mainQueue);
    window.setCentralWidget(content);
    window.setMinimumSize(640, 500);
    window.resize(800, 640);

    NextFrame firstFrame(window);
    NextFrame firstRow(*content->findChild<ShareList*>()->viewport());
    if (mode == "start")
        firstFrame.then([] {
            report("first_frame", sinceExec());
            endInTwoSeconds();
        });
    if (mode == "list")
        firstRow.then([&] {
            report("first_list_10k", sinceExec());
            QApplication::exit();
        });
    if (mode == "inside") QTimer::singleShot(0, &window, [&] { measureInside(window, *service); });
    window.show();
    service->refresh();
    const int status = QApplication::exec();
    service->interruptCommands();
    return status;
}
