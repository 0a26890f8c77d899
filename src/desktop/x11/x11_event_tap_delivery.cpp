#include "desktop/x11/x11_event_tap_delivery.h"

namespace tavrelon::desktop {

void TapDelivery::send(platform::KeyEvent event) {
    loop_.post([self = shared_from_this(), event = std::move(event)] {
        if (self->open_)
            self->handler_(event);
    });
}

std::shared_ptr<KeyOffer> TapDelivery::offer(platform::KeyEvent event) {
    auto offer = std::make_shared<KeyOffer>();
    loop_.post([self = shared_from_this(), offer, event = std::move(event)] {
        if (self->open_ && offer->claim())
            offer->answer(self->handler_(event));
        offer->finish();
        self->wake_->signal();
    });
    return offer;
}

}  // namespace tavrelon::desktop
