#pragma once

#include <QRectF>
#include <optional>
#include <vector>

namespace tavrelon::platform {

/// One monitor. Units are the desktop's own pixels; y counts upward from the lower edge of the main screen.
struct Screen {
    QRectF frame;         ///< top() is the lower edge, bottom() the upper one
    QRectF visibleFrame;  ///< without docks and task bars
    double scale = 1;     ///< pixels to a point
    bool operator==(const Screen&) const = default;
};

/// The monitors as they are at the moment of the question. Main thread.
///
/// A rectangle that counts from the top left of the desktop has its lower edge at `mainScreen()->frame.height()` less
/// its own lower edge, on whichever monitor it lies.
class Screens {
 public:
    virtual ~Screens() = default;

    virtual std::vector<Screen> screens() = 0;

    /// Absent while no monitor is connected.
    virtual std::optional<Screen> mainScreen() = 0;

    virtual QPointF mouseLocation() = 0;

    /// The screen that holds the point, else the main one.
    std::optional<Screen> screenAt(QPointF point) {
        for (auto& screen : screens())
            if (screen.frame.contains(point))
                return std::move(screen);
        return mainScreen();
    }
};

}  // namespace tavrelon::platform
