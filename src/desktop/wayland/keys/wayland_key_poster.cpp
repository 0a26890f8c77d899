#include "desktop/wayland/keys/wayland_key_poster.h"

#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdlib>
#include <cstring>

#include "desktop/xkb/key_table.h"

namespace tavrelon::desktop {

namespace {

constexpr std::uint32_t xkbOverKernel = 8;

/// The text of a US keyboard's keymap, with the NUL at its end; empty where xkb's data are not installed.
QByteArray usKeymap() {
    using Context = std::unique_ptr<xkb_context, decltype(&xkb_context_unref)>;
    using Keymap = std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)>;
    // The environment's wishes are for the user's own keyboard.
    const Context context(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES), xkb_context_unref);
    const xkb_rule_names names{.rules = "evdev", .model = "pc105", .layout = "us", .variant = "", .options = ""};
    const Keymap keymap(
        context ? xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS) : nullptr,
        xkb_keymap_unref);
    if (!keymap)
        return {};
    const std::unique_ptr<char, decltype(&std::free)> text(
        xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1), std::free);
    return text ? QByteArray(text.get()).append('\0') : QByteArray();
}

/// A file in memory that the compositor may map; -1 where there can be none.
int inMemory(const QByteArray& bytes) {
    const int descriptor = ::memfd_create("keymap", MFD_CLOEXEC);
    if (descriptor >= 0 &&
        ::write(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size())) != bytes.size()) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

/// The real modifiers that this keymap has for the flags.
std::uint32_t maskOf(keys::Modifiers flags) {
    std::uint32_t mask = 0;
    if (flags.contains(keys::shiftFlag))
        mask |= 1U << 0U;
    if (flags.intersects(keys::controlFlag | keys::commandFlag))
        mask |= 1U << 2U;
    if (flags.contains(keys::optionFlag))
        mask |= 1U << 3U;
    return mask;
}

std::uint32_t milliseconds() {
    const auto now = WaylandConnection::Clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace

std::expected<std::unique_ptr<WaylandKeyPoster>, QString> WaylandKeyPoster::open(
    WaylandConnection& connection, std::unique_ptr<ShortcutTranslator> shortcuts) {
    if (!connection.globals().virtualKeyboards)
        return std::unexpected(QStringLiteral("The Wayland compositor has no virtual keyboards."));
    const auto keymap = usKeymap();
    const int memory = keymap.isEmpty() ? -1 : inMemory(keymap);
    if (memory < 0)
        return std::unexpected(QStringLiteral("There is no keymap of a US keyboard; install xkb-data."));
    std::unique_ptr<WaylandKeyPoster> poster(new WaylandKeyPoster(connection, std::move(shortcuts)));
    const auto made = std::make_shared<virtual_keyboard::Keyboard*>(nullptr);
    const auto& globals = connection.globals();
    const bool isDone = connection.callAndSettle(
        [made, globals, memory, size = keymap.size()] {
            *made = virtual_keyboard::create(globals.virtualKeyboards, globals.seat);
            virtual_keyboard::setKeymap(*made, memory, static_cast<std::uint32_t>(size));
            ::close(memory);
        },
        WaylandConnection::startLimit);
    if (!isDone)
        return std::unexpected(QStringLiteral("The Wayland compositor gives no virtual keyboard."));
    poster->keyboard_ = *made;
    return poster;
}

WaylandKeyPoster::~WaylandKeyPoster() {
    if (keyboard_)
        connection_.call([keyboard = keyboard_] { virtual_keyboard::destroy(keyboard); });
}

void WaylandKeyPoster::press(keys::VirtualKey key, keys::Modifiers flags) {
    const KeyChord asked{key, flags};
    const auto chord = shortcuts_ ? shortcuts_->translate(asked) : asked;
    const auto label = chord ? labelOf(chord->key) : std::nullopt;
    if (!label || label->place == 0)
        return;
    // No modifier is pressed as a key, since chords of modifiers alone would count it.
    connection_.call(
        [keyboard = keyboard_, code = label->place - xkbOverKernel, mask = maskOf(chord->flags), presses = presses_] {
            ++*presses;
            const auto time = milliseconds();
            virtual_keyboard::setModifiers(keyboard, mask);
            virtual_keyboard::key(keyboard, time, code, virtual_keyboard::KeyState::Pressed);
            virtual_keyboard::key(keyboard, time, code, virtual_keyboard::KeyState::Released);
            virtual_keyboard::setModifiers(keyboard, 0);
        });
}

}  // namespace tavrelon::desktop
