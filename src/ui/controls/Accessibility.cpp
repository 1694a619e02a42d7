// SPDX-License-Identifier: MIT
#include "Accessibility.h"

#include <QAccessibleWidget>
#include <QToolButton>
#include <QVariant>
#include <QWidget>

namespace brevane {

namespace {

constexpr auto roleProperty = "brevaneAccessibleRole";

/// A tool button whose press never waits: Qt's own runs a menu in an event loop of its own, and
/// leaves the screen reader without an answer until the menu closes.
class ToolButtonInterface : public QAccessibleWidget {
public:
    explicit ToolButtonInterface(QToolButton* button)
        : QAccessibleWidget(button, QAccessible::Button), button_(button) {}

    QAccessible::Role role() const override {
        return button_->menu() ? QAccessible::ButtonMenu : QAccessible::Button;
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = button_->menu() != nullptr;
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (button_->isEnabled()) names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override {
        if (name == pressAction())
            button_->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    QToolButton* button_; // outlives its interface
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant role = widget ? widget->property(roleProperty) : QVariant();
    if (role.isValid())
        return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
    if (className == u"QToolButton")
        return new ToolButtonInterface(static_cast<QToolButton*>(object));
    // Qt's own reads past the end of its list when it is asked for a child that is gone, as by a
    // reader that has counted a scroll bar that is hidden before it asks for it.
    if (className == u"QAbstractScrollArea" || className == u"QScrollArea")
        return new QAccessibleWidget(widget, QAccessible::Client);
    return nullptr;
}

} // namespace

void installAccessibleInterfaces() {
    QAccessible::installFactory(makeInterface);
}

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void announce(QWidget& widget) {
    if (!QAccessible::isActive()) return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent announcement(&widget, widget.accessibleName());
    QAccessible::updateAccessibility(&announcement);
#else
    // An alert that shows is what makes the readers of these releases speak.
    for (const auto what :
         {QAccessible::NameChanged, QAccessible::ObjectShow, QAccessible::Alert}) {
        QAccessibleEvent event(&widget, what);
        QAccessible::updateAccessibility(&event);
    }
#endif
}

} // namespace brevane
