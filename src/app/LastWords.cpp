// SPDX-License-Identifier: MIT
#include "LastWords.h"

#include <QString>
#include <QtGlobal>

#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <string_view>

namespace brevane {

namespace {

// Allocates nothing: it may be memory that has run out. Static objects are not destroyed, as other
// threads still use them.
[[noreturn]] void end(std::string_view reason) {
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

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtFatalMsg) end(message.toLocal8Bit().constData());
    standardHandler(type, context, message);
}

} // namespace

void installLastWords() {
    std::set_terminate(endOnException);
    standardHandler = qInstallMessageHandler(handleMessage);
}

} // namespace brevane
