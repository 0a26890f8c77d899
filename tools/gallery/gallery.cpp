// gallery FOLDER: writes a picture of everything that the program shows.
#include "gallery/gallery.h"

#include <QApplication>

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QDir folder(QString::fromLocal8Bit(argc > 1 ? argv[1] : "."));
    folder.mkpath(QStringLiteral("."));
    tavrelon::testing::pictureOverlays(folder);
    tavrelon::testing::pictureDashboard(folder);
    tavrelon::testing::pictureTray(folder);
    return 0;
}
