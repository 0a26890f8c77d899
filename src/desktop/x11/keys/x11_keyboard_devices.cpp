#include "desktop/x11/keys/x11_keyboard_devices.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace tavrelon::desktop {

namespace {

struct EventSelection {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
};

void select(X11Connection& connection, DeviceId device, std::uint32_t mask) {
    const EventSelection selection{{device, 1}, mask};
    xcb_input_xi_select_events(connection.get(), connection.root(), 1, &selection.head);
}

KeySet keySet(std::span<const std::uint8_t> bits) {
    KeySet keys;
    for (std::size_t code = 0; code < keys.size() && code / 8 < bits.size(); ++code)
        keys.set(code, (bits[code / 8] >> (code % 8) & 1) != 0);
    return keys;
}

}  // namespace

bool KeyboardDevices::has(DeviceId device) const {
    return device == posted || std::ranges::find(physical, device) != physical.end();
}

std::optional<KeyboardDevices> keyboardDevices(X11Connection& connection) {
    const XPointer<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection.get(), xcb_input_xi_query_device(connection.get(), XCB_INPUT_DEVICE_ALL), nullptr));
    if (!reply)
        return std::nullopt;
    KeyboardDevices devices;
    for (auto i = xcb_input_xi_query_device_infos_iterator(reply.get()); i.rem; xcb_input_xi_device_info_next(&i))
        if (devices.master == 0 && i.data->type == XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD)
            devices.master = i.data->deviceid;
    for (auto i = xcb_input_xi_query_device_infos_iterator(reply.get()); i.rem; xcb_input_xi_device_info_next(&i)) {
        if (i.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD || i.data->attachment != devices.master)
            continue;
        const std::string_view name(xcb_input_xi_device_info_name(i.data), i.data->name_len);
        if (name.ends_with("XTEST keyboard"))
            devices.posted = i.data->deviceid;
        else
            devices.physical.push_back(i.data->deviceid);
    }
    return devices.master == 0 ? std::nullopt : std::optional(std::move(devices));
}

void watchDevices(X11Connection& connection) {
    select(connection, XCB_INPUT_DEVICE_ALL, XCB_INPUT_XI_EVENT_MASK_HIERARCHY);
    connection.flush();
}

void watchKeys(X11Connection& connection, const KeyboardDevices& devices, Watch watch) {
    const std::uint32_t keyEvents =
        watch == Watch::On ? XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE : 0U;
    for (const auto device : devices.physical)
        select(connection, device, keyEvents);
    if (devices.posted != 0)
        select(connection, devices.posted, keyEvents);
    connection.flush();
}

void watchButtons(X11Connection& connection, Watch watch) {
    select(connection, XCB_INPUT_DEVICE_ALL_MASTER, watch == Watch::On ? XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS : 0U);
    connection.flush();
}

KeySet keysDown(X11Connection& connection, DeviceId device) {
    const XPointer<xcb_input_query_device_state_reply_t> reply(xcb_input_query_device_state_reply(
        connection.get(), xcb_input_query_device_state(connection.get(), static_cast<std::uint8_t>(device)), nullptr));
    if (!reply)
        return {};
    for (auto i = xcb_input_query_device_state_classes_iterator(reply.get()); i.rem; xcb_input_input_state_next(&i)) {
        if (i.data->class_id != XCB_INPUT_INPUT_CLASS_KEY)
            continue;
        const auto* state = reinterpret_cast<const xcb_input_key_state_t*>(i.data);
        return keySet(state->keys);
    }
    return {};
}

KeySet keysDown(X11Connection& connection) {
    const XPointer<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(connection.get(), xcb_query_keymap(connection.get()), nullptr));
    return reply ? keySet(reply->keys) : KeySet();
}

}  // namespace tavrelon::desktop
