#pragma once

#include <wayland-client-core.h>

#include <cstdint>

/// The protocol org_kde_kwin_fake_input, as far as it is used: keys that count like those of the user's own keyboard,
/// and mix with what is held there. Wayland thread.
namespace tavrelon::desktop::fake_input {

struct Device;

extern const wl_interface deviceInterface;

/// Has to come before the first key; KWin shows neither text while it grants the interface by the desktop file.
void authenticate(Device* device, const char* application, const char* reason);

enum class KeyState : std::uint32_t { Released = 0, Pressed = 1 };
/// `key` is a key code of the kernel: eight less than xkb's.
void key(Device* device, std::uint32_t key, KeyState state);

}  // namespace tavrelon::desktop::fake_input
