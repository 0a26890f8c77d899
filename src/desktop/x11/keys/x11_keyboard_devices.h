#pragma once

#include <bitset>
#include <optional>
#include <vector>

#include "desktop/x11/connection/x11_connection.h"

namespace tavrelon::desktop {

using DeviceId = std::uint16_t;

/// One bit for each key code.
using KeySet = std::bitset<256>;

/// The keyboards behind the session's keyboard.
struct KeyboardDevices {
    DeviceId master = 0;
    DeviceId posted = 0;             ///< the device of keys that programs post
    std::vector<DeviceId> physical;  ///< all others, also those of on-screen keyboards below the X server

    bool has(DeviceId device) const;
};

/// Asks the server; nothing if it has no keyboard.
std::optional<KeyboardDevices> keyboardDevices(X11Connection& connection);

/// Lets the connection receive a notice when devices come or go.
void watchDevices(X11Connection& connection);

enum class Watch : std::uint8_t { Off, On };

/// Whether the connection receives every key of these devices, whoever has the focus or grabs. Each program that is
/// woken for a key delays it on its way to the application, so nobody watches longer than needed.
void watchKeys(X11Connection& connection, const KeyboardDevices& devices, Watch watch);

/// Whether the connection receives the presses of all mouse buttons, whoever gets them.
void watchButtons(X11Connection& connection, Watch watch);

/// The keys that are down on one device.
KeySet keysDown(X11Connection& connection, DeviceId device);

/// The keys that are down for the session as a whole.
KeySet keysDown(X11Connection& connection);

}  // namespace tavrelon::desktop
