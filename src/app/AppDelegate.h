// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

class QMainWindow;
class QMenuBar;

namespace brevane {

class AboutPanel;
struct Configuration;
class MainQueue;
class Preferences;
class SerialQueue;
class ServerPool;
class TailscaleService;

/// Starts the application's parts and keeps them for its run. Main thread; made after the theme.
class AppDelegate {
public:
    /// What the service works with. It all outlives the delegate, which however does not wait for a
    /// command under way: destroying the queue does.
    struct Environment {
        const Configuration& configuration;
        MainQueue& mainQueue;
        SerialQueue& queue;
        Preferences& preferences;
        ServerPool& pool;
        std::function<void()> quit; ///< asks the program to end
    };

    explicit AppDelegate(const Environment& environment);
    /// Ends commands under way, then lets go of the window and the service.
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Makes menu bar, service and window, shows the window and, once it has been drawn, asks the
    /// service for a refresh.
    void applicationDidFinishLaunching();

    [[nodiscard]] static bool applicationShouldTerminateAfterLastWindowClosed() { return true; }

    /// Brings the main window to the front.
    void activate();

    /// Ends the command under way; no other is started any more. Any thread once it is launched.
    void interruptCommands();

    /// The menu item.
    void showAbout() { showAboutWindow(); }

    /// Shows the About panel, or brings the one that is visible to the front.
    void showAboutWindow();

private:
    void setupMenu();

    Environment environment_;
    std::unique_ptr<QMenuBar> menuBar_;

public:
    std::shared_ptr<TailscaleService> service; ///< none before the launch
    std::unique_ptr<QMainWindow> window;       ///< the main window, for the application's lifetime
    std::unique_ptr<AboutPanel> aboutPanel;    ///< the About panel, none until first shown
};

} // namespace brevane
