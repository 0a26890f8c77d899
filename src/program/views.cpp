#include "program/views.h"

#include <QApplication>

namespace tavrelon::program {

// Views are drawn by the processor: a graphics stack in software would cost several times the memory and time. They
// are windows of the X server, which is where all else happens, also in a session that has another way to draw.
void prepareViews() {
    QCoreApplication::setApplicationName(QStringLiteral("Tavrelon"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAVRELON_VERSION));
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace tavrelon::program
