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

/// Creates the application's parts and owns them. Main thread; created after the theme.
class AppDelegate {
public:
    /// What the service uses; all of it outlives the delegate. The delegate's destructor does not
    /// wait for a running command; the queue's does.
    struct Environment {
        const Configuration& configuration;
        MainQueue& mainQueue;
        SerialQueue& queue;
        Preferences& preferences;
        ServerPool& pool;
        std::function<void()> quit; ///< requests the program's end
    };

    explicit AppDelegate(const Environment& environment);
    /// Interrupts the running command, then destroys the window and releases the service.
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Creates service, window and menu bar, shows the window and, once it has been drawn, asks the
    /// service for a refresh.
    void applicationDidFinishLaunching();

    [[nodiscard]] static bool applicationShouldTerminateAfterLastWindowClosed() { return true; }

    /// Brings the main window to the front.
    void activate();

    /// Interrupts the running command and starts no further one. Any thread, once launched.
    void interruptCommands();

    /// Called by the menu item "About Brevane".
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
