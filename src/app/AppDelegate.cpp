// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "AboutPanel.h"
#include "ContentView.h"
#include "MenuBar.h"
#include "TailscaleIcon.h"
#include "TailscaleService.h"
#include "WindowPlacement.h"

#include <QApplication>
#include <QIcon>
#include <QMainWindow>
#include <QMenuBar>

namespace brevane {

namespace {

void setApplicationIcon() {
#ifdef __APPLE__
    const QIcon icon = TailscaleIcon::installed();
    if (!icon.isNull()) QApplication::setWindowIcon(icon);
#else
    QIcon icon;
    for (const int size : {16, 32, 48, 128})
        icon.addFile(QString(":/icon/brevane-%1.png").arg(size), {size, size});
    QApplication::setWindowIcon(icon);
#endif
}

} // namespace

AppDelegate::AppDelegate(const Environment& given) : environment(given) {}

AppDelegate::~AppDelegate() {
    interruptCommands();
}

void AppDelegate::applicationDidFinishLaunching() {
    setupMenu();
    setApplicationIcon();
    service =
        TailscaleService::create(Configuration::compiledIn(), environment.mainQueue,
                                 environment.queue, environment.preferences, environment.pool);
    window = std::make_unique<QMainWindow>();
    window->setCentralWidget(new ContentView(*service, environment.mainQueue));
#ifndef __APPLE__
    window->setMenuBar(menuBar.release());
#endif
    window->setWindowTitle("Brevane");
    window->setMinimumSize(640, 500);
    window->resize(800, 640);
    centre(*window);
    QApplication::setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    bringToFront(*window);
    service->refresh();
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
    menuBar = std::make_unique<QMenuBar>();
    fillMenuBar(
        *menuBar, [this] { showAbout(); }, [] { QApplication::exit(); });
}

} // namespace brevane
