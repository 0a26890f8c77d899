#pragma once

#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <chrono>
#include <memory>

namespace tavrelon::platform {

enum class PanelKind {
    Overlay,        ///< takes neither focus nor clicks; above everything, on every workspace
    StatusOverlay,  ///< the same, above other overlays
    PromptBox       ///< takes the keyboard; the mouse drags it by its background
};

/// What a panel is made of.
struct PanelDescription {
    PanelKind kind = PanelKind::Overlay;
    QSizeF contentSize;  ///< in points: the desktop's scale is not in it
    QString view;        ///< the name of the view that fills the panel
    QObject* model;      ///< what the view shows; outlives the panel
};

/// A frameless window that one view fills. It starts hidden. Main thread.
class Panel {
 public:
    virtual ~Panel() = default;

    /// In points. The lower left corner stays where it is.
    virtual void setContentSize(QSizeF size) = 0;

    /// In pixels, as `Screen` counts them; the origin is the lower left corner.
    virtual QSizeF frameSize() const = 0;
    virtual void setFrameOrigin(QPointF origin) = 0;

    virtual bool isVisible() const = 0;
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;

    /// Brings a prompt box to the front and gives it the keyboard, also where the window manager would not.
    virtual void makeKeyAndOrderFront() = 0;

    /// Opacity of the whole panel, at once or by degrees. A later call takes over from an earlier one. Without a
    /// compositor a panel is opaque whatever is asked.
    virtual void setAlpha(double alpha, std::chrono::milliseconds duration) = 0;
};

class Panels {
 public:
    virtual ~Panels() = default;

    /// Builds a hidden panel. Never null: a view that does not load leaves the panel empty and is logged.
    virtual std::unique_ptr<Panel> create(const PanelDescription& description) = 0;
};

}  // namespace tavrelon::platform
