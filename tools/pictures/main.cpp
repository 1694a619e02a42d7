// SPDX-License-Identifier: MIT
//
// Renders the window in every scene or those named, light and dark, at pixel ratios of 1 and 2, and
// a contact sheet of all.
//
// Usage: pictures FOLDER [NAME]...

#include "ContactSheet.h"
#include "Scenes.h"
#include "Theme.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>

using namespace brevane;
using namespace brevane::pictures;

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        qWarning("Usage: pictures FOLDER [NAME]...");
        return 2;
    }
    const QDir folder(arguments[1]);
    folder.mkpath(QStringLiteral("."));
    const QStringList chosen = arguments.mid(2);

    // A font that a current desktop uses.
    if (QFontDatabase::families().contains(QStringLiteral("Inter")))
        QApplication::setFont(QFont(QStringLiteral("Inter"), 10));
    QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
    Theme look(Theme::Scheme::light);

    ContactSheet sheet;
    for (const bool dark : {false, true}) {
        look.setDark(dark);
        for (const Scene& scene : allScenes()) {
            if (!chosen.isEmpty() && !chosen.contains(scene.name)) continue;
            Stage stage;
            scene.enter(stage);
            Stage::comeToRest();
            const QString name =
                scene.name + (dark ? QStringLiteral("-dark") : QStringLiteral("-light"));
            for (const int ratio : {1, 2}) {
                const QImage picture = stage.picture(ratio);
                picture.save(folder.filePath(QStringLiteral("%1@%2x.png").arg(name).arg(ratio)));
                if (ratio == 1) sheet.add(name, picture);
            }
        }
    }
    sheet.image().save(folder.filePath(QStringLiteral("contact-sheet.png")));
    return 0;
}
