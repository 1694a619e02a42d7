// SPDX-License-Identifier: MIT
#include "SectionBar.h"

#include "IconButton.h"
#include "Label.h"
#include "MenuDrawing.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>

#include <utility>

namespace brevane {

SectionBar::SectionBar(QWidget* parent) : QWidget(parent) {
    auto* more = new IconButton(QStringLiteral("ellipsis.circle"), QStringLiteral("Reset Shares"));
    auto* menu = new QMenu(more);
    menu->setFont(theme().font(TextStyle::body));
    const std::pair<QString, ResetTarget> items[] = {
        {QStringLiteral("Reset All Serves"), ResetTarget::serves},
        {QStringLiteral("Reset All Funnels"), ResetTarget::funnels},
        {QStringLiteral("Reset Everything"), ResetTarget::all}};
    for (const auto& [label, target] : items) {
        QAction* item = menu->addAction(label);
        setDestructive(*item);
        connect(item, &QAction::triggered, this,
                [this, chosen = target] { Q_EMIT resetRequested(chosen); });
    }
    // setMenu() is for screen readers, which then report the menu. It is opened here without
    // blocking: the button would run a nested event loop.
    more->setMenu(menu);
    more->setPopupMode(QToolButton::MenuButtonPopup);
    connect(more, &IconButton::clicked, this, [more, menu] {
        const int trailing = more->width() - menu->sizeHint().width();
        menu->popup(more->mapToGlobal(QPoint(std::min(0, trailing), more->height() + 2)));
    });

    auto* row = new QHBoxLayout(this);
    // Aligns the button's symbol, not its edge, with the rows above and below.
    row->setContentsMargins(Theme::headerPadding, 4, Theme::headerPadding, 4);
    row->addWidget(
        new Label(TextStyle::subheadline, &Colors::secondary, QStringLiteral("Active Shares")));
    row->addStretch();
    row->addWidget(more);
}

} // namespace brevane
