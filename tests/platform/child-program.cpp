// SPDX-License-Identifier: MIT
// A child process for the tests: its first argument says what to do or to report. If it is given
// the path of a named pipe, it opens the pipe as soon as it is ready.

#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <string_view>

extern char** environ;

namespace {

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written == -1) _exit(70);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void print(const std::string& text) {
    writeAll(STDOUT_FILENO, text);
}

void printEach(char** texts) {
    for (; *texts != nullptr; ++texts)
        print(std::string(*texts) + '\n');
}

void flood(int descriptor, std::size_t size, char byte) {
    const std::string block(100'000, byte);
    for (; size > 0; size -= std::min(size, block.size()))
        writeAll(descriptor, std::string_view(block).substr(0, std::min(size, block.size())));
}

// Fills both outputs concurrently, from two processes.
void floodBoth(std::size_t size) {
    const pid_t second = fork();
    if (second == 0) {
        flood(STDERR_FILENO, size, 'e');
        _exit(0);
    }
    flood(STDOUT_FILENO, size, 'o');
    waitpid(second, nullptr, 0);
}

void tellReady(const char* namedPipe) {
    const int pipe = open(namedPipe, O_WRONLY);
    writeAll(pipe, std::to_string(getpid()) + '\n');
    // Left open: its end of file shows the test that this process is gone.
}

[[noreturn]] void waitForEver() {
    while (true)
        pause();
}

// Continues in a second process, after the first one has exited with status 3.
void outliveOwnParent() {
    const pid_t parent = getpid();
    if (fork() != 0) _exit(3);
    while (getppid() == parent)
        sched_yield();
}

void handleTermination(int) {
    _exit(7);
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) return 64;
    const std::string_view what = arguments[1];
    const char* const value = count > 2 ? arguments[2] : "";

    if (what == "arguments") {
        printEach(arguments);
    } else if (what == "environment") {
        printEach(environ);
    } else if (what == "descriptors") {
        for (int descriptor = 0; descriptor < 2048; ++descriptor)
            if (fcntl(descriptor, F_GETFD) != -1) print(std::to_string(descriptor) + ' ');
    } else if (what == "signals") {
        sigset_t blocked;
        sigprocmask(SIG_SETMASK, nullptr, &blocked);
        for (int signal = 1; signal < NSIG; ++signal) {
            struct sigaction action {};
            if (sigaction(signal, nullptr, &action) != 0) continue;
            if (sigismember(&blocked, signal) == 1)
                print("blocked " + std::to_string(signal) + ' ');
            if (action.sa_handler != SIG_DFL) print("ignored " + std::to_string(signal) + ' ');
        }
    } else if (what == "session") {
        print(getsid(0) == getpid() && getpgrp() == getpid() ? "own" : "foreign");
        if (open("/dev/tty", O_RDWR | O_NOCTTY) != -1) print(" with a terminal");
    } else if (what == "descriptor-limit") {
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        print(std::to_string(limit.rlim_cur));
    } else if (what == "input") {
        std::array<char, 1> byte{};
        print(std::to_string(read(STDIN_FILENO, byte.data(), byte.size())));
    } else if (what == "exit") {
        return std::atoi(value);
    } else if (what == "signal") {
        raise(std::atoi(value));
    } else if (what == "flood") {
        floodBoth(std::strtoul(value, nullptr, 10));
    } else if (what == "wait") {
        tellReady(value);
        waitForEver();
    } else if (what == "wait-with-closed-outputs") {
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
        tellReady(value);
        waitForEver();
    } else if (what == "end-after-closing-outputs") {
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
        return 5;
    } else if (what == "ignore-termination") {
        signal(SIGTERM, SIG_IGN);
        print("still here");
        tellReady(value);
        waitForEver();
    } else if (what == "handle-termination") {
        signal(SIGTERM, handleTermination);
        tellReady(value);
        waitForEver();
    } else if (what == "late") {
        outliveOwnParent();
        print("late");
    } else if (what == "left-behind") {
        signal(SIGTERM, SIG_IGN);
        outliveOwnParent();
        tellReady(value);
        waitForEver();
    } else if (what == "escaped") {
        outliveOwnParent();
        setsid();
        tellReady(value);
        waitForEver();
    } else {
        return 64;
    }
    return 0;
}
