#include "desktop/qt/qt_screens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace tavrelon::desktop {

/// Qt leaves the corner of a scaled screen where it is and shrinks what lies to its right and below.
QRectF toNative(const QRectF& rectangle, const QScreen& screen) {
    const auto corner = QPointF(screen.geometry().topLeft());
    const double scale = screen.devicePixelRatio();
    return {corner + (rectangle.topLeft() - corner) * scale, rectangle.size() * scale};
}

namespace {

double mainScreenHeight() {
    const auto* primary = QGuiApplication::primaryScreen();
    return primary ? nativeFrame(*primary).height() : 0;
}

platform::Screen described(const QScreen& screen) {
    const double height = mainScreenHeight();
    return {.frame = flipped(nativeFrame(screen), height),
            .visibleFrame = flipped(toNative(screen.availableGeometry(), screen), height),
            .scale = screen.devicePixelRatio()};
}

}  // namespace

QRectF nativeFrame(const QScreen& screen) {
    return toNative(screen.geometry(), screen);
}

QRectF flipped(const QRectF& rectangle, double mainScreenHeight) {
    return {rectangle.x(), mainScreenHeight - rectangle.y() - rectangle.height(), rectangle.width(),
            rectangle.height()};
}

std::vector<platform::Screen> QtScreens::screens() {
    std::vector<platform::Screen> found;
    for (const auto* screen : QGuiApplication::screens())
        found.push_back(described(*screen));
    return found;
}

std::optional<platform::Screen> QtScreens::mainScreen() {
    const auto* primary = QGuiApplication::primaryScreen();
    return primary ? std::optional(described(*primary)) : std::nullopt;
}

QPointF QtScreens::mouseLocation() {
    const auto position = QPointF(QCursor::pos());
    const auto* screen = QGuiApplication::screenAt(position.toPoint());
    const auto native = screen ? toNative({position, QSizeF(0, 0)}, *screen).topLeft() : position;
    return flipped({native, QSizeF(0, 0)}, mainScreenHeight()).topLeft();
}

}  // namespace tavrelon::desktop
