#include "desktop/gnome/keys/gnome_hotkeys.h"

#include <algorithm>

#include "desktop/gnome/keys/accelerators.h"
#include "keys/key_names.h"

namespace tavrelon::desktop {

using platform::WantedHotkey;
using Fires = WantedHotkey::Fires;

namespace {

QString nameOf(const WantedHotkey& hotkey) {
    return keys::plainName(hotkey.keys.keyCode, hotkey.keys.modifiers & keys::relevantModifierMask,
                           hotkey.fires == Fires::OnPress ? keys::ZeroKey::A : keys::ZeroKey::None);
}

const char* wordOf(Fires fires) {
    switch (fires) {
        case Fires::OnModifiersDown:
            return "down";
        case Fires::OnModifiersReleased:
            return "released";
        case Fires::OnPress:
            break;
    }
    return "press";
}

text::Json listOf(const std::vector<QString>& texts) {
    auto list = text::Json::array();
    for (const auto& each : texts)
        list.push_back(text::toJson(each));
    return list;
}

}  // namespace

GnomeHotkeys::GnomeHotkeys(async::MainLoop& loop, platform::Log& log, std::shared_ptr<ShellConnection> shell)
    : loop_(loop), log_(log), shell_(std::move(shell)) {
    shell_->listen(QStringLiteral("pressed"), lifetime_.guard([this](const text::Json& event) { pressed(event); }));
    shell_->onGone(lifetime_.guard([this] {
        report(QStringLiteral("[Hotkey] GNOME's extension is gone; no hotkey works until Tavrelon is started again"));
    }));
}

std::expected<void, platform::HotkeysError> GnomeHotkeys::start(Handler handler) {
    stop();
    handler_ = std::move(handler);
    apply();
    return {};
}

void GnomeHotkeys::stop() {
    if (std::exchange(handler_, nullptr))
        hold({});
}

void GnomeHotkeys::declare(const std::vector<WantedHotkey>& wanted) {
    wanted_ = wanted;
    apply();
}

void GnomeHotkeys::apply() {
    if (handler_)
        hold(wanted_);
}

bool GnomeHotkeys::hold(const std::vector<WantedHotkey>& wanted) {
    auto list = text::Json::array();
    for (const auto& hotkey : wanted) {
        const auto accelerators = acceleratorsOf(hotkey);
        if (accelerators.empty())
            report(QStringLiteral("[Hotkey] %1 is on no key").arg(nameOf(hotkey)));
        else
            list.push_back(
                {{"name", numberOf(hotkey)}, {"fires", wordOf(hotkey.fires)}, {"accelerators", listOf(accelerators)}});
    }
    const auto answer = shell_->ask("hotkeys", {{"wanted", std::move(list)}});
    if (answer)
        reportTaken(*answer);
    return answer.has_value();
}

void GnomeHotkeys::reportTaken(const text::Json& answer) try {
    for (const auto& number : text::arrayFrom(text::required(answer, "taken"))) {
        const auto index = static_cast<std::size_t>(text::integerFrom(number));
        if (index < known_.size())
            report(QStringLiteral("[Hotkey] %1 is another program's in GNOME's shell").arg(nameOf(known_[index])));
    }
} catch (const text::JsonError& error) {
    log_.line(QStringLiteral("[Hotkey] GNOME's extension tells something unknown: ") + error.localizedDescription());
}

std::size_t GnomeHotkeys::numberOf(const WantedHotkey& hotkey) {
    const auto found = std::ranges::find(known_, hotkey);
    if (found != known_.end())
        return static_cast<std::size_t>(found - known_.begin());
    known_.push_back(hotkey);
    return known_.size() - 1;
}

std::vector<keys::HotkeyConfig> GnomeHotkeys::heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) {
    std::vector<keys::HotkeyConfig> held;
    for (const auto& keys : hotkeys) {
        const auto answer = shell_->ask("free", {{"accelerators", listOf(acceleratorsOf({.keys = keys}))}});
        const auto* taken = answer ? text::find(*answer, "taken") : nullptr;
        if (taken && taken->is_array() && !taken->empty())
            held.push_back(keys);
    }
    return held;
}

void GnomeHotkeys::pressed(const text::Json& event) {
    const auto number = static_cast<std::size_t>(text::integerFrom(text::required(event, "name")));
    if (number >= known_.size())
        return;
    // In a turn of its own: the handler may stop all this.
    loop_.post(lifetime_.guard([this, hotkey = known_[number]] {
        if (handler_)
            handler_(hotkey);
    }));
}

void GnomeHotkeys::report(const QString& line) {
    if (reported_.insert(line).second)
        log_.line(line);
}

}  // namespace tavrelon::desktop
