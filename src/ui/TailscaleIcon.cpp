// SPDX-License-Identifier: MIT
#include "TailscaleIcon.h"

#include "Painting.h"
#include "Symbol.h"

#include <QEvent>
#include <QPainter>

#ifndef __APPLE__
#include <QFile>
#include <QStringList>

#include <algorithm>

#include <glob.h>
#endif

namespace brevane {

#ifndef __APPLE__
namespace {

/// Whether some icon theme has an application icon of this name. To find one, Qt reads the whole
/// theme, which takes as long as laying out the window; glob() is faster.
bool someThemeHas(const QString& name) {
    const QString files = QStringLiteral("/*/{*/apps,apps/*}/%1.*").arg(name);
    const QStringList folders = QIcon::themeSearchPaths();
    return std::ranges::any_of(folders, [&](const QString& folder) {
        glob_t found{};
        const bool has = glob(QFile::encodeName(folder + files), GLOB_BRACE, nullptr, &found) == 0;
        globfree(&found);
        return has;
    });
}

} // namespace
#endif

TailscaleIcon::TailscaleIcon(int size, QWidget* parent) : QWidget(parent), icon_(installed()) {
    setFixedSize(size, size);
}

QIcon TailscaleIcon::installed() {
#ifdef __APPLE__
    // A QIcon has every size in the file, a QPixmap only the first; a missing file has none.
    const QIcon icon(QStringLiteral("/Applications/Tailscale.app/Contents/Resources/AppIcon.icns"));
    return icon.availableSizes().isEmpty() ? QIcon() : icon;
#else
    const QString name = QStringLiteral("tailscale");
    return someThemeHas(name) ? QIcon::fromTheme(name) : QIcon();
#endif
}

void TailscaleIcon::changeEvent(QEvent* event) {
    // The desktop's theme includes its icon theme.
    if (event->type() == QEvent::ThemeChange) {
        icon_ = installed();
        update();
    }
    QWidget::changeEvent(event);
}

void TailscaleIcon::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (icon_.isNull())
        drawFallback(painter);
    else
        icon_.paint(&painter, rect());
}

void TailscaleIcon::drawFallback(QPainter& painter) const {
    const QColor ground = QColor::fromRgbF(0, 0.42F, 0.75F);
    drawRoundedBox(painter, rect(), 0.22 * width(), ground);
    // A symbol's box is larger than its font size. Subtracting an even number from the width keeps
    // it centred to the pixel.
    const int margin = qRound((1 - 0.45 * 16 / 13) * width() / 2);
    const int symbolSize = width() - 2 * margin;
    drawSymbol(painter, rect(), QStringLiteral("antenna.radiowaves.left.and.right"), Qt::white,
               symbolSize);
}

} // namespace brevane
