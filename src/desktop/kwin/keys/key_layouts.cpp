#include "desktop/kwin/keys/key_layouts.h"

#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <optional>

namespace tavrelon::desktop {

namespace {

std::shared_ptr<xkb_keymap> keymapIn(int descriptor, std::uint32_t size) {
    auto* text = size > 0 ? ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0) : MAP_FAILED;
    if (text == MAP_FAILED)
        return nullptr;
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                                                             xkb_context_unref);
    // Without the NUL at its end, which the size counts.
    auto* keymap = context ? xkb_keymap_new_from_buffer(context.get(), static_cast<const char*>(text), size - 1,
                                                        XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS)
                           : nullptr;
    ::munmap(text, size);
    return keymap ? std::shared_ptr<xkb_keymap>(keymap, xkb_keymap_unref) : nullptr;
}

/// The key that types the symbol in this layout without a modifier.
std::optional<KeyCode> codeIn(xkb_keymap* keymap, xkb_layout_index_t layout, xkb_keysym_t symbol) {
    const auto last = std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap), 255);
    for (auto code = xkb_keymap_min_keycode(keymap); code <= last; ++code) {
        const xkb_keysym_t* symbols = nullptr;
        if (layout < xkb_keymap_num_layouts_for_key(keymap, code) &&
            xkb_keymap_key_get_syms_by_level(keymap, code, layout, 0, &symbols) == 1 && *symbols == symbol)
            return static_cast<KeyCode>(code);
    }
    return std::nullopt;
}

}  // namespace

KeyLayouts::KeyLayouts(WaylandConnection& connection, std::shared_ptr<KWinBus> bus)
    : connection_(connection), bus_(std::move(bus)) {
    connection_.callAndSettle([told = told_, seat = connection_.globals().seat] {
        static constexpr wl_keyboard_listener listener{
            [](void* data, wl_keyboard*, std::uint32_t format, int descriptor, std::uint32_t size) {
                auto& told = *static_cast<Told*>(data);
                auto keymap = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 ? keymapIn(descriptor, size) : nullptr;
                ::close(descriptor);
                const std::lock_guard lock(told.mutex);
                told.keymap = std::move(keymap);
            },
            [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
            [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
            [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
            [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
            [](void*, wl_keyboard*, std::int32_t, std::int32_t) {}};
        told->keyboard = wl_seat_get_keyboard(seat);
        wl_keyboard_add_listener(told->keyboard, &listener, told.get());
    });
}

KeyLayouts::~KeyLayouts() {
    // The block keeps what the events go to until they end.
    connection_.call([told = told_] {
        if (told->keyboard)
            wl_keyboard_destroy(told->keyboard);
    });
}

/// The service is there only where the user has several.
std::uint32_t KeyLayouts::layoutInForce() {
    const auto answer = bus_->call({.service = QStringLiteral("org.kde.keyboard"),
                                    .path = QStringLiteral("/Layouts"),
                                    .interface = QStringLiteral("org.kde.KeyboardLayouts")},
                                   QStringLiteral("getLayout"));
    return answer && !answer->isEmpty() ? answer->front().toUInt() : 0;
}

KeyCode KeyLayouts::codeOf(keys::VirtualKey key) {
    const auto label = labelOf(key);
    if (!label)
        return 0;
    std::shared_ptr<xkb_keymap> keymap;
    {
        const std::lock_guard lock(told_->mutex);
        keymap = told_->keymap;
    }
    if (!keymap)
        return label->place;
    const auto count = xkb_keymap_num_layouts(keymap.get());
    const auto first = count > 1 ? layoutInForce() : 0;
    for (std::uint32_t step = 0; step < count; ++step)
        if (const auto code = codeIn(keymap.get(), (first + step) % count, label->symbol))
            return *code;
    return label->place;
}

}  // namespace tavrelon::desktop
