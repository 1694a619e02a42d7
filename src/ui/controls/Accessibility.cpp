// SPDX-License-Identifier: MIT
#include "Accessibility.h"

#include <QAccessibleWidget>
#include <QMenu>
#include <QToolButton>
#include <QVariant>
#include <QWidget>

namespace brevane {

namespace {

constexpr auto roleProperty = "brevaneAccessibleRole";

/// A tool button whose press action does not block: Qt's runs the menu in a nested event loop and
/// replies to the screen reader only when the menu closes. Its menu is its child, where
/// Qt's leaves an open menu out of the tree.
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

    int childCount() const override { return button_->menu() ? 1 : 0; }

    QAccessibleInterface* child(int index) const override {
        return index == 0 && button_->menu()
                   ? QAccessible::queryAccessibleInterface(button_->menu())
                   : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        return button_->menu() && child->object() == button_->menu() ? 0 : -1;
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
    // Qt's interface reads past the end of its child list if asked for a child that is gone, such
    // as a scroll bar that was hidden after the reader had counted it.
    if (className == u"QAbstractScrollArea" || className == u"QScrollArea")
        return new QAccessibleWidget(widget, QAccessible::Client);
    return nullptr;
}

} // namespace

void installAccessibleInterfaces() {
    QAccessible::installFactory(makeInterface);
}

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
#ifdef __APPLE__
    // Qt shows VoiceOver a list item as a text, whose buttons cannot be reached, and leaves out
    // headings and notifications.
    if (role == QAccessible::ListItem || role == QAccessible::Notification)
        role = QAccessible::Grouping;
    else if (role == QAccessible::Heading)
        role = QAccessible::StaticText;
#endif
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void changeAccessibleName(QWidget& widget, const QString& name) {
    if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

void changeAccessibleDescription(QWidget& widget, const QString& description) {
    if (widget.accessibleDescription() != description) widget.setAccessibleDescription(description);
}

void showAndAnnounce(QWidget& widget) {
    [[maybe_unused]] const bool wasVisible = widget.isVisible();
    widget.show();
    if (!QAccessible::isActive()) return;
#if defined(__APPLE__) && QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent announcement(&widget, widget.accessibleName());
    QAccessible::updateAccessibility(&announcement);
#else
    // Screen readers speak a notification that is shown, which Qt has just reported if it was
    // hidden.
    if (!wasVisible) return;
    QAccessibleEvent event(&widget, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&event);
#endif
}

} // namespace brevane
