#include "desktop/x11/keys/x11_key_observer.h"

#include "desktop/x11/keys/x11_key_delivery.h"

namespace tavrelon::desktop {

bool X11KeyObserver::start(Calls calls) {
    if (!hotkeys_.delivery())
        return false;
    hotkeys_.observe(std::move(calls));
    return true;
}

void X11KeyObserver::stop() {
    if (hotkeys_.delivery())
        hotkeys_.delivery()->endObservation();
}

}  // namespace tavrelon::desktop
