#pragma once

#include <QQmlPropertyMap>
#include <QQuickView>
#include <QVariantAnimation>

#include "desktop/qt/qt_panels.h"

namespace tavrelon::desktop {

/// A window that shows one QML view. The view may say by `maskRect` and `maskRadius` which part of it is to be seen
/// where windows cannot be translucent.
class QtPanel : public platform::Panel {
 public:
    struct Tools {
        async::MainLoop& loop;
        const PanelSurroundings& surroundings;
        QQmlPropertyMap& viewSurroundings;
        std::set<QtPanel*>& panels;  ///< all that there are
    };

    QtPanel(QQmlEngine& engine, const platform::PanelDescription& description, Tools tools);
    ~QtPanel() override;

    /// A shown panel takes its shape anew.
    void compositingChanged();

    void setContentSize(QSizeF size) override;
    QSizeF frameSize() const override;
    void setFrameOrigin(QPointF origin) override;
    bool isVisible() const override { return view_.isVisible(); }
    void orderFront() override;
    void orderOut() override;
    void makeKeyAndOrderFront() override;
    void setAlpha(double alpha, std::chrono::milliseconds duration) override;

 private:
    /// The part of the view that is to be seen.
    struct Mask {
        QRect rectangle;
        double radius = 0;
        bool operator==(const Mask&) const = default;
    };

    void place();
    void shape();
    void followMask();
    void insistOnFocus();

    Tools tools_;
    QQuickView view_;
    QPointF origin_;  ///< as asked for, so that a new size keeps the lower left corner
    Mask mask_;
    bool isMasked_ = false;  ///< whether windows cannot be translucent
    QVariantAnimation fade_;
    async::Timer focusCheck_;
};

}  // namespace tavrelon::desktop
