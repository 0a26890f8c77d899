#include "desktop/wayland/protocol/fake_input.h"

#include "desktop/wayland/protocol/requests.h"

namespace tavrelon::desktop::fake_input {

namespace {

// What is sent, in the order by which the protocol numbers it.
enum DeviceRequest : std::uint32_t {
    authenticateRequest,
    pointerMotion,
    pointerButton,
    pointerAxis,
    touchDown,
    touchMotion,
    touchUp,
    touchCancel,
    touchFrame,
    pointerMotionAbsolute,
    keyRequest
};

const wl_interface* noObjects[] = {nullptr, nullptr, nullptr};

const wl_message deviceRequests[] = {{"authenticate", "ss", noObjects}, {"pointer_motion", "ff", noObjects},
                                     {"button", "uu", noObjects},       {"axis", "uf", noObjects},
                                     {"touch_down", "2uff", noObjects}, {"touch_motion", "2uff", noObjects},
                                     {"touch_up", "2u", noObjects},     {"touch_cancel", "2", noObjects},
                                     {"touch_frame", "2", noObjects},   {"pointer_motion_absolute", "3ff", noObjects},
                                     {"keyboard_key", "4uu", noObjects}};

}  // namespace

const wl_interface deviceInterface{"org_kde_kwin_fake_input", 4, 11, deviceRequests, 0, nullptr};

void authenticate(Device* device, const char* application, const char* reason) {
    request(device, authenticateRequest, application, reason);
}

void key(Device* device, std::uint32_t key, KeyState state) {
    request(device, keyRequest, key, static_cast<std::uint32_t>(state));
}

}  // namespace tavrelon::desktop::fake_input
