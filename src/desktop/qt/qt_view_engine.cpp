#include "desktop/qt/qt_view_engine.h"

#include <QQmlContext>
#include <QUrl>

#include "desktop/qt/qt_motion.h"
#include "desktop/qt/qt_symbols.h"

namespace tavrelon::desktop {

std::unique_ptr<QQmlEngine> makeViewEngine(platform::Log& log) {
    auto engine = std::make_unique<QQmlEngine>();
    engine->setOutputWarningsToStandardError(false);
    QObject::connect(engine.get(), &QQmlEngine::warnings, engine.get(), [&log](const QList<QQmlError>& warnings) {
        for (const auto& warning : warnings)
            log.line(QStringLiteral("[UI] ") + warning.toString());
    });
    engine->rootContext()->setContextProperty(QStringLiteral("motion"), new QtMotion(engine.get()));
    engine->addImageProvider(QStringLiteral("symbol"), new QtSymbolProvider);
    return engine;
}

void giveTexturesBack(QQuickView& view) {
    view.setSource({});
    view.grabWindow();
}

QUrl viewUrl(const QString& name) {
    return QUrl(QStringLiteral("qrc:/tavrelon/ui/%1.qml").arg(name));
}

}  // namespace tavrelon::desktop
