#include "desktop/qt/qt_symbols.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace tavrelon::desktop {

QImage symbolImage(const QString& name, const QColor& color, int pixels) {
    QFile file(QStringLiteral(":/tavrelon/symbols/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QSvgRenderer renderer(file.readAll().replace("currentColor", color.name().toLatin1()));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

QImage QtSymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    constexpr int pixelsUnlessAsked = 16;
    const int pixels = requestedSize.width() > 0 ? requestedSize.width() : pixelsUnlessAsked;
    if (size)
        *size = QSize(pixels, pixels);
    return symbolImage(id.section(u'/', 0, 0), QColor(u'#' + id.section(u'/', 1)), pixels);
}

}  // namespace tavrelon::desktop
