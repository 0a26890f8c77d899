#include "desktop/qt/qt_application.h"

#include <QApplication>
#include <QWindow>

#include "desktop/qt/qt_symbols.h"

namespace tavrelon::desktop {

void QtApplication::orderFrontStandardAboutPanel() {
    constexpr int iconPixels = 48;
    about_ = std::make_unique<QMessageBox>();
    about_->setWindowTitle(QStringLiteral("About %1").arg(QCoreApplication::applicationName()));
    about_->setText(QStringLiteral("<b>%1</b> %2")
                        .arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()));
    about_->setInformativeText(QStringLiteral("A writing assistant for any application. Apache License 2.0."));
    about_->setIconPixmap(
        QPixmap::fromImage(symbolImage(QStringLiteral("sparkles"), QColor(0x7f, 0x6b, 0xff), iconPixels)));
    about_->setWindowModality(Qt::NonModal);
    about_->show();
    about_->raise();
    about_->activateWindow();
}

void QtApplication::setOnActiveChanged(std::function<void(bool isActive)> onActiveChanged) {
    activation_ = onActiveChanged ? std::make_unique<QObject>() : nullptr;
    if (activation_)
        QObject::connect(
            qApp, &QGuiApplication::focusWindowChanged, activation_.get(),
            [onActiveChanged = std::move(onActiveChanged)](QWindow* window) { onActiveChanged(window != nullptr); });
}

void QtApplication::terminate() {
    QCoreApplication::quit();
}

}  // namespace tavrelon::desktop
