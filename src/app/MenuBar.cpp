// SPDX-License-Identifier: MIT
#include "MenuBar.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QObject>

namespace brevane {

namespace {

/// A text field drops its selection, which the Edit items are about, when the keyboard goes to the
/// menu bar. This tells the focused widget that it goes to a popup menu instead.
class SelectionKeeper : public QObject {
public:
    explicit SelectionKeeper(QObject* parent) : QObject(parent) {
        connect(qApp, &QApplication::focusChanged, this, [this](QWidget* old, QWidget* now) {
            if (old != nullptr) old->removeEventFilter(this);
            if (now != nullptr) now->installEventFilter(this);
        });
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::FocusOut ||
            static_cast<QFocusEvent*>(event)->reason() != Qt::MenuBarFocusReason)
            return false;
        QFocusEvent leaving(QEvent::FocusOut, Qt::PopupFocusReason);
        return watched->event(&leaving);
    }
};

QAction* addItem(QMenu& menu, const QString& text, const QKeySequence& key,
                 const std::function<void()>& act) {
    QAction* item = menu.addAction(text);
    item->setShortcut(key);
    // The About panel has no menu bar of its own.
    item->setShortcutContext(Qt::ApplicationShortcut);
    item->setMenuRole(QAction::NoRole);
    QObject::connect(item, &QAction::triggered, item, act);
    return item;
}

void addEditItem(QMenu& menu, const QString& text, Qt::KeyboardModifiers modifiers, Qt::Key key) {
    addItem(menu, text, QKeySequence(QKeyCombination(modifiers, key)), [modifiers, key] {
        QWidget* focused = QApplication::focusWidget();
        if (focused == nullptr) return;
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(focused, &press);
        QKeyEvent release(QEvent::KeyRelease, key, modifiers);
        QApplication::sendEvent(focused, &release);
    });
}

} // namespace

void fillMenuBar(QMenuBar& bar, const std::function<void()>& showAbout,
                 const std::function<void()>& quit) {
    new SelectionKeeper(&bar);

    QMenu& application = *bar.addMenu("&Brevane");
    addItem(application, "&About Brevane", {}, showAbout)->setMenuRole(QAction::AboutRole);
    application.addSeparator();
    addItem(application, "&Quit Brevane", Qt::CTRL | Qt::Key_Q, quit)
        ->setMenuRole(QAction::QuitRole);

    QMenu& edit = *bar.addMenu("&Edit");
    addEditItem(edit, "&Undo", Qt::ControlModifier, Qt::Key_Z);
    addEditItem(edit, "&Redo", Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Z);
    edit.addSeparator();
    addEditItem(edit, "Cu&t", Qt::ControlModifier, Qt::Key_X);
    addEditItem(edit, "&Copy", Qt::ControlModifier, Qt::Key_C);
    addEditItem(edit, "&Paste", Qt::ControlModifier, Qt::Key_V);
    addEditItem(edit, "Select &All", Qt::ControlModifier, Qt::Key_A);

    QMenu& window = *bar.addMenu("&Window");
    addItem(window, "&Close", Qt::CTRL | Qt::Key_W, [] {
        if (QWidget* active = QApplication::activeWindow()) active->close();
    });
    addItem(window, "&Minimize", Qt::CTRL | Qt::Key_M, [] {
        if (QWidget* active = QApplication::activeWindow()) active->showMinimized();
    });
}

} // namespace brevane
