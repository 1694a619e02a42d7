// SPDX-License-Identifier: MIT
#include "TailscaleIcon.h"

#include "Painting.h"
#include "Symbol.h"

#include <QPainter>

namespace brevane {

TailscaleIcon::TailscaleIcon(int size, QWidget* parent) : QWidget(parent) {
    setFixedSize(size, size);
}

QIcon TailscaleIcon::installed() {
#ifdef __APPLE__
    // An icon has all sizes that the file holds, a pixmap only the first; a missing file has none.
    const QIcon icon(QStringLiteral("/Applications/Tailscale.app/Contents/Resources/AppIcon.icns"));
    return icon.availableSizes().isEmpty() ? QIcon() : icon;
#else
    return QIcon::fromTheme(QStringLiteral("tailscale"));
#endif
}

void TailscaleIcon::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QIcon icon = installed();
    if (icon.isNull())
        drawFallback(painter);
    else
        icon.paint(&painter, rect());
}

void TailscaleIcon::drawFallback(QPainter& painter) const {
    const QColor ground = QColor::fromRgbF(0, 0.42F, 0.75F);
    drawRoundedBox(painter, rect(), 0.22 * width(), ground);
    // A symbol's box is larger than the font size that it goes with.
    const int symbolSize = qRound(0.45 * width() * 16 / 13);
    drawSymbol(painter, rect(), QStringLiteral("antenna.radiowaves.left.and.right"), Qt::white,
               symbolSize);
}

} // namespace brevane
