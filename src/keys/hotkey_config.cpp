#include "keys/hotkey_config.h"

#include <limits>

namespace tavrelon::keys {

text::Json toJson(const HotkeyConfig& config) {
    return {{"keyCode", config.keyCode}, {"modifiersRaw", config.modifiers.raw}};
}

HotkeyConfig hotkeyConfigFrom(const text::Json& json) {
    const auto keyCode = text::integerFrom(text::required(json, "keyCode"));
    if (keyCode < 0 || keyCode > std::numeric_limits<VirtualKey>::max())
        throw text::JsonError(QStringLiteral("The key code does not fit in 16 bits."));
    const auto& modifiers = text::required(json, "modifiersRaw");
    const bool wide = modifiers.is_number_unsigned();  // the upper half of the 64 bits
    const auto raw = wide ? modifiers.get<quint64>() : static_cast<quint64>(text::integerFrom(modifiers));
    if (!wide && text::integerFrom(modifiers) < 0)
        throw text::JsonError(QStringLiteral("The modifiers are negative."));
    return {static_cast<VirtualKey>(keyCode), Modifiers{raw}};
}

}  // namespace tavrelon::keys
