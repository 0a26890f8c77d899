#include "desktop/x11/keys/x11_key_text.h"

#include <array>
#include <cstdlib>

namespace tavrelon::desktop {

namespace {

const char* localeName() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char* value = std::getenv(variable); value && *value)
            return value;
    return "C";
}

}  // namespace

X11KeyText::X11KeyText()
    : context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)),
      table_(xkb_compose_table_new_from_locale(context_.get(), localeName(), XKB_COMPOSE_COMPILE_NO_FLAGS)),
      compose_(table_ ? xkb_compose_state_new(table_.get(), XKB_COMPOSE_STATE_NO_FLAGS) : nullptr) {}

void X11KeyText::setKeyboard(const X11Keyboard& keyboard) {
    state_.reset(xkb_state_new(keyboard.keymap()));
}

void X11KeyText::apply(const KeyState& state) {
    xkb_state_update_mask(state_.get(), state.base, state.latched, state.locked, state.baseGroup, state.latchedGroup,
                          state.lockedGroup);
}

unsigned X11KeyText::group(const KeyState& state) {
    apply(state);
    return xkb_state_serialize_layout(state_.get(), XKB_STATE_LAYOUT_EFFECTIVE);
}

QString X11KeyText::plainText(KeyCode code) const {
    std::array<char, 64> text{};
    const int length = xkb_state_key_get_utf8(state_.get(), code, text.data(), text.size());
    return length > 0 ? QString::fromUtf8(text.data()) : QString();
}

QString X11KeyText::typed(KeyCode code, const KeyState& state) {
    apply(state);
    if (!compose_)
        return plainText(code);
    const auto symbol = xkb_state_key_get_one_sym(state_.get(), code);
    if (xkb_compose_state_feed(compose_.get(), symbol) != XKB_COMPOSE_FEED_ACCEPTED)
        return plainText(code);
    switch (xkb_compose_state_get_status(compose_.get())) {
        case XKB_COMPOSE_NOTHING:
            return plainText(code);
        case XKB_COMPOSE_COMPOSED: {
            std::array<char, 64> text{};
            xkb_compose_state_get_utf8(compose_.get(), text.data(), text.size());
            return QString::fromUtf8(text.data());
        }
        case XKB_COMPOSE_COMPOSING:
        case XKB_COMPOSE_CANCELLED:
            break;
    }
    return {};
}

void X11KeyText::reset() {
    if (compose_)
        xkb_compose_state_reset(compose_.get());
}

}  // namespace tavrelon::desktop
