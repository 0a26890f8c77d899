#pragma once

#include <QQmlEngine>
#include <QQmlPropertyMap>
#include <QRect>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "async/main_loop.h"
#include "desktop/qt/qt_compositor_watch.h"
#include "platform/log.h"
#include "platform/panel.h"

namespace tavrelon::desktop {

class QtPanel;

/// What Qt does not do for panels by itself.
struct PanelSurroundings {
    std::function<bool()> isComposited;                   ///< whether windows may be translucent at the moment
    std::function<void(quint64 windowIdentifier)> focus;  ///< gives a window the keyboard, window manager or not
};

/// Where this program's overlays are now, in the X desktop's pixels. Main thread.
std::vector<QRect> shownOverlayFrames();

/// Makes panels whose views are written in QML. Nothing of QML is loaded before the first panel. Main thread.
class QtPanels : public platform::Panels {
 public:
    QtPanels(async::MainLoop& loop, platform::Log& log, PanelSurroundings surroundings);
    ~QtPanels() override;

    std::unique_ptr<platform::Panel> create(const platform::PanelDescription& description) override;

 private:
    QQmlEngine& engine();
    void compositingChanged();

    async::MainLoop& loop_;
    platform::Log& log_;
    PanelSurroundings surroundings_;
    std::set<QtPanel*> panels_;  ///< they enter and leave by themselves
    std::unique_ptr<QQmlEngine> engine_;
    std::unique_ptr<QQmlPropertyMap> viewSurroundings_;  ///< what the views know of the desktop
    std::unique_ptr<QtCompositorWatch> compositorWatch_;
};

}  // namespace tavrelon::desktop
