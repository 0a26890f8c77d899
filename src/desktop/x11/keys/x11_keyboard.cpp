#include "desktop/x11/keys/x11_keyboard.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>

#include "desktop/x11/connection/x11_connection.h"

namespace tavrelon::desktop {

namespace {

constexpr unsigned firstCode = 8;
constexpr unsigned lastCode = 255;

xkb_keysym_t plainSymbol(xkb_keymap* keymap, KeyCode code, unsigned group) {
    const auto layouts = xkb_keymap_num_layouts_for_key(keymap, code);
    if (layouts == 0)
        return XKB_KEY_NoSymbol;
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, code, group % layouts, 0, &symbols);
    return count == 1 ? symbols[0] : XKB_KEY_NoSymbol;
}

}  // namespace

X11Keyboard::X11Keyboard(XkbKeymap keymap) : keymap_(std::move(keymap)) {
    readModifiers();
    nameKeys();
}

std::unique_ptr<const X11Keyboard> X11Keyboard::fromServer(X11Connection& connection) {
    const XkbContext context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const auto device = xkb_x11_get_core_keyboard_device_id(connection.get());
    if (!context || device < 0)
        return nullptr;
    XkbKeymap keymap(
        xkb_x11_keymap_new_from_device(context.get(), connection.get(), device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    return keymap ? std::make_unique<const X11Keyboard>(std::move(keymap)) : nullptr;
}

void X11Keyboard::readModifiers() {
    for (unsigned code = firstCode; code <= lastCode; ++code) {
        const XkbState state(xkb_state_new(keymap_.get()));
        if (xkb_state_update_key(state.get(), code, XKB_KEY_DOWN) == 0)
            continue;
        const auto mask = static_cast<ModifierMask>(xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_EFFECTIVE));
        modifiersByCode_[code] = mask;
        switch (plainSymbol(keymap_.get(), static_cast<KeyCode>(code), 0)) {
            case XKB_KEY_Alt_L:
            case XKB_KEY_Alt_R:
                alt_ |= mask;
                break;
            case XKB_KEY_Super_L:
            case XKB_KEY_Super_R:
                super_ |= mask;
                break;
            case XKB_KEY_Num_Lock:
                numLock_ |= mask;
                break;
            default:
                break;
        }
    }
}

std::optional<keys::VirtualKey> X11Keyboard::labelOf(KeyCode code, unsigned group) const {
    return virtualKeyOfSymbol(plainSymbol(keymap_.get(), code, group));
}

void X11Keyboard::nameKeys() {
    const auto groups = std::max(1U, xkb_keymap_num_layouts(keymap_.get()));
    for (unsigned group = 0; group < groups; ++group)
        for (unsigned code = firstCode; code <= lastCode; ++code)
            if (const auto label = labelOf(static_cast<KeyCode>(code), group))
                labelled_.set(*label);
    namesByGroup_.resize(groups);
    for (unsigned group = 0; group < groups; ++group) {
        namesByGroup_[group].fill(unnamedKey);
        for (unsigned code = firstCode; code <= lastCode; ++code)
            namesByGroup_[group][code] = nameOf(static_cast<KeyCode>(code), group);
    }
}

keys::VirtualKey X11Keyboard::nameOf(KeyCode code, unsigned group) const {
    if (const auto label = labelOf(code, group))
        return *label;
    for (unsigned other = 0; other < namesByGroup_.size(); ++other)
        if (const auto label = labelOf(code, other))
            return *label;
    const auto place = virtualKeyOfPlace(code);
    return place && goesByPlace(*place) ? *place : unnamedKey;
}

keys::VirtualKey X11Keyboard::virtualKey(KeyCode code, unsigned group) const {
    return namesByGroup_[group % namesByGroup_.size()][code];
}

std::vector<KeyCode> X11Keyboard::codesFor(keys::VirtualKey key) const {
    std::vector<KeyCode> codes;
    for (unsigned code = firstCode; code <= lastCode; ++code)
        if (std::ranges::any_of(namesByGroup_, [&](const auto& names) { return names[code] == key; }))
            codes.push_back(static_cast<KeyCode>(code));
    return codes;
}

std::vector<KeyCode> X11Keyboard::codesLabelled(keys::VirtualKey key, unsigned group) const {
    std::vector<KeyCode> codes;
    for (unsigned code = firstCode; code <= lastCode; ++code)
        if (labelOf(static_cast<KeyCode>(code), group % static_cast<unsigned>(namesByGroup_.size())) == key)
            codes.push_back(static_cast<KeyCode>(code));
    return codes;
}

std::optional<KeyCode> X11Keyboard::codeToPress(keys::VirtualKey key, unsigned group) const {
    // The label in force first: on a second layout another key may carry it.
    auto codes = codesLabelled(key, group);
    if (codes.empty())
        codes = codesFor(key);
    return codes.empty() ? std::nullopt : std::optional(codes.front());
}

keys::Modifiers X11Keyboard::flagsOf(ModifierMask mask) const {
    auto flags = keys::noModifiers;
    if (mask & shiftMask)
        flags = flags | keys::shiftFlag;
    if (mask & controlMask)
        flags = flags | keys::controlFlag;
    if (mask & alt_)
        flags = flags | keys::optionFlag;
    if (mask & super_)
        flags = flags | keys::commandFlag;
    return flags;
}

std::optional<ModifierMask> X11Keyboard::maskOf(keys::Modifiers flags) const {
    if ((flags.contains(keys::optionFlag) && alt_ == 0) || (flags.contains(keys::commandFlag) && super_ == 0))
        return std::nullopt;
    unsigned mask = 0;
    if (flags.contains(keys::shiftFlag))
        mask |= shiftMask;
    if (flags.contains(keys::controlFlag))
        mask |= controlMask;
    if (flags.contains(keys::optionFlag))
        mask |= alt_;
    if (flags.contains(keys::commandFlag))
        mask |= super_;
    return static_cast<ModifierMask>(mask);
}

std::optional<KeyCode> X11Keyboard::modifierKey(keys::Modifiers flag) const {
    const auto mask = maskOf(flag);
    for (unsigned code = firstCode; mask && code <= lastCode; ++code)
        if (modifiersByCode_[code] == *mask)
            return static_cast<KeyCode>(code);
    return std::nullopt;
}

}  // namespace tavrelon::desktop
