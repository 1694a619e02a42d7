// SPDX-License-Identifier: MIT
#include "LastWords.h"

#include <QString>
#include <QtGlobal>

#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace brevane {

namespace {

// Allocates nothing, since memory may have run out. _exit() does not destroy static objects, which
// other threads still use.
[[noreturn]] void end(std::string_view reason) {
    // Where one thread fails, others often do too.
    static std::atomic_flag isEnding;
    while (isEnding.test_and_set())
        pause();
    constexpr std::string_view before = "brevane: ";
    constexpr std::string_view after = "\n";
    const auto part = [](std::string_view text) {
        return iovec{.iov_base = const_cast<char*>(text.data()), .iov_len = text.size()};
    };
    const std::array line{part(before), part(reason.substr(0, reason.find('\n'))), part(after)};
    static_cast<void>(!writev(STDERR_FILENO, line.data(), line.size()));
    _exit(EXIT_FAILURE);
}

[[noreturn]] void endOnException() {
    try {
        if (const auto exception = std::current_exception()) std::rethrow_exception(exception);
    } catch (const std::exception& exception) {
        end(exception.what());
    } catch (...) {
    }
    end("internal error");
}

QtMessageHandler standardHandler = nullptr;
std::mutex mutex;
bool isStarting = true;        // guarded by mutex
std::vector<QString> keptBack; // guarded by mutex

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const std::scoped_lock lock(mutex);
    // Qt waits forever for a thread that it could not start.
    const bool lacksThread =
        isStarting && message.startsWith(QLatin1String("QThread::start: Thread creation error"));
    if (lacksThread) keptBack.clear();
    if (type == QtFatalMsg || lacksThread)
        end((keptBack.empty() ? message : keptBack.front()).toLocal8Bit().constData());
    if (isStarting)
        keptBack.push_back(message);
    else
        standardHandler(type, context, message);
}

} // namespace

void installLastWords() {
    std::set_terminate(endOnException);
    standardHandler = qInstallMessageHandler(handleMessage);
}

void releaseMessages() {
    const std::scoped_lock lock(mutex);
    isStarting = false;
    for (const QString& message : std::exchange(keptBack, {}))
        standardHandler(QtWarningMsg, {}, message);
}

} // namespace brevane
