// gallery FOLDER [overlays|dashboard|tray]: writes a picture of everything that the program shows, or of that part.
#include "gallery/gallery.h"

#include <QApplication>

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QDir folder(QString::fromLocal8Bit(argc > 1 ? argv[1] : "."));
    folder.mkpath(QStringLiteral("."));
    const auto part = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    if (part.isEmpty() || part == QLatin1StringView("overlays"))
        tavrelon::testing::pictureOverlays(folder);
    if (part.isEmpty() || part == QLatin1StringView("dashboard"))
        tavrelon::testing::pictureDashboard(folder);
    if (part.isEmpty() || part == QLatin1StringView("tray"))
        tavrelon::testing::pictureTray(folder);
    return 0;
}
