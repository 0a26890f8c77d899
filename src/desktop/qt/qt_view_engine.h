#pragma once

#include <QQmlEngine>
#include <memory>

#include "platform/log.h"

namespace tavrelon::desktop {

/// An engine for our views: knows the program's symbols, and logs what is wrong with a view.
std::unique_ptr<QQmlEngine> makeViewEngine(platform::Log& log);

/// Where the view of this name lies among the resources.
QUrl viewUrl(const QString& name);

}  // namespace tavrelon::desktop
