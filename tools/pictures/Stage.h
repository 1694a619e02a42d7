// SPDX-License-Identifier: MIT
#pragma once

#include "ContentView.h"
#include "QtMainQueue.h"
#include "TailscaleService.h"

#include <QImage>
#include <QMainWindow>

#include <memory>

namespace brevane::pictures {

/// Preferences that store nothing.
class NoPreferences final : public Preferences {
public:
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string&) const override {
        return {};
    }
    [[nodiscard]] std::error_code update(const std::map<std::string, Changes>&) override {
        return {};
    }
};

/// A main window to put into one state and to render. Every command of its service only sleeps.
class Stage {
public:
    Stage();
    ~Stage();

    /// The window and what is open above it, rendered at this pixel ratio.
    [[nodiscard]] QImage picture(double pixelRatio);

    /// Processes the queued events.
    static void settle();
    /// Processes events until every animation has ended.
    static void comeToRest();

    template <class Widget>
    [[nodiscard]] Widget& find(const QString& accessibleName) {
        for (auto* widget : window.findChildren<Widget*>())
            if (widget->accessibleName() == accessibleName || isNamed(*widget, accessibleName))
                return *widget;
        qFatal("nothing is called %s", qPrintable(accessibleName));
    }

    NoPreferences preferences;
    ServerPool pool;
    QtMainQueue mainQueue;
    SerialQueue queue;
    std::shared_ptr<TailscaleService> service;
    QMainWindow window;
    ContentView* content;

private:
    [[nodiscard]] static bool isNamed(const QWidget& widget, const QString& text);
};

} // namespace brevane::pictures
