#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>

namespace tavrelon::desktop {

/// Draws one of the program's symbols. Null where there is none of that name.
QImage symbolImage(const QString& name, const QColor& color, int pixels);

/// Serves `image://symbol/<name>/<rrggbb>` to the views.
class QtSymbolProvider : public QQuickImageProvider {
 public:
    QtSymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace tavrelon::desktop
