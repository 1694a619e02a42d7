// SPDX-License-Identifier: MIT
#pragma once

#include "ContentView.h"
#include "IconButton.h"
#include "PopUp.h"
#include "PushButton.h"
#include "QtText.h"
#include "ServiceTest.h"
#include "ShareList.h"
#include "ShareRowView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QToolTip>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brevane::test {

// The name of the button, with its shortcut in the platform's notation.
#ifdef __APPLE__
constexpr auto refreshButton = "Refresh (⌘R)";
#else
constexpr auto refreshButton = "Refresh (Ctrl+R)";
#endif

/// The window's content on a service whose tailscale is a script, run by the real shell.
class WindowTest : public ServiceTest {
protected:
    void SetUp() override {
        start();
        view = std::make_unique<ContentView>(*service, mainQueue);
        view->resize(800, 614);
        view->show();
        view->activateWindow();
        settle();
    }

    // Runs what is queued.
    void settle() {
        for (int turn = 0; turn < 5; ++turn) {
            mainQueue.runPending();
            QApplication::processEvents();
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    // Waits for a condition; returns false if it does not hold within 30 seconds.
    [[nodiscard]] bool until(const std::function<bool()>& condition) {
        QElapsedTimer waited;
        for (waited.start(); waited.elapsed() < 30'000;) {
            settle();
            if (condition()) return true;
            QTest::qWait(2);
        }
        return false;
    }

    // The visible control with this accessible name or label; the n-th from the top of several.
    template <class Control>
    Control* find(const QString& name, int n = 0) {
        for (QWidget* top : QApplication::topLevelWidgets())
            for (auto* control : top->findChildren<Control*>()) {
                const auto* button = qobject_cast<QAbstractButton*>(control);
                const bool named =
                    control->accessibleName() == name || (button && button->text() == name);
                if (named && control->isVisible() && n-- == 0) return control;
            }
        return nullptr;
    }
    QAbstractButton* button(const QString& name) { return find<QAbstractButton>(name); }
    void press(const QString& name) {
        auto* control = button(name);
        ASSERT_NE(control, nullptr) << name.toStdString();
        QTest::mouseClick(control, Qt::LeftButton);
        settle();
    }

    // Whether the text is visible anywhere in the window.
    bool shows(const QString& text) {
        for (const auto* label : view->findChildren<QLabel*>())
            if (label->isVisible() && label->text() == text) return true;
        for (const auto* named : view->findChildren<QWidget*>())
            if (named->isVisible() && named->accessibleName() == text) return true;
        return false;
    }

    // The tooltip shown when the pointer rests on a control; empty if there is none.
    static QString toolTipOf(const QWidget& widget) {
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
        auto& asked = const_cast<QWidget&>(widget);
        const QPoint middle = asked.rect().center();
        QHelpEvent event(QEvent::ToolTip, middle, asked.mapToGlobal(middle));
        QApplication::sendEvent(&asked, &event);
        QString shown = QToolTip::isVisible() ? QToolTip::text() : QString();
        QToolTip::hideText();
        return shown;
    }

    // What the open question says.
    QString message() { return qobject_cast<QMessageBox*>(dialog())->informativeText(); }
    QDialog* dialog() {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<QDialog*>(top); found && found->isVisible())
                return found;
        return nullptr;
    }

    ShareList& list() { return *view->findChild<ShareList*>(); }
    ShareRowView* row(std::size_t index) {
        const auto& rows = list().rows();
        return index < rows.size() ? rows[index] : nullptr;
    }

    static ServeEntry entry(const std::string& path, bool isFunnel = false, int port = 443) {
        ServeEntry made =
            proxyEntry("h.tail.ts.net:" + std::to_string(port), "http://127.0.0.1:3000");
        made.urlPath = path;
        made.isFunnel = isFunnel;
        return made;
    }
    void publish(std::vector<ServeEntry> entries) {
        service->entries.set(std::move(entries));
        settle();
    }

    // `count` serves, named by their numbers.
    static std::vector<ServeEntry> serves(int count) {
        std::vector<ServeEntry> entries;
        for (int i = 0; i < count; ++i)
            entries.push_back(entry("/" + std::to_string(i)));
        return entries;
    }

    std::unique_ptr<ContentView> view;
};

} // namespace brevane::test
