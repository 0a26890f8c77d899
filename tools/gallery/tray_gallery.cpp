#include <QCursor>
#include <QGuiApplication>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QWindow>

#include "desktop/qt/qt_status_item.h"
#include "gallery/gallery.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

QWindow* embeddedIcon() {
    for (auto* window : QGuiApplication::allWindows())
        if (window->isExposed())
            return window;
    return nullptr;
}

}  // namespace

void pictureTray(const QDir& folder) {
    desktop::QtStatusItem item;
    item.setImage(QStringLiteral("exclamationmark.triangle.fill"),
                  QStringLiteral("Tavrelon: Could not connect to 127.0.0.1."));
    QProcess tray;
    tray.setStandardErrorFile(QProcess::nullDevice());
    tray.start(QStringLiteral("tint2"), QStringList());
    if (!runQtUntil([] { return embeddedIcon() != nullptr; }, 15s))
        throw std::runtime_error("the tray does not take the icon");
    auto* screen = QGuiApplication::primaryScreen();
    const auto* icon = embeddedIcon();
    const QRect place(icon->mapToGlobal(QPoint(0, 0)), icon->size());
    // Moved, since a tool tip follows a pointer that came, not one that was there.
    QCursor::setPos(place.center() + QPoint(-3, 0));
    runQtUntil([] { return false; }, 200ms);
    QCursor::setPos(place.center());
    runQtUntil([] { return false; }, 2s);
    const auto whole = screen->grabWindow(0);
    const auto scale = whole.devicePixelRatio();
    const QRect around(std::max(0, place.center().x() - 260), std::max(0, place.center().y() - 100), 420, 160);
    whole.copy(QRectF(around.x() * scale, around.y() * scale, around.width() * scale, around.height() * scale).toRect())
        .save(folder.filePath(QStringLiteral("tray-error.png")));
    tray.terminate();
    tray.waitForFinished(5000);
}

}  // namespace tavrelon::testing
