#include "desktop/qt/qt_panel.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QPainter>
#include <QQuickItem>
#include <QScreen>

#include "desktop/qt/qt_screens.h"
#include "desktop/qt/qt_view_engine.h"
#include "desktop/qt/qt_window_hints.h"

namespace tavrelon::desktop {

using namespace std::chrono_literals;
using platform::PanelKind;

namespace {

/// How long the window manager has to give a prompt box the focus before the box takes it.
constexpr auto focusPatience = 60ms;

Qt::WindowFlags windowFlags(PanelKind kind) {
    if (kind == PanelKind::PromptBox)
        return Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    // Only past the window manager does a click reach what lies below: a frame around the window would swallow it.
    return Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
           Qt::WindowDoesNotAcceptFocus | Qt::X11BypassWindowManagerHint;
}

/// A rectangle with round corners, as the pixels that belong to it.
QRegion roundedRegion(const QRect& rectangle, double radius) {
    QBitmap bitmap(rectangle.right() + 1, rectangle.bottom() + 1);
    bitmap.clear();
    QPainter painter(&bitmap);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(rectangle), radius, radius);
    return QRegion(bitmap);
}

}  // namespace

QtPanel::QtPanel(QQmlEngine& engine, const platform::PanelDescription& description, Tools tools)
    : tools_(tools), view_(&engine, nullptr) {
    view_.setFlags(windowFlags(description.kind));
    view_.setColor(Qt::transparent);
    view_.setTitle(QGuiApplication::applicationName());
    view_.setResizeMode(QQuickView::SizeRootObjectToView);
    view_.resize(description.contentSize.toSize());
    view_.setInitialProperties({{QStringLiteral("model"), QVariant::fromValue(description.model)}});
    view_.setSource(viewUrl(description.view));
    QObject::connect(&fade_, &QVariantAnimation::valueChanged, &view_,
                     [this](const QVariant& value) { view_.setOpacity(value.toDouble()); });
    // A view finds its place only after its window has its size, so its mask is right when it is about to be drawn.
    QObject::connect(&view_, &QQuickWindow::beforeSynchronizing, &view_, [this] { followMask(); });
    tools_.panels.insert(this);
}

QtPanel::~QtPanel() {
    tools_.panels.erase(this);
    giveTexturesBack(view_);
}

void QtPanel::compositingChanged() {
    if (view_.isVisible())
        shape();
}

void QtPanel::setContentSize(QSizeF size) {
    view_.resize(size.toSize());
    place();
    if (view_.isVisible())
        shape();
}

QSizeF QtPanel::frameSize() const {
    return QSizeF(view_.size()) * view_.devicePixelRatio();
}

void QtPanel::setFrameOrigin(QPointF origin) {
    origin_ = origin;
    place();
}

void QtPanel::place() {
    const auto* primary = QGuiApplication::primaryScreen();
    if (!primary)
        return;
    const auto target = flipped({origin_, frameSize()}, nativeFrame(*primary).height());
    const auto* screen = primary;
    for (const auto* each : QGuiApplication::screens())
        if (nativeFrame(*each).contains(target.topLeft()))
            screen = each;
    // Positions on a scaled screen count from its corner.
    const auto corner = QPointF(screen->geometry().topLeft());
    view_.setPosition((corner + (target.topLeft() - corner) / screen->devicePixelRatio()).toPoint());
}

void QtPanel::shape() {
    const bool composited = tools_.surroundings.isComposited();
    tools_.viewSurroundings.insert(QStringLiteral("composited"), composited);
    isMasked_ = !composited;
    mask_ = {};
    if (composited)
        view_.setMask({});
    else
        followMask();
}

void QtPanel::followMask() {
    const auto* root = view_.rootObject();
    if (!isMasked_ || !root)
        return;
    const Mask wanted{root->property("maskRect").toRectF().toRect(), root->property("maskRadius").toDouble()};
    if (wanted == mask_)
        return;
    mask_ = wanted;
    view_.setMask(roundedRegion(wanted.rectangle, wanted.radius));
}

void QtPanel::orderFront() {
    tools_.viewSurroundings.insert(QStringLiteral("composited"), tools_.surroundings.isComposited());
    place();
    view_.show();
    view_.raise();
    shape();
}

void QtPanel::orderOut() {
    focusCheck_.reset();
    view_.hide();
}

void QtPanel::makeKeyAndOrderFront() {
    if (!view_.isVisible())
        wishForEveryWorkspace(view_);
    orderFront();
    view_.requestActivate();
    focusCheck_ = tools_.loop.after(focusPatience, [this] { insistOnFocus(); });
}

void QtPanel::insistOnFocus() {
    if (view_.isVisible() && QGuiApplication::focusWindow() != &view_)
        tools_.surroundings.focus(view_.winId());
}

void QtPanel::setAlpha(double alpha, std::chrono::milliseconds duration) {
    fade_.stop();
    if (duration <= 0ms) {
        view_.setOpacity(alpha);
        return;
    }
    fade_.setStartValue(view_.opacity());
    fade_.setEndValue(alpha);
    fade_.setDuration(static_cast<int>(duration.count()));
    fade_.start();
}

}  // namespace tavrelon::desktop
