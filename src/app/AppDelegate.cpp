// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "AboutPanel.h"
#include "ContentView.h"
#include "FirstFrame.h"
#include "MenuBar.h"
#include "TailscaleIcon.h"
#include "TailscaleService.h"
#include "Theme.h"
#include "WindowPlacement.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QLayout>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <chrono>
#include <utility>

namespace brevane {

namespace {

constexpr QSize smallestSize(640, 500);
constexpr auto firstFramePatience = std::chrono::milliseconds(100);

/// Closing it requests the program's end, before anything that may block.
class MainWindow : public QMainWindow {
public:
    explicit MainWindow(std::function<void()> quit) : quit_(std::move(quit)) {}

protected:
    // Long texts make the window wider than its usual minimum.
    bool event(QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest)
            setMinimumSize(smallestSize.expandedTo({layout()->minimumSize().width(), 0}));
        return QMainWindow::event(event);
    }
    void closeEvent(QCloseEvent* event) override {
        quit_();
        QMainWindow::closeEvent(event);
    }

private:
    std::function<void()> quit_;
};

void setApplicationIcon() {
#ifdef __APPLE__
    const QIcon icon = TailscaleIcon::installed();
    if (!icon.isNull()) QApplication::setWindowIcon(icon);
#else
    // Rendered here, since reading an image file would load all of Qt's image format plugins.
    QSvgRenderer drawing(QString(":/icon/brevane.svg"));
    QIcon icon;
    for (const int size : {16, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    QApplication::setWindowIcon(icon);
#endif
}

} // namespace

AppDelegate::AppDelegate(const Environment& environment) : environment_(environment) {}

AppDelegate::~AppDelegate() {
    interruptCommands();
}

void AppDelegate::applicationDidFinishLaunching() {
    // Creating the first accessible control blocks until the session bus has replied, so what does
    // not need the bus comes first.
    setApplicationIcon();
    theme().loadFonts();
    service =
        TailscaleService::create(environment_.configuration, environment_.mainQueue,
                                 environment_.queue, environment_.preferences, environment_.pool);
    window = std::make_unique<MainWindow>(environment_.quit);
    window->setCentralWidget(new ContentView(*service, environment_.mainQueue));
    // Creating a menu bar blocks until the session bus has replied, so it comes late.
    setupMenu();
#ifndef __APPLE__
    window->setMenuBar(menuBar_.release());
#endif
    window->setWindowTitle("Brevane");
    window->setMinimumSize(smallestSize);
    window->resize(800, 640);
    centre(*window);
    QApplication::setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    theme().awaitDesktop();
    bringToFront(*window);
    // Commands would compete with the first frame for processor time.
    afterFirstFrame(*window, firstFramePatience, [this] { service->refresh(); });
}

void AppDelegate::activate() {
    bringToFront(*window);
}

void AppDelegate::interruptCommands() {
    if (service) service->interruptCommands();
}

void AppDelegate::showAboutWindow() {
    if (!aboutPanel || !aboutPanel->isVisible())
        aboutPanel = std::make_unique<AboutPanel>(window.get());
    aboutPanel->makeKeyAndOrderFront();
}

void AppDelegate::setupMenu() {
    menuBar_ = std::make_unique<QMenuBar>();
    fillMenuBar(
        *menuBar_, [this] { showAbout(); }, environment_.quit);
}

} // namespace brevane
