#include "desktop/qt/qt_application.h"

#include <QApplication>
#include <QWindow>

#include "desktop/qt/qt_symbols.h"

namespace tavrelon::desktop {

void QtApplication::orderFrontStandardAboutPanel(text::Language language) {
    constexpr int iconPixels = 48;
    const text::LocalizedText title{QStringLiteral("About %1"), QStringLiteral("关于 %1")};
    const text::LocalizedText description{
        QStringLiteral("A writing assistant for any application. Apache License 2.0."),
        QStringLiteral("适用于任何应用的写作助手。Apache License 2.0 许可。")};
    const text::LocalizedText close{QStringLiteral("Close"), QStringLiteral("关闭")};
    about_ = std::make_unique<QMessageBox>();
    about_->setWindowTitle(title.arg(QCoreApplication::applicationName()).in(language));
    about_->setText(QStringLiteral("<b>%1</b> %2")
                        .arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()));
    about_->setInformativeText(description.in(language));
    about_->addButton(close.in(language), QMessageBox::RejectRole);
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
