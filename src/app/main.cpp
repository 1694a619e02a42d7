// SPDX-License-Identifier: MIT
#include "AppDelegate.h"
#include "CommandLine.h"
#include "Configuration.h"
#include "FileHTTPServer.h"
#include "FontList.h"
#include "Preferences.h"
#include "QtMainQueue.h"
#include "QuitSignals.h"
#include "SerialQueue.h"
#include "Theme.h"

#ifndef __APPLE__
#include "FilePreferences.h"
#include "SingleInstance.h"
#endif

#include <QApplication>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using namespace brevane;

/// The process ends after this time even if it could not end in order: a file server's thread may
/// be waiting for a slow disk, and nothing can interrupt that. Nothing is lost by it, since the
/// preferences are replaced in one step and commands have been ended by then.
void endAtTheLatestIn(std::chrono::milliseconds time) {
    std::thread([time] {
        std::this_thread::sleep_for(time);
        _exit(EXIT_SUCCESS);
    }).detach();
}

/// Ends commands under way and waits for that. Set while there may be some.
std::function<void()> endCommands;

int run(int& argc, char** argv, const std::function<void(AppDelegate&)>& hasLaunched) {
    QApplication::setApplicationName("Brevane");
    QApplication::setDesktopFileName("com.brevane.brevane");
    const auto fonts = readFontList();
    const QApplication application(argc, argv);
    const QuitSignals quitSignals([] { QApplication::exit(); });
    const Theme theme;

    // What is below uses what is above, also from its threads: the order of ending is the reverse.
    ServerPool pool;
    const auto preferences = makeUserPreferences();
    QtMainQueue mainQueue;
    auto queue = std::make_unique<SerialQueue>("tailscale");
    const Configuration configuration = Configuration::compiledIn();
    AppDelegate delegate({configuration, mainQueue, *queue, *preferences, pool});

    // Qt ends the process on the spot when the display goes away.
    endCommands = [&] {
        delegate.interruptCommands();
        queue.reset();
    };
    std::atexit([] {
        if (endCommands) endCommands();
    });

    delegate.applicationDidFinishLaunching();
    hasLaunched(delegate);
    const int status = QApplication::exec();
    endCommands = nullptr;
    endAtTheLatestIn(std::chrono::milliseconds(1800));
    return status;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (const auto answer = answerCommandLine(arguments)) {
        std::fputs(answer->text.c_str(), answer->status == 0 ? stdout : stderr);
        return answer->status;
    }
    // A client that hangs up is an error of writing to it, and commands are waited for, whatever
    // the program that started this one has set.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);

#ifdef __APPLE__
    // The system itself starts an application only once.
    return run(argc, argv, [](AppDelegate&) {});
#else
    SingleInstance instance(FilePreferences::defaultFile().parent_path());
    switch (instance.claim()) {
    case SingleInstance::Claim::otherAsked:
        return EXIT_SUCCESS;
    case SingleInstance::Claim::noAnswer:
        std::fputs("brevane: it is running already, but does not answer\n", stderr);
        return EXIT_FAILURE;
    case SingleInstance::Claim::first:
        break;
    }
    return run(argc, argv,
               [&](AppDelegate& delegate) { instance.onRaise([&] { delegate.activate(); }); });
#endif
}
