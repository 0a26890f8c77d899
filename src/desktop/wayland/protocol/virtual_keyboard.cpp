#include "desktop/wayland/protocol/virtual_keyboard.h"

#include <wayland-client-protocol.h>

#include "desktop/wayland/protocol/requests.h"

namespace tavrelon::desktop::virtual_keyboard {

namespace {

// What is sent, in the order by which the protocol numbers it.
enum ManagerRequest : std::uint32_t { createKeyboard };
enum KeyboardRequest : std::uint32_t { keymapRequest, keyRequest, modifiersRequest, destroyRequest };

const wl_interface* noObjects[] = {nullptr, nullptr, nullptr, nullptr};

const wl_message keyboardRequests[] = {{"keymap", "uhu", noObjects},
                                       {"key", "uuu", noObjects},
                                       {"modifiers", "uuuu", noObjects},
                                       {"destroy", "", noObjects}};
const wl_interface keyboardInterface{"zwp_virtual_keyboard_v1", 1, 4, keyboardRequests, 0, nullptr};

const wl_interface* createTypes[] = {&wl_seat_interface, &keyboardInterface};
const wl_message managerRequests[] = {{"create_virtual_keyboard", "on", createTypes}};

}  // namespace

const wl_interface managerInterface{"zwp_virtual_keyboard_manager_v1", 1, 1, managerRequests, 0, nullptr};

Keyboard* create(Manager* manager, wl_seat* seat) {
    return construct<Keyboard>(manager, createKeyboard, keyboardInterface, seat, nullptr);
}

void destroy(Keyboard* keyboard) {
    requestDestruction(keyboard, destroyRequest);
}

void setKeymap(Keyboard* keyboard, int descriptor, std::uint32_t size) {
    request(keyboard, keymapRequest, std::uint32_t{WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1}, descriptor, size);
}

void key(Keyboard* keyboard, std::uint32_t milliseconds, std::uint32_t key, KeyState state) {
    request(keyboard, keyRequest, milliseconds, key, static_cast<std::uint32_t>(state));
}

void setModifiers(Keyboard* keyboard, std::uint32_t depressed) {
    request(keyboard, modifiersRequest, depressed, 0U, 0U, 0U);
}

}  // namespace tavrelon::desktop::virtual_keyboard
