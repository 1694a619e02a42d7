// SPDX-License-Identifier: MIT
#include "ConfirmationDialog.h"

#include "Accessibility.h"
#include "MenuDrawing.h"
#include "Symbol.h"
#include "Theme.h"

#include <QAction>
#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>

#include <utility>

namespace brevane {

namespace {

void applyTheme(QMessageBox& box) {
    const int side = theme().symbolSize(24);
    box.setIconPixmap(symbolPixmap(QStringLiteral("exclamationmark.triangle.fill"),
                                   theme().color(&Colors::orange), side, box.devicePixelRatioF()));
    box.layout()->setContentsMargins(20, 20, 20, 16);
    if (auto* title = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label")))
        title->setFont(theme().font(TextStyle::headline));
    if (auto* message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        message->setFont(theme().font(TextStyle::body));
        message->setMinimumWidth(theme().scaled(310));
        QPalette palette = message->palette();
        palette.setColor(QPalette::WindowText, theme().color(&Colors::secondary));
        message->setPalette(palette);
    }
}

// A window blocked by a modal dialog gets no shortcuts, so the dialog handles them.
void takeMenuKeys(QMessageBox& box) {
    const auto* window = qobject_cast<const QMainWindow*>(box.parentWidget());
    const auto* bar = window ? window->menuWidget() : nullptr;
    if (bar == nullptr) return;
    for (const auto* menu : bar->findChildren<QMenu*>())
        for (QAction* item : menu->actions())
            if (!item->shortcut().isEmpty()) box.addAction(item);
}

} // namespace

QMessageBox* openConfirmation(const QString& title, const QString& message,
                              const QString& destructiveLabel, QWidget* parent,
                              std::function<void()> destroy) {
    auto* box = new QMessageBox(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    // Qt's default role is an alert, which is for errors.
    setAccessibleRole(*box, QAccessible::Dialog);
    box->setAccessibleName(title);
    box->setWindowTitle(QStringLiteral("Brevane"));
    box->setBackgroundRole(QPalette::Base); // the colour of menus
    box->setAutoFillBackground(true);
    box->setTextFormat(Qt::PlainText);
    box->setText(title);
    box->setInformativeText(message);
    QPushButton* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    QPushButton* destructive = box->addButton(destructiveLabel, QMessageBox::DestructiveRole);
    setDestructive(*destructive);
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    applyTheme(*box);
    QObject::connect(&theme(), &Theme::changed, box, [box] { applyTheme(*box); });
    QObject::connect(box, &QMessageBox::buttonClicked, box,
                     [destructive, destroy = std::move(destroy)](const QAbstractButton* pressed) {
                         if (pressed == destructive) destroy();
                     });
    takeMenuKeys(*box);
    box->setWindowModality(Qt::WindowModal);
    box->open();
    return box;
}

} // namespace brevane
