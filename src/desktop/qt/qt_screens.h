#pragma once

#include "platform/screens.h"

class QScreen;

namespace tavrelon::desktop {

/// Where Qt's rectangle on this screen is on the X desktop: pixels, y counting downward from the upper left corner.
QRectF toNative(const QRectF& rectangle, const QScreen& screen);
QRectF nativeFrame(const QScreen& screen);

/// The same rectangle with y counting upward from the lower edge of the main screen, or back again.
QRectF flipped(const QRectF& rectangle, double mainScreenHeight);

/// The monitors that Qt knows. Main thread.
class QtScreens : public platform::Screens {
 public:
    std::vector<platform::Screen> screens() override;
    std::optional<platform::Screen> mainScreen() override;
    QPointF mouseLocation() override;
};

}  // namespace tavrelon::desktop
