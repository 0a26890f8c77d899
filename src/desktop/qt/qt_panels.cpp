#include "desktop/qt/qt_panels.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QWindow>

#include "desktop/qt/qt_panel.h"
#include "desktop/qt/qt_screens.h"
#include "desktop/qt/qt_view_engine.h"

namespace tavrelon::desktop {

std::vector<QRect> shownOverlayFrames() {
    std::vector<QRect> found;
    for (const auto* window : QGuiApplication::topLevelWindows())
        if (window->isVisible() && window->flags().testFlag(Qt::X11BypassWindowManagerHint))
            found.push_back(toNative(window->geometry(), *window->screen()).toAlignedRect());
    return found;
}

QtPanels::QtPanels(async::MainLoop& loop, platform::Log& log, PanelSurroundings surroundings)
    : loop_(loop), log_(log), surroundings_(std::move(surroundings)) {}

QtPanels::~QtPanels() = default;

QQmlEngine& QtPanels::engine() {
    if (!engine_) {
        viewSurroundings_ = std::make_unique<QQmlPropertyMap>();
        viewSurroundings_->insert(QStringLiteral("composited"), surroundings_.isComposited());
        compositorWatch_ = std::make_unique<QtCompositorWatch>([this] { compositingChanged(); });
        engine_ = makeViewEngine(log_);
        engine_->rootContext()->setContextProperty(QStringLiteral("surroundings"), viewSurroundings_.get());
    }
    return *engine_;
}

void QtPanels::compositingChanged() {
    for (auto* panel : panels_)
        panel->compositingChanged();
}

std::unique_ptr<platform::Panel> QtPanels::create(const platform::PanelDescription& description) {
    auto& viewEngine = engine();
    return std::make_unique<QtPanel>(viewEngine, description,
                                     QtPanel::Tools{loop_, surroundings_, *viewSurroundings_, panels_});
}

}  // namespace tavrelon::desktop
