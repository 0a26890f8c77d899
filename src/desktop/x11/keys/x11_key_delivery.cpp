#include "desktop/x11/keys/x11_key_delivery.h"

namespace tavrelon::desktop {

void X11KeyDelivery::pressed(const platform::WantedHotkey& hotkey) {
    ++wanting_;
    loop_.post([self = shared_from_this(), hotkey] {
        // A copy: the handler may close the delivery that calls it.
        if (const auto handler = self->handler_)
            handler(hotkey);
        --self->wanting_;
    });
}

void X11KeyDelivery::typed(platform::KeyEvent event) {
    loop_.post([self = shared_from_this(), event = std::move(event)] {
        if (const auto observer = self->observer_)
            observer->typed(event);
    });
}

void X11KeyDelivery::left() {
    loop_.post([self = shared_from_this()] {
        const auto observer = self->observer_;
        self->endObservation();
        if (observer)
            observer->left();
    });
}

void X11KeyDelivery::observe(platform::KeyObserver::Calls calls) {
    endObservation();
    observer_ = std::move(calls);
    ++wanting_;
}

void X11KeyDelivery::endObservation() {
    if (observer_)
        --wanting_;
    observer_.reset();
}

void X11KeyDelivery::close() {
    handler_ = nullptr;
    endObservation();
}

}  // namespace tavrelon::desktop
