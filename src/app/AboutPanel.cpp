// SPDX-License-Identifier: MIT
#include "AboutPanel.h"

#include "AboutView.h"
#include "AppVersion.h"
#include "WindowPlacement.h"

#include <QVBoxLayout>

namespace brevane {

AboutPanel::AboutPanel(QWidget* parent) : QDialog(parent) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    setWindowTitle("About Brevane");
    // The link shows that it has the keyboard only once the user has moved there.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(new AboutView(appVersion(shortVersionString())));
    setFixedSize(sizeHint().expandedTo({300, 310}));
    centre(*this);
}

void AboutPanel::makeKeyAndOrderFront() {
    bringToFront(*this);
}

} // namespace brevane
