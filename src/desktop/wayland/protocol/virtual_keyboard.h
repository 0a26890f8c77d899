#pragma once

#include <wayland-client-core.h>

#include <cstdint>

struct wl_seat;

/// The protocol zwp_virtual_keyboard_v1, as far as it is used: keys that count like those of a keyboard. Wayland
/// thread.
namespace tavrelon::desktop::virtual_keyboard {

struct Manager;
struct Keyboard;

extern const wl_interface managerInterface;

Keyboard* create(Manager* manager, wl_seat* seat);
void destroy(Keyboard* keyboard);

/// A keymap in xkb's text format, `size` bytes with the NUL at the end. The descriptor stays the caller's.
void setKeymap(Keyboard* keyboard, int descriptor, std::uint32_t size);

enum class KeyState : std::uint32_t { Released = 0, Pressed = 1 };
/// `key` is a key code of the kernel: eight less than xkb's.
void key(Keyboard* keyboard, std::uint32_t milliseconds, std::uint32_t key, KeyState state);
/// The modifiers of the keymap that are down from now on; none is latched or locked, and its first layout is in force.
void setModifiers(Keyboard* keyboard, std::uint32_t depressed);

}  // namespace tavrelon::desktop::virtual_keyboard
