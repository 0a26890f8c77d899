#include <X11/Xutil.h>

#include <thread>

#include "key_probe.h"

namespace tavrelon::bench {

using namespace std::chrono_literals;

namespace {

/// Asks until the condition holds and gives the moment at which it did.
template <typename Condition>
std::optional<std::chrono::nanoseconds> since(KeyProbe::Clock::time_point began, std::chrono::milliseconds limit,
                                              Condition condition) {
    constexpr auto pause = 500us;  // far below what is measured, and leaves the processor to the program
    while (KeyProbe::Clock::now() < began + limit) {
        if (condition())
            return KeyProbe::Clock::now() - began;
        std::this_thread::sleep_for(pause);
    }
    return std::nullopt;
}

}  // namespace

std::vector<char> KeyProbe::pixels(Area area) const {
    auto* image =
        XGetImage(display_, DefaultRootWindow(display_), area.x, area.y, area.width, area.height, AllPlanes, ZPixmap);
    if (!image)
        throw std::runtime_error("the screen gives no picture");
    const std::vector<char> bytes(image->data, image->data + image->bytes_per_line * image->height);
    XDestroyImage(image);
    return bytes;
}

bool KeyProbe::hasFocus() const {
    Window focused = 0;
    int revertTo = 0;
    XGetInputFocus(display_, &focused, &revertTo);
    return focused == window_;
}

std::optional<std::chrono::nanoseconds> KeyProbe::untilChanged(const std::string& chord, Area area,
                                                               std::chrono::milliseconds limit) {
    const auto before = pixels(area);
    return since(strike(chord), limit, [&] { return pixels(area) != before; });
}

std::optional<std::chrono::nanoseconds> KeyProbe::untilFocus(const std::string& chord, Focus focus,
                                                             std::chrono::milliseconds limit) {
    return since(strike(chord), limit, [&] { return hasFocus() == (focus == Focus::Back); });
}

}  // namespace tavrelon::bench
