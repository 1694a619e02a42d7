// SPDX-License-Identifier: MIT
#include "MenuBar.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMetaObject>
#include <QObject>

namespace brevane {

namespace {

/// A text field drops its selection, which the Edit items act on, when the menu bar takes the
/// focus. This filter reports a popup menu as the reason instead, which keeps the selection.
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

/// Adds an item that calls a slot of the focused widget, such as "copy", which Qt's text widgets
/// have; it does nothing if the widget lacks that slot.
void addEditItem(QMenu& menu, const QString& text, const QKeySequence& key, const char* slot) {
    QAction* item = addItem(menu, text, key, [slot] {
        QWidget* focused = QApplication::focusWidget();
        if (focused == nullptr) return;
        const QByteArray signature = QByteArray(slot) + "()";
        if (focused->metaObject()->indexOfSlot(signature) < 0) return;
        const bool changesText = signature != "copy()" && signature != "selectAll()";
        // QLineEdit::cut ignores the property.
        if (changesText && focused->property("readOnly").toBool()) return;
        QMetaObject::invokeMethod(focused, slot, Qt::DirectConnection);
    });
    // By its text, macOS recognizes an item that its own panels also act on, such as Paste.
    item->setMenuRole(QAction::TextHeuristicRole);
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
    addEditItem(edit, "&Undo", Qt::CTRL | Qt::Key_Z, "undo");
    addEditItem(edit, "&Redo", Qt::CTRL | Qt::SHIFT | Qt::Key_Z, "redo");
    edit.addSeparator();
    addEditItem(edit, "Cu&t", Qt::CTRL | Qt::Key_X, "cut");
    addEditItem(edit, "&Copy", Qt::CTRL | Qt::Key_C, "copy");
    addEditItem(edit, "&Paste", Qt::CTRL | Qt::Key_V, "paste");
    addEditItem(edit, "Select &All", Qt::CTRL | Qt::Key_A, "selectAll");

    QMenu& window = *bar.addMenu("&Window");
    addItem(window, "&Close", Qt::CTRL | Qt::Key_W, [] {
        if (QWidget* active = QApplication::activeWindow()) active->close();
    });
    addItem(window, "&Minimize", Qt::CTRL | Qt::Key_M, [] {
        QWidget* active = QApplication::activeWindow();
        if (active != nullptr && active->windowFlags().testFlag(Qt::WindowMinimizeButtonHint))
            active->showMinimized();
    });
}

} // namespace brevane
