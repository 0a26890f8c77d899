#include "desktop/qt/qt_status_item.h"

#include <QCursor>
#include <QPainter>

#include "desktop/qt/qt_symbols.h"

namespace tavrelon::desktop {

namespace {

/// The sizes that trays ask for.
constexpr int iconSizes[] = {16, 22, 24, 32, 48};

/// Trays are light or dark and do not say which, so the symbol brings its own ground.
QPixmap badge(const QString& symbolName, int pixels) {
    const auto symbol = symbolImage(symbolName, Qt::white, pixels * 5 / 8);
    if (symbol.isNull())
        return {};
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient ground(0, 0, pixels, pixels);
    ground.setColorAt(0, QColor(0x7f, 0x6b, 0xff));
    ground.setColorAt(1, QColor(0x3d, 0x8b, 0xff));
    painter.setBrush(ground);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(0, 0, pixels, pixels), pixels * 0.28, pixels * 0.28);
    const int inset = (pixels - symbol.width()) / 2;
    painter.drawImage(inset, inset, symbol);
    return picture;
}

}  // namespace

QtStatusItem::QtStatusItem() {
    icon_.setContextMenu(&menu_);
    // Any click opens the menu, not only that of the second button.
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &menu_, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            menu_.popup(QCursor::pos());
    });
}

void QtStatusItem::setImage(const QString& symbolName, const QString& accessibilityDescription) {
    QIcon icon;
    for (const int pixels : iconSizes)
        if (const auto picture = badge(symbolName, pixels); !picture.isNull())
            icon.addPixmap(picture);
    if (icon.isNull())
        return;
    icon_.setIcon(icon);
    icon_.setToolTip(accessibilityDescription);
    icon_.show();
}

void QtStatusItem::setMenu(std::vector<platform::MenuItem> items) {
    menu_.clear();
    for (auto& item : items) {
        if (item.title.isEmpty()) {
            menu_.addSeparator();
            continue;
        }
        auto* action = menu_.addAction(item.title, &menu_, std::move(item.action));
        if (!item.keyEquivalent.isEmpty())
            action->setShortcut(QKeySequence(QStringLiteral("Meta+") + item.keyEquivalent));
    }
}

}  // namespace tavrelon::desktop
