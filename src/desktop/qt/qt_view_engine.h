#pragma once

#include <QQmlEngine>
#include <QQuickView>
#include <memory>

#include "platform/log.h"

namespace tavrelon::desktop {

/// An engine for our views: knows the program's symbols and whether the session moves, and logs what is wrong with a
/// view.
std::unique_ptr<QQmlEngine> makeViewEngine(platform::Log& log);

/// Empties a view that is about to go. The renderer gives textures back while it draws a frame, and what waits for that
/// when its last window goes is never given back (Qt 6.4): so nothing is drawn once more.
void giveTexturesBack(QQuickView& view);

/// Where the view of this name lies among the resources.
QUrl viewUrl(const QString& name);

}  // namespace tavrelon::desktop
