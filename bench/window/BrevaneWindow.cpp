// SPDX-License-Identifier: MIT
//
// Brevane as its main program starts it, with the benchmark's own tailscale.
//
// Usage: brevane-window TAILSCALE start|list|inside

#include "AppDelegate.h"
#include "Clock.h"
#include "Configuration.h"
#include "FontListReader.h"
#include "Inside.h"
#include "NextFrame.h"
#include "Preferences.h"
#include "QtMainQueue.h"
#include "SerialQueue.h"
#include "ServerPool.h"
#include "ShareList.h"
#include "Theme.h"

#include <QMainWindow>

#include <string_view>

using namespace brevane;
using namespace brevane::bench;

namespace {

class NoPreferences final : public Preferences {
public:
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string&) const override {
        return {};
    }
    [[nodiscard]] std::error_code update(const std::map<std::string, Changes>&) override {
        return {};
    }
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
    const FontListReader fonts;
    const QApplication application(argc, argv);
    const Theme look;
    ServerPool pool;
    NoPreferences preferences;
    QtMainQueue mainQueue;
    SerialQueue queue("tailscale");
    const Configuration configuration{argv[1], "/bin/zsh", "/usr/bin:/bin"};
    AppDelegate delegate(
        {configuration, mainQueue, queue, preferences, pool, [] { QApplication::exit(); }});
    delegate.applicationDidFinishLaunching();
    QMainWindow& window = *delegate.window;

    NextFrame firstFrame(window);
    NextFrame firstRow(*window.findChild<ShareList*>()->viewport());
    if (mode == "start")
        firstFrame.then([] {
            report("first_frame", sinceExec());
            endInTwoSeconds();
        });
    if (mode == "list")
        firstRow.then([&] {
            report("first_list", sinceExec());
            endInTwoSeconds();
        });
    if (mode == "inside")
        QTimer::singleShot(0, &window, [&] { measureInside(window, *delegate.service); });
    return QApplication::exec();
}
