// SPDX-License-Identifier: MIT
#include "AppDelegate.h"
#include "CommandLine.h"
#include "Configuration.h"
#include "FileHTTPServer.h"
#include "FontListReader.h"
#include "LastWords.h"
#include "OpenFileLimit.h"
#include "Preferences.h"
#include "QtMainQueue.h"
#include "QuitWatch.h"
#include "SerialQueue.h"
#include "TailscaleService.h"
#include "Theme.h"
#include "UserAccount.h"

#ifndef __APPLE__
#include "FilePreferences.h"
#include "SilentBus.h"
#include "SingleInstance.h"
#endif

#include <QApplication>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace brevane;

/// A window needs 30. Libraries that cannot open one print messages of their own.
constexpr std::size_t neededDescriptors = 64;

/// The address space that a window needs, including its threads' stacks and heaps. Libraries that
/// cannot allocate any crash or wait forever.
constexpr std::size_t neededAddressSpace = std::size_t(512) << 20;

bool isAddressSpaceFree(std::size_t size) {
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && munmap(memory, size) == 0;
}

/// Ends running commands and waits for them and for the record. Set while there may be commands.
std::function<void()> endCommands;

int run(int& argc, char** argv, const std::function<void(AppDelegate&)>& hasLaunched) {
    QApplication::setApplicationName("Brevane");
    QApplication::setDesktopFileName("com.brevane.brevane");
    QuitWatch quitWatch;
    const FontListReader fonts;
    const QApplication application(argc, argv);
    const Theme theme;

    // Each object uses those above it, also from its threads, so it is destroyed before them.
    ServerPool pool;
    const auto preferences = makeUserPreferences();
    QtMainQueue mainQueue;
    auto queue = std::make_unique<SerialQueue>("tailscale");
    const Configuration configuration = Configuration::compiledIn();
    AppDelegate delegate(
        {configuration, mainQueue, *queue, *preferences, pool, [&] { quitWatch.request(); }});

    // Qt calls exit() when the connection to the display is lost, which would destroy static
    // objects that other threads still use.
    endCommands = [&] {
        quitWatch.onRequest(nullptr);
        quitWatch.request(EXIT_FAILURE);
        delegate.interruptCommands();
        queue.reset();
        if (delegate.service) delegate.service->waitForRecord(std::chrono::seconds(2));
    };
    std::atexit([] {
        if (!endCommands) return;
        endCommands();
        _exit(EXIT_FAILURE);
    });

    delegate.applicationDidFinishLaunching();
    hasLaunched(delegate);
    releaseMessages();
    quitWatch.onRequest([&] {
        // Drop what commands report from here on: an interrupted command looks failed even if it
        // has made its share.
        mainQueue.close();
        delegate.interruptCommands();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
    });
    const int status = QApplication::exec();
    quitWatch.onRequest(nullptr);
    quitWatch.request();
    endCommands = nullptr;
    return status;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (const auto answer = answerCommandLine(arguments)) {
        std::fputs(answer->text.c_str(), answer->status == 0 ? stdout : stderr);
        return answer->status;
    }
    installLastWords();
    if (raiseOpenFileLimit() < neededDescriptors) {
        std::fputs("brevane: too few descriptors may be open\n", stderr);
        return EXIT_FAILURE;
    }
    if (!isAddressSpaceFree(neededAddressSpace)) {
        std::fputs("brevane: too little memory may be used\n", stderr);
        return EXIT_FAILURE;
    }
    // Caches the result, since later there may be no descriptor left for the lookup.
    static_cast<void>(homeDirectory());
    // Get EPIPE instead of SIGPIPE; undo an inherited SIGCHLD=SIG_IGN, which would break waitpid.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);

#ifdef __APPLE__
    // macOS itself starts an application only once.
    return run(argc, argv, [](AppDelegate&) {});
#else
    // A Wayland compositor lets a window come to the front only with a token of what the user did.
    constexpr auto activationToken = "XDG_ACTIVATION_TOKEN";
    QByteArray token = qgetenv(activationToken);
    if (token.isEmpty()) token = qgetenv("DESKTOP_STARTUP_ID"); // GNOME Shell sets only this
    SingleInstance instance(FilePreferences::defaultFile().parent_path());
    switch (instance.claim(token.toStdString())) {
    case SingleInstance::Claim::otherAsked:
        // Without a token, some compositors leave the window where it is.
        std::fputs("brevane: it is running already, in another window\n", stderr);
        return EXIT_SUCCESS;
    case SingleInstance::Claim::noAnswer:
        std::fputs("brevane: it is running already, but does not answer\n", stderr);
        return EXIT_FAILURE;
    case SingleInstance::Claim::first:
        break;
    }
    avoidSilentBuses();
    return run(argc, argv, [&](AppDelegate& delegate) {
        instance.onRaise([&](const std::string& handedOver) {
            if (!handedOver.empty())
                qputenv(activationToken, handedOver.c_str()); // Qt takes it from there
            delegate.activate();
        });
    });
#endif
}
