// SPDX-License-Identifier: MIT
#include "Accessibility.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace brevane {

namespace {

constexpr auto roleProperty = "brevaneAccessibleRole";

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant role = widget ? widget->property(roleProperty) : QVariant();
    if (role.isValid())
        return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
    // Qt's own reads past the end of its list when it is asked for a child that is gone, as by a
    // reader that has counted a scroll bar that is hidden before it asks for it.
    if (className == u"QAbstractScrollArea" || className == u"QScrollArea")
        return new QAccessibleWidget(widget, QAccessible::Client);
    return nullptr;
}

} // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    [[maybe_unused]] static const bool installed =
        (QAccessible::installFactory(makeInterface), true);
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
