// SPDX-License-Identifier: MIT
#include "Inside.h"

#include "Clock.h"
#include "IconButton.h"
#include "PushButton.h"
#include "ShareList.h"

#include <QApplication>
#include <QEventLoop>
#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace brevane::bench {

namespace {

constexpr int rounds = 15;

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void turnUntil(const std::function<bool()>& condition) {
    while (!condition())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
}
void turnFor(double milliseconds) {
    bool ended = false;
    QTimer::singleShot(static_cast<int>(milliseconds), Qt::PreciseTimer, [&] { ended = true; });
    turnUntil([&] { return ended; });
}

/// `count` shares as a refresh returns them; each generation has new targets for five of them.
std::vector<ServeEntry> shares(int count, int generation) {
    constexpr int changed = 5;
    std::vector<ServeEntry> entries;
    for (int i = 0; i < count; ++i)
        entries.push_back({.id = makeEntryId(),
                           .isFunnel = i >= count / 2,
                           .hostPort = "heron.alder-finch.ts.net:443",
                           .urlPath = "/app" + std::to_string(i),
                           .handlerType = ServeEntry::HandlerType::proxy,
                           .handlerDetail = "http://127.0.0.1:" +
                                            std::to_string(i < changed ? 3000 + generation : 3000),
                           .isBackground = true});
    return entries;
}

/// Counts the frames of one widget.
class Frames : public QObject {
public:
    explicit Frames(QWidget& painted) { painted.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++count;
        return false;
    }
    int count = 0;
};

double replace(QWidget& window, TailscaleService& service, int count) {
    std::vector<double> times;
    auto& list = *window.findChild<ShareList*>();
    // The rows that change are the first; out of sight, they cause no frame.
    list.verticalScrollBar()->setValue(0);
    Frames frames(*list.viewport());
    for (int round = 0; round <= rounds; ++round) {
        auto entries = shares(count, round);
        turnFor(50);
        const int before = frames.count;
        const double start = now();
        service.entries.set(std::move(entries));
        turnUntil([&] { return frames.count > before; });
        QApplication::sendPostedEvents();
        // The first round creates the rows.
        if (round > 0) times.push_back(now() - start);
    }
    return median(times);
}

double scroll(QWidget& window) {
    auto& list = *window.findChild<ShareList*>();
    auto* bar = list.verticalScrollBar();
    Frames frames(*list.viewport());
    double longest = 0;
    constexpr int steps = 100;
    for (int step = 0; step <= steps; ++step) {
        const int before = frames.count;
        // This thread's processor time, which other load on the machine does not affect.
        const double start = read(CLOCK_THREAD_CPUTIME_ID);
        bar->setValue(static_cast<int>(qint64{bar->maximum()} * step / steps));
        if (step == 0) continue;
        turnUntil([&] { return frames.count > before; });
        longest = std::max(longest, read(CLOCK_THREAD_CPUTIME_ID) - start);
    }
    return longest;
}

double refresh(QWidget& window, TailscaleService& service) {
    std::vector<double> times;
    Frames frames(window);
    for (int round = 0; round < rounds; ++round) {
        turnFor(20);
        const double start = read(CLOCK_THREAD_CPUTIME_ID);
        service.refresh();
        turnUntil([&] { return service.isLoading.get(); });
        turnUntil([&] { return !service.isLoading.get(); });
        QApplication::processEvents();
        times.push_back(read(CLOCK_THREAD_CPUTIME_ID) - start);
    }
    return median(times);
}

bool hasChild() {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string child;
        if (std::ifstream(task.path() / "children") >> child) return true;
    }
    return false;
}

double startPress(QWidget& window, TailscaleService& service) {
    auto* source = window.findChildren<QLineEdit*>()[0];
    PushButton* start = nullptr;
    for (auto* button : window.findChildren<PushButton*>())
        if (button->text().startsWith(QStringLiteral("Start"))) start = button;
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        source->setText(QStringLiteral("3000"));
        turnFor(50);
        std::atomic<double> launched = 0;
        std::thread watch([&] {
            while (!hasChild())
                std::this_thread::yield();
            launched = now();
        });
        const double pressed = now();
        start->click();
        turnUntil([&] { return source->text().isEmpty(); });
        watch.join();
        times.push_back(launched - pressed);
        turnUntil([&] { return !service.isLoading.get(); });
        turnFor(100);
    }
    return median(times);
}

double idle(QWidget& window) {
    if (auto* focused = window.focusWidget()) focused->clearFocus();
    turnFor(3500);
    const double before = read(CLOCK_PROCESS_CPUTIME_ID);
    turnFor(10'000);
    return read(CLOCK_PROCESS_CPUTIME_ID) - before;
}

} // namespace

void measureInside(QWidget& window, TailscaleService& service) {
    turnUntil([&] { return service.entries->size() == 50; });
    turnUntil([&] { return !service.isLoading.get(); });
    report("refresh", refresh(window, service));
    report("start_press", startPress(window, service));
    report("idle", idle(window));
    report("replace_500", replace(window, service, 500));
    report("scroll_500", scroll(window));
    report("replace_10k", replace(window, service, 10'000));
    report("scroll_10k", scroll(window));
    QApplication::exit();
}

} // namespace brevane::bench
