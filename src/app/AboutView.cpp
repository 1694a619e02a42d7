// SPDX-License-Identifier: MIT
#include "AboutView.h"

#include "Label.h"
#include "Maker.h"
#include "OrvaleLogo.h"
#include "WebLink.h"

#include <QMouseEvent>
#include <QVBoxLayout>
#include <QWindow>

namespace brevane {

AboutView::AboutView(const QString& version, QWidget* parent)
    : QWidget(parent), appVersion(version) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(28, 28, 28, 28);
    column->setSpacing(0);
    const auto add = [column](QWidget* widget) { column->addWidget(widget, 0, Qt::AlignHCenter); };

    column->addStretch();
    add(new OrvaleLogo);
    column->addSpacing(28);
    add(new Label(TextStyle::headline, &Colors::text, "Brevane"));
    column->addSpacing(Theme::tight);
    add(new Label(TextStyle::caption, &Colors::secondary, "Version " + appVersion));
    column->addSpacing(Theme::apart);
    add(new Label(TextStyle::caption, &Colors::text, maker::credit));
    column->addSpacing(Theme::tight);
    add(new WebLink(maker::webAddress, QUrl(maker::webSite)));
    column->addStretch();
}

void AboutView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) window()->windowHandle()->startSystemMove();
}

} // namespace brevane
