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
    // The panel takes the focus, so the link shows its focus ring only once the user moves there.
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
